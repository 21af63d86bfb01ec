// Strings from formats.
#include <CoreFoundation/CFString.h>

#include "platform/CoreFoundation/CFRuntime.h"

using core_foundation::Require;

CFStringRef CFStringCreateWithFormatAndArguments(CFAllocatorRef, CFDictionaryRef,
                                                 CFStringRef format, va_list arguments) {
    @autoreleasepool {
        return (CFStringRef)[[NSString alloc] initWithFormat:Require<NSString>(format, __func__)
                                                   arguments:arguments];
    }
}

CFStringRef CFStringCreateWithFormat(CFAllocatorRef alloc, CFDictionaryRef formatOptions,
                                     CFStringRef format, ...) {
    va_list arguments;
    va_start(arguments, format);
    CFStringRef string =
        CFStringCreateWithFormatAndArguments(alloc, formatOptions, format, arguments);
    va_end(arguments);
    return string;
}

void CFStringAppendFormat(CFMutableStringRef theString, CFDictionaryRef formatOptions,
                          CFStringRef format, ...) {
    va_list arguments;
    va_start(arguments, format);
    CFStringRef appended =
        CFStringCreateWithFormatAndArguments(kCFAllocatorDefault, formatOptions, format, arguments);
    va_end(arguments);
    CFStringAppend(theString, appended);
    CFRelease(appended);
}
