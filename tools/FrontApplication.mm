#include "tools/FrontApplication.h"

#import <AppKit/AppKit.h>

namespace krt9ctl {

namespace {

std::optional<std::string> TextOf(id object) {
    if (![object isKindOfClass:[NSString class]]) {
        return std::nullopt;
    }
    const char* text = [(NSString*)object UTF8String];
    return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

void AddFacts(NSBundle* bundle, ApplicationFacts& facts) {
    NSDictionary* info = [bundle infoDictionary];
    facts.shortVersion = TextOf([info objectForKey:@"CFBundleShortVersionString"]);
    facts.signature = TextOf([info objectForKey:@"CFBundleSignature"]);
}

}  // namespace

void AddBundleFacts(const std::string& bundlePath, ApplicationFacts& facts) {
    @autoreleasepool {
        NSString* path = [NSString stringWithUTF8String:bundlePath.c_str()];
        if ([path length] > 0) {
            NSURL* url = [NSURL fileURLWithPath:path isDirectory:YES];
            AddFacts([NSBundle bundleWithURL:url], facts);
        }
    }
}

std::optional<ApplicationFacts> FrontApplication() {
    @autoreleasepool {
        NSRunningApplication* front = [[NSWorkspace sharedWorkspace] frontmostApplication];
        if (front == nil) {
            return std::nullopt;
        }
        ApplicationFacts facts;
        facts.pid = [front processIdentifier];
        facts.bundleIdentifier = TextOf([front bundleIdentifier]);
        NSURL* url = [front bundleURL];
        AddFacts(url == nil ? nil : [NSBundle bundleWithURL:url], facts);
        return facts;
    }
}

}  // namespace krt9ctl
