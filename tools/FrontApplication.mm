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

}  // namespace

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
        NSDictionary* info = url == nil ? nil : [[NSBundle bundleWithURL:url] infoDictionary];
        facts.shortVersion = TextOf([info objectForKey:@"CFBundleShortVersionString"]);
        facts.signature = TextOf([info objectForKey:@"CFBundleSignature"]);
        return facts;
    }
}

}  // namespace krt9ctl
