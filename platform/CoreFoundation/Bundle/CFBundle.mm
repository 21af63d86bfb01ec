#import <Foundation/Foundation.h>

#include <CoreFoundation/CFBundle.h>

#import "Bundle.h"

// Core Foundation's bundles are Foundation's.

const CFStringRef kCFBundleIdentifierKey = (CFStringRef) @"CFBundleIdentifier";
const CFStringRef kCFBundleVersionKey = (CFStringRef) @"CFBundleVersion";

CFBundleRef CFBundleGetMainBundle() {
    @autoreleasepool {
        return (CFBundleRef)[MacBundle mainMacBundle];
    }
}

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef bundleURL) {
    @autoreleasepool {
        return (CFBundleRef)[[MacBundle macBundleWithPath:[(NSURL*)bundleURL path]] retain];
    }
}

CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                                        CFStringRef tableName) {
    @autoreleasepool {
        return (CFStringRef)[[(NSBundle*)bundle localizedStringForKey:(NSString*)key
                                                                value:(NSString*)value
                                                                table:(NSString*)tableName] copy];
    }
}

CFStringRef CFBundleGetIdentifier(CFBundleRef bundle) {
    @autoreleasepool {
        return (CFStringRef)[(NSBundle*)bundle bundleIdentifier];
    }
}

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key) {
    @autoreleasepool {
        return (CFTypeRef)[(NSBundle*)bundle objectForInfoDictionaryKey:(NSString*)key];
    }
}
