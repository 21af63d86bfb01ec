// Making, changing and reading strings.
#include <CoreFoundation/CFString.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstring>

#include "platform/CoreFoundation/Numbers/IntegerText.h"
#include "platform/CoreFoundation/Runtime/CFRuntime.h"
#include "platform/CoreFoundation/Strings/StringUnits.h"
#include "platform/CoreFoundation/Strings/TextEncoding.h"

using core_foundation::Require;
using core_foundation::Stop;

@implementation NSString (CFRuntime)
- (CFTypeID)cfTypeID {
    return CFStringGetTypeID();
}
@end

namespace {

NSMutableString* Mutable(CFMutableStringRef string, const char* function) {
    return Require<NSMutableString>(string, function);
}

NSRange Checked(CFRange range, NSString* string, const char* function) {
    const auto length = static_cast<CFIndex>([string length]);
    if (range.location < 0 || range.length < 0 || range.location > length ||
        range.length > length - range.location) {
        Stop(function, "range outside the string");
    }
    return NSMakeRange(static_cast<NSUInteger>(range.location),
                       static_cast<NSUInteger>(range.length));
}

}  // namespace

CFTypeID CFStringGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFString");
    return type;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* chars, CFIndex numChars) {
    if (numChars < 0 || (chars == nullptr && numChars > 0)) {
        Stop(__func__, "no characters");
    }
    return (CFStringRef)core_foundation::NewString(
        {reinterpret_cast<const char16_t*>(chars), static_cast<std::size_t>(numChars)});
}

CFStringRef CFStringCreateCopy(CFAllocatorRef, CFStringRef theString) {
    return (CFStringRef)[Require<NSString>(theString, __func__) copy];
}

CFMutableStringRef CFStringCreateMutable(CFAllocatorRef, CFIndex maxLength) {
    return (CFMutableStringRef)[[NSMutableString alloc]
        initWithCapacity:static_cast<NSUInteger>(std::clamp<CFIndex>(maxLength, 0, 4096))];
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef theString) {
    // Not mutableCopy: GNUstep refuses to copy unpaired surrogates.
    NSMutableString* string = [[NSMutableString alloc] initWithCapacity:0];
    [string setString:Require<NSString>(theString, __func__)];
    return (CFMutableStringRef)string;
}

void CFStringReplaceAll(CFMutableStringRef theString, CFStringRef replacement) {
    NSString* text = [Require<NSString>(replacement, __func__) copy];  // it may be theString itself
    [Mutable(theString, __func__) setString:text];
    [text release];
}

CFIndex CFStringGetLength(CFStringRef theString) {
    return static_cast<CFIndex>([Require<NSString>(theString, __func__) length]);
}

void CFStringGetCharacters(CFStringRef theString, CFRange range, UniChar* buffer) {
    NSString* string = Require<NSString>(theString, __func__);
    [string getCharacters:buffer range:Checked(range, string, __func__)];
}

SInt32 CFStringGetIntValue(CFStringRef str) {
    const core_foundation::StringUnits units(Require<NSString>(str, __func__));
    return core_foundation::LeadingInteger(units.view());
}
