// Strings from formats.
#include <CoreFoundation/CFString.h>

#include "platform/CoreFoundation/CFRuntime.h"

using core_foundation::Require;

CFStringRef CFStringCreateWithFormat(CFAllocatorRef, CFDictionaryRef, CFStringRef format, ...) {
    @autoreleasepool {
        va_list arguments;
        va_start(arguments, format);
        NSString* string = [[NSString alloc] initWithFormat:Require<NSString>(format, __func__)
                                                  arguments:arguments];
        va_end(arguments);
        return (CFStringRef)string;
    }
}
