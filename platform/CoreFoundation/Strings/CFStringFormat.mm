// Strings from formats.
#include <CoreFoundation/CFString.h>

#include "platform/CoreFoundation/Runtime/CFRuntime.h"
#include "platform/CoreFoundation/Strings/FormatText.h"
#include "platform/CoreFoundation/Strings/StringUnits.h"

using core_foundation::Require;

CFStringRef CFStringCreateWithFormat(CFAllocatorRef, CFDictionaryRef, CFStringRef format, ...) {
    @autoreleasepool {
        const core_foundation::StringUnits units(Require<NSString>(format, __func__));
        NSString* plain =
            core_foundation::NewString(core_foundation::FormatForGNUstep(units.view()));
        va_list arguments;
        va_start(arguments, format);
        NSString* string = [[NSString alloc] initWithFormat:plain arguments:arguments];
        va_end(arguments);
        [plain release];
        return (CFStringRef)string;
    }
}
