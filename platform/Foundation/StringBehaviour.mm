// Where NSString of GNUstep differs from macOS in a way that the driver can notice, corrected.
//
// Most string classes of GNUstep implement these methods for themselves, so that a category on
// NSString alone would not reach them.
#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "platform/CoreFoundation/Numbers/IntegerText.h"
#include "platform/CoreFoundation/Strings/CanonicalText.h"
#include "platform/CoreFoundation/Strings/StringUnits.h"
#include "platform/CoreFoundation/Strings/TextEncoding.h"

using core_foundation::StringUnits;

namespace {

CFStringEncoding CoreFoundationEncoding(NSStringEncoding encoding) {
    switch (encoding) {
        case NSASCIIStringEncoding:
            return kCFStringEncodingASCII;
        case NSUTF8StringEncoding:
            return kCFStringEncodingUTF8;
        case NSISOLatin1StringEncoding:
            return kCFStringEncodingISOLatin1;
        case NSWindowsCP1252StringEncoding:
            return kCFStringEncodingWindowsLatin1;
        case NSUnicodeStringEncoding:
            return kCFStringEncodingUTF16;
        case NSMacOSRomanStringEncoding:
            return kCFStringEncodingMacRoman;
        default:
            return kCFStringEncodingInvalidId;  // the driver uses none of the others
    }
}

std::optional<std::string> Encoded(NSString* string, NSStringEncoding encoding) {
    return core_foundation::Encode(StringUnits(string).view(), CoreFoundationEncoding(encoding));
}

// GNUstep wraps around; macOS clamps to the limits.
int IntValue(NSString* self, SEL) {
    return core_foundation::LeadingInteger(StringUnits(self).view());
}

// GNUstep raises an exception for a character that the encoding lacks; macOS returns NO. What does
// not fit is cut, with the result NO: GNUstep's mutable strings fetch all but the last character of
// a constant string that way.
BOOL GetCString(NSString* self, SEL, char* buffer, NSUInteger size, NSStringEncoding encoding) {
    if (size == 0) {
        return NO;
    }
    const std::optional<std::string> bytes = Encoded(self, encoding);
    const std::size_t length = bytes ? std::min<std::size_t>(bytes->size(), size - 1) : 0;
    if (bytes) {
        std::memcpy(buffer, bytes->data(), length);
    }
    buffer[length] = '\0';
    return bytes && length == bytes->size();
}

// Null for a character that the encoding lacks. Valid until the autorelease pool drains.
const char* CStringUsingEncoding(NSString* self, SEL, NSStringEncoding encoding) {
    const auto bytes = Encoded(self, encoding);
    if (!bytes) {
        return nullptr;
    }
    NSData* data = [NSData dataWithBytes:bytes->c_str() length:bytes->size() + 1];
    return static_cast<const char*>([data bytes]);
}

const char* UTF8String(NSString* self, SEL selector) {
    return CStringUsingEncoding(self, selector, NSUTF8StringEncoding);
}

// Text is equal when its code units are: composed and decomposed characters differ, as in macOS's
// isEqualToString:.
BOOL IsEqualToString(NSString* self, SEL, NSString* other) {
    return other != nil && core_foundation::SameUnits(self, other);
}

BOOL IsEqual(NSString* self, SEL selector, id other) {
    return self == other ||
           ([other isKindOfClass:[NSString class]] && IsEqualToString(self, selector, other));
}

// Canonical equivalence, or code units when NSLiteralSearch says so. Nil, which macOS leaves
// undefined, comes before every text. Other options are left to GNUstep.
NSComparisonResult CompareWithOptions(NSString* self, SEL, NSString* other,
                                      NSStringCompareOptions options) {
    if (other == nil) {
        return NSOrderedDescending;
    }
    if ((options & ~static_cast<NSUInteger>(NSLiteralSearch)) != 0) {
        return [self compare:other options:options range:NSMakeRange(0, [self length])];
    }
    const StringUnits first(self);
    const StringUnits second(other);
    const int order = options == NSLiteralSearch
                          ? first.view().compare(second.view())
                          : core_foundation::CompareCanonically(first.view(), second.view());
    return order < 0 ? NSOrderedAscending : order > 0 ? NSOrderedDescending : NSOrderedSame;
}

NSComparisonResult Compare(NSString* self, SEL selector, NSString* other) {
    return CompareWithOptions(self, selector, other, 0);
}

std::optional<core_foundation::FoundText> FindLiterally(std::u16string_view text,
                                                        std::u16string_view wanted) {
    const std::size_t location = text.find(wanted);
    return location == std::u16string_view::npos
               ? std::nullopt
               : std::optional(core_foundation::FoundText{location, wanted.size()});
}

// Finds as the comparison does. An empty text is not found, whereas GNUstep finds it at 0.
NSRange RangeWithOptions(NSString* self, SEL, NSString* wanted, NSStringCompareOptions options) {
    if (wanted == nil) {
        [NSException raise:NSInvalidArgumentException format:@"rangeOfString: nil argument"];
    }
    if ((options & ~static_cast<NSUInteger>(NSLiteralSearch)) != 0) {
        return [self rangeOfString:wanted options:options range:NSMakeRange(0, [self length])];
    }
    const StringUnits text(self);
    const StringUnits needle(wanted);
    std::optional<core_foundation::FoundText> found;
    if (!needle.view().empty()) {
        found = options == NSLiteralSearch
                    ? FindLiterally(text.view(), needle.view())
                    : core_foundation::FindCanonically(text.view(), needle.view());
    }
    return found ? NSMakeRange(found->location, found->length) : NSMakeRange(NSNotFound, 0);
}

NSRange RangeOfString(NSString* self, SEL selector, NSString* wanted) {
    return RangeWithOptions(self, selector, wanted, 0);
}

NSStringEncoding DefaultCStringEncoding(Class, SEL) {
    return NSMacOSRomanStringEncoding;
}

bool Inherits(Class type, Class ancestor) {
    while (type != Nil && type != ancestor) {
        type = class_getSuperclass(type);
    }
    return type == ancestor;
}

// Adds the function as a method to every class, also those that would inherit it: GNUstep
// adds methods to some of them later, and does not look up the ones they inherit again.
template <typename Function>
void ReplaceEverywhere(const std::vector<Class>& classes, SEL selector, Function* function) {
    const auto implementation = reinterpret_cast<IMP>(function);
    const char* types = method_getTypeEncoding(class_getInstanceMethod([NSString class], selector));
    for (Class type : classes) {
        // With GCC's runtime class_replaceMethod alone would change the inherited method.
        if (!class_addMethod(type, selector, implementation, types)) {
            class_replaceMethod(type, selector, implementation, types);
        }
    }
}

std::vector<Class> StringClasses() {
    std::vector<Class> classes(static_cast<std::size_t>(objc_getClassList(nullptr, 0)));
    objc_getClassList(classes.data(), static_cast<int>(classes.size()));
    std::erase_if(classes, [](Class type) { return !Inherits(type, [NSString class]); });
    return classes;
}

}  // namespace

