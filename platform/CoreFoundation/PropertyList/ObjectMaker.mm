#include "platform/CoreFoundation/PropertyList/ObjectMaker.h"

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFPropertyList.h>
#include <CoreFoundation/CFString.h>
#import <Foundation/Foundation.h>

#import "platform/CoreFoundation/PropertyList/KeyedArchiverUID.h"

namespace property_list {

namespace {

static_assert(sizeof(Object) == sizeof(CFTypeRef),
              "owned objects in a row are references in a row");

const void** References(const std::vector<Object>& objects) {
    return const_cast<const void**>(reinterpret_cast<const void* const*>(objects.data()));
}

CFIndex Count(std::size_t count) {
    return static_cast<CFIndex>(count);
}

}  // namespace

bool ObjectMaker::LeavesMayChange() const {
    return (options_ & kCFPropertyListMutableContainersAndLeaves) != 0;
}

Object ObjectMaker::String(std::u16string_view text) const {
    Object string(CFStringCreateWithCharacters(
        kCFAllocatorDefault, reinterpret_cast<const UniChar*>(text.data()), Count(text.size())));
    if (LeavesMayChange()) {
        string.reset(CFStringCreateMutableCopy(kCFAllocatorDefault, 0,
                                               static_cast<CFStringRef>(string.get())));
    }
    return string;
}

Object ObjectMaker::Data(std::span<const std::uint8_t> bytes) const {
    if (!LeavesMayChange()) {
        return Object(CFDataCreate(kCFAllocatorDefault, bytes.data(), Count(bytes.size())));
    }
    const CFMutableDataRef data = CFDataCreateMutable(kCFAllocatorDefault, 0);
    CFDataAppendBytes(data, bytes.data(), Count(bytes.size()));
    return Object(data);
}

Object ObjectMaker::Array(const std::vector<Object>& items) const {
    if (options_ == kCFPropertyListImmutable) {
        return Object(CFArrayCreate(kCFAllocatorDefault, References(items), Count(items.size()),
                                    &kCFTypeArrayCallBacks));
    }
    const CFMutableArrayRef array =
        CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (const Object& item : items) {
        CFArrayAppendValue(array, item.get());
    }
    return Object(array);
}

Object ObjectMaker::Set(const std::vector<Object>& items) {
    NSMutableSet* set = [[NSMutableSet alloc] initWithCapacity:items.size()];
    for (const Object& item : items) {
        [set addObject:(id)item.get()];
    }
    return Object((CFTypeRef)set);
}

Object ObjectMaker::Dictionary(const std::vector<Object>& keys, const std::vector<Object>& values,
                               Duplicates duplicates) const {
    const CFMutableDictionaryRef dictionary = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    const auto put =
        duplicates == Duplicates::kLastWins ? CFDictionarySetValue : CFDictionaryAddValue;
    for (std::size_t index = 0; index < keys.size(); ++index) {
        put(dictionary, keys[index].get(), values[index].get());
    }
    return Object(dictionary);
}

Object ObjectMaker::Null() {
    return Object(CFRetain(kCFNull));
}

Object ObjectMaker::Boolean(bool value) {
    return Object(CFRetain(value ? kCFBooleanTrue : kCFBooleanFalse));
}

Object ObjectMaker::Integer(std::int64_t value) {
    return Object(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
}

Object ObjectMaker::WideInteger(std::uint64_t value) {
    if (value <= INT64_MAX) {
        return Integer(static_cast<std::int64_t>(value));
    }
    return Object((CFTypeRef)[[NSNumber alloc] initWithUnsignedLongLong:value]);
}

Object ObjectMaker::Real(float value) {
    return Object(CFNumberCreate(kCFAllocatorDefault, kCFNumberFloat32Type, &value));
}

Object ObjectMaker::Real(double value) {
    return Object(CFNumberCreate(kCFAllocatorDefault, kCFNumberFloat64Type, &value));
}

Object ObjectMaker::Date(CFAbsoluteTime time) {
    return Object((CFTypeRef)[[NSDate alloc] initWithTimeIntervalSinceReferenceDate:time]);
}

Object ObjectMaker::KeyedArchiverUID(std::uint32_t value) {
    return Object((CFTypeRef)[[CFKeyedArchiverUID alloc] initWithValue:value]);
}

bool ObjectMaker::MayBeKey(CFTypeRef object) {
    const CFTypeID type = CFGetTypeID(object);
    return type == CFStringGetTypeID() || type == CFNumberGetTypeID() ||
           type == CFBooleanGetTypeID() || type == CFDataGetTypeID() ||
           [(id)object isKindOfClass:[NSDate class]];
}

Object ObjectMaker::UIDOrDictionary(Object dictionary) {
    const auto entries = static_cast<CFDictionaryRef>(dictionary.get());
    const void* value = CFDictionaryGetCount(entries) == 1
                            ? CFDictionaryGetValue(entries, CFSTR("CF$UID"))
                            : nullptr;
    if (value == nullptr || CFGetTypeID(value) != CFNumberGetTypeID()) {
        return dictionary;
    }
    SInt64 number = 0;
    CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &number);
    return KeyedArchiverUID(static_cast<std::uint32_t>(number));
}

char16_t NextStepCharacter(std::uint8_t byte) {
    NSString* text = [[NSString alloc] initWithBytes:&byte
                                              length:1
                                            encoding:NSNEXTSTEPStringEncoding];
    const char16_t character = [text characterAtIndex:0];  // every byte has one
    [text release];
    return character;
}

}  // namespace property_list
