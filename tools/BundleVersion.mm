#include "tools/BundleVersion.h"

#import <Foundation/Foundation.h>

#include "tools/Text.h"

namespace krt9ctl {

std::optional<std::string> VersionOfBundle(const std::string& path) {
    if (path.empty()) {
        return std::nullopt;
    }
    @autoreleasepool {
        NSString* place = [NSString stringWithUTF8String:path.c_str()];
        NSBundle* bundle = place == nil ? nil : [NSBundle bundleWithPath:place];
        id version = [[bundle infoDictionary] objectForKey:@"CFBundleVersion"];
        return version == nil ? std::nullopt : Utf8Of((CFTypeRef)version);
    }
}

}  // namespace krt9ctl
