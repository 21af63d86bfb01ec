// Comparing and searching strings by code units.
#include <CoreFoundation/CFString.h>

#include "platform/CoreFoundation/CFRuntime.h"
#include "platform/CoreFoundation/StringUnits.h"

using core_foundation::Require;
using core_foundation::StringUnits;

namespace {

void AllowNoOptions(CFStringCompareFlags options, const char* function) {
    if (options != 0) {
        core_foundation::Stop(function, "only options 0 is provided");
    }
}

}  // namespace

CFComparisonResult CFStringCompare(CFStringRef theString1, CFStringRef theString2,
                                   CFStringCompareFlags compareOptions) {
    AllowNoOptions(compareOptions, __func__);
    const StringUnits first(Require<NSString>(theString1, __func__));
    const StringUnits second(Require<NSString>(theString2, __func__));
    const int order = first.view().compare(second.view());
    return order < 0 ? kCFCompareLessThan : order > 0 ? kCFCompareGreaterThan : kCFCompareEqualTo;
}

CFRange CFStringFind(CFStringRef theString, CFStringRef stringToFind,
                     CFStringCompareFlags compareOptions) {
    AllowNoOptions(compareOptions, __func__);
    const StringUnits text(Require<NSString>(theString, __func__));
    const StringUnits wanted(Require<NSString>(stringToFind, __func__));
    if (wanted.view().empty()) {
        return CFRangeMake(kCFNotFound, 0);
    }
    const std::size_t found = text.view().find(wanted.view());
    if (found == std::u16string_view::npos) {
        return CFRangeMake(kCFNotFound, 0);
    }
    return CFRangeMake(static_cast<CFIndex>(found), static_cast<CFIndex>(wanted.view().size()));
}

Boolean CFStringHasPrefix(CFStringRef theString, CFStringRef prefix) {
    const StringUnits text(Require<NSString>(theString, __func__));
    const StringUnits wanted(Require<NSString>(prefix, __func__));
    return !wanted.view().empty() && text.view().starts_with(wanted.view());
}

Boolean CFStringHasSuffix(CFStringRef theString, CFStringRef suffix) {
    const StringUnits text(Require<NSString>(theString, __func__));
    const StringUnits wanted(Require<NSString>(suffix, __func__));
    return !wanted.view().empty() && text.view().ends_with(wanted.view());
}
