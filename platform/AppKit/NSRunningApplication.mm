#import "platform/AppKit/RunningApplication.h"

#include <CoreFoundation/CoreFoundation.h>

#include <optional>
#include <string>

namespace {

// Retained; nil without a text and for text that is not UTF-8.
NSString* CreateString(const std::optional<std::string>& text) {
    if (!text) {
        return nil;
    }
    return (NSString*)CFStringCreateWithBytes(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text->data()),
        static_cast<CFIndex>(text->size()), kCFStringEncodingUTF8, false);
}

// Retained; nil without a path.
NSURL* CreateBundleURL(const std::optional<std::string>& path) {
    NSString* string = CreateString(path);
    NSURL* url = nil;
    if ([string length] > 0) {
        @autoreleasepool {
            url = [[NSURL fileURLWithPath:string isDirectory:YES] retain];
        }
    }
    [string release];
    return url;
}

}  // namespace

@implementation NSRunningApplication

@synthesize processIdentifier = _processIdentifier;
@synthesize bundleIdentifier = _bundleIdentifier;
@synthesize bundleURL = _bundleURL;

- (instancetype)initWithApplication:(const desktop_link::Application&)application {
    self = [super init];
    _processIdentifier = application.pid;
    _bundleIdentifier = CreateString(application.bundleIdentifier);
    _bundleURL = CreateBundleURL(application.bundlePath);
    return self;
}

- (void)dealloc {
    [_bundleIdentifier release];
    [_bundleURL release];
    [super dealloc];
}

- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[NSRunningApplication class]] &&
           [(NSRunningApplication*)other processIdentifier] == _processIdentifier;
}

- (NSUInteger)hash {
    return (NSUInteger)_processIdentifier;
}

@end
