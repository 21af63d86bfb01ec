#import <AppKit/AppKit.h>

#include "tools/ApplicationLookup.h"

namespace krt9ctl {

namespace {

std::optional<ApplicationFacts> FactsOf(NSRunningApplication* application) {
    if (application == nil) {
        return std::nullopt;
    }
    ApplicationFacts facts;
    facts.pid = [application processIdentifier];
    if (const char* identifier = [[application bundleIdentifier] UTF8String]) {
        facts.bundleIdentifier = identifier;
    }
    if (const char* path = [[[application bundleURL] path] UTF8String]) {
        AddBundleFacts(path, facts);
    }
    return facts;
}

}  // namespace

std::optional<ApplicationFacts> FindApplication(const std::string& bundleIdentifier) {
    @autoreleasepool {
        NSString* identifier = [NSString stringWithUTF8String:bundleIdentifier.c_str()];
        NSArray* running =
            [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier];
        return [running count] == 0 ? std::nullopt : FactsOf([running objectAtIndex:0]);
    }
}

std::optional<ApplicationFacts> FindApplication(pid_t pid) {
    @autoreleasepool {
        return FactsOf([NSRunningApplication runningApplicationWithProcessIdentifier:pid]);
    }
}

}  // namespace krt9ctl
