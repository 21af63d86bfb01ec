#import <Foundation/Foundation.h>

#include <CoreFoundation/CFBundle.h>

#import "platform/CoreFoundation/Bundle/Bundle.h"

// Core Foundation's bundles are Foundation's bundles.

CFBundleRef CFBundleGetMainBundle() {
    @autoreleasepool {
        return (CFBundleRef)[MacBundle mainMacBundle];
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
