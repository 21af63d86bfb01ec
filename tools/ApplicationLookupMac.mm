#import <AppKit/AppKit.h>

#include "tools/ApplicationLookup.h"

namespace krt9ctl {

std::optional<pid_t> FindApplication(const std::string& bundleIdentifier) {
    @autoreleasepool {
        NSString* identifier = [NSString stringWithUTF8String:bundleIdentifier.c_str()];
        NSArray* running =
            [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier];
        if ([running count] == 0) {
            return std::nullopt;
        }
        return [(NSRunningApplication*)[running objectAtIndex:0] processIdentifier];
    }
}

}  // namespace krt9ctl