@implementation NSString (Behaviour)

+ (void)load {
    const std::vector<Class> classes = StringClasses();
    ReplaceEverywhere(classes, @selector(intValue), IntValue);
    ReplaceEverywhere(classes, @selector(getCString:maxLength:encoding:), GetCString);
    ReplaceEverywhere(classes, @selector(cStringUsingEncoding:), CStringUsingEncoding);
    ReplaceEverywhere(classes, @selector(UTF8String), UTF8String);
    ReplaceEverywhere(classes, @selector(isEqualToString:), IsEqualToString);
    ReplaceEverywhere(classes, @selector(isEqual:), IsEqual);
    ReplaceEverywhere(classes, @selector(compare:), Compare);
    ReplaceEverywhere(classes, @selector(compare:options:), CompareWithOptions);
    ReplaceEverywhere(classes, @selector(rangeOfString:), RangeOfString);
    ReplaceEverywhere(classes, @selector(rangeOfString:options:), RangeWithOptions);

    const SEL defaultEncoding = @selector(defaultCStringEncoding);
    const Class metaclass = object_getClass([NSString class]);
    class_replaceMethod(metaclass, defaultEncoding, reinterpret_cast<IMP>(DefaultCStringEncoding),
                        method_getTypeEncoding(class_getClassMethod(self, defaultEncoding)));
}

@end
