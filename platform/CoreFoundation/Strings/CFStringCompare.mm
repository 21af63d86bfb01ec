// Comparing strings by code units.
#include <CoreFoundation/CFString.h>

#include "platform/CoreFoundation/Runtime/CFRuntime.h"
#include "platform/CoreFoundation/Strings/StringUnits.h"

using core_foundation::Require;
using core_foundation::StringUnits;

CFComparisonResult CFStringCompare(CFStringRef theString1, CFStringRef theString2,
                                   CFStringCompareFlags compareOptions) {
    if (compareOptions != 0) {
        core_foundation::Stop(__func__, "only options 0 is provided");
    }
    const StringUnits first(Require<NSString>(theString1, __func__));
    const StringUnits second(Require<NSString>(theString2, __func__));
    const int order = first.view().compare(second.view());
    return order < 0 ? kCFCompareLessThan : order > 0 ? kCFCompareGreaterThan : kCFCompareEqualTo;
}

Boolean CFStringHasPrefix(CFStringRef theString, CFStringRef prefix) {
    const StringUnits text(Require<NSString>(theString, __func__));
    const StringUnits wanted(Require<NSString>(prefix, __func__));
    return !wanted.view().empty() && text.view().starts_with(wanted.view());
}
