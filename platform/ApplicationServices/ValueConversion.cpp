#include "platform/ApplicationServices/ValueConversion.h"

#include <ApplicationServices/AXValue.h>

#include <limits>
#include <unordered_map>
#include <vector>

#include "platform/ApplicationServices/Element.h"
#include "platform/ApplicationServices/InternedText.h"
#include "platform/CoreFoundation/Runtime/Owned.h"

namespace application_services {

namespace {

using core_foundation::Owned;
using desktop_link::kDeepestValue;
using desktop_link::Value;

CFTypeRef CreateObject(const Value& value, std::size_t depth);

CFTypeRef CreateFailure() {
    const AXError error = kAXErrorFailure;
    return AXValueCreate(kAXValueTypeAXError, &error);
}

CFStringRef CreateText(const std::string& text) {
    if (const CFStringRef interned = InternedText(text)) {
        return static_cast<CFStringRef>(CFRetain(interned));
    }
    return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                   static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false);
}

CFArrayRef CreateArray(std::span<const Value> values, std::size_t depth) {
    std::vector<const void*> objects;
    objects.reserve(values.size());
    for (const Value& value : values) {
        CFTypeRef object = CreateObject(value, depth);
        objects.push_back(object != nullptr ? object : CreateFailure());
    }
    const CFArrayRef array =
        CFArrayCreate(kCFAllocatorDefault, objects.data(), static_cast<CFIndex>(objects.size()),
                      &kCFTypeArrayCallBacks);
    for (const void* object : objects) {
        CFRelease(object);
    }
    return array;
}

CFDictionaryRef CreateDictionary(const desktop_link::Dictionary& entries, std::size_t depth) {
    const CFMutableDictionaryRef dictionary = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    for (const auto& [name, value] : entries) {
        const Owned<CFStringRef> key(CreateText(name));
        const Owned<CFTypeRef> object(CreateObject(value, depth));
        if (key && object) {
            CFDictionarySetValue(dictionary, key.get(), object.get());
        }
    }
    return dictionary;
}

struct Creator {
    std::size_t depth;

    CFTypeRef operator()(std::monostate) const { return CFRetain(kCFNull); }
    CFTypeRef operator()(bool value) const {
        return CFRetain(value ? kCFBooleanTrue : kCFBooleanFalse);
    }
    CFTypeRef operator()(std::int64_t value) const {
        return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value);
    }
    CFTypeRef operator()(double value) const {
        return CFNumberCreate(kCFAllocatorDefault, kCFNumberFloat64Type, &value);
    }
    CFTypeRef operator()(const std::string& value) const { return CreateText(value); }
    CFTypeRef operator()(const desktop_link::Point& value) const {
        const CGPoint point{value.x, value.y};
        return AXValueCreate(kAXValueTypeCGPoint, &point);
    }
    CFTypeRef operator()(const desktop_link::Size& value) const {
        const CGSize size{value.width, value.height};
        return AXValueCreate(kAXValueTypeCGSize, &size);
    }
    CFTypeRef operator()(const desktop_link::Rect& value) const {
        const CGRect rect{{value.origin.x, value.origin.y}, {value.size.width, value.size.height}};
        return AXValueCreate(kAXValueTypeCGRect, &rect);
    }
    CFTypeRef operator()(const desktop_link::Range& value) const {
        const CFRange range{value.location, value.length};
        return AXValueCreate(kAXValueTypeCFRange, &range);
    }
    CFTypeRef operator()(const desktop_link::ErrorValue& value) const {
        const auto error = static_cast<AXError>(value.code);
        return AXValueCreate(kAXValueTypeAXError, &error);
    }
    CFTypeRef operator()(const desktop_link::ElementReference& value) const {
        return CreateElement(value);
    }
    CFTypeRef operator()(const desktop_link::Bytes& value) const {
        return CFDataCreate(kCFAllocatorDefault, value.content.data(),
                            static_cast<CFIndex>(value.content.size()));
    }
    CFTypeRef operator()(const desktop_link::Array& value) const {
        return CreateArray(value, depth + 1);
    }
    CFTypeRef operator()(const desktop_link::Dictionary& value) const {
        return CreateDictionary(value, depth + 1);
    }
};

CFTypeRef CreateObject(const Value& value, std::size_t depth) {
    return depth <= kDeepestValue ? std::visit(Creator{depth}, value.content) : nullptr;
}

std::optional<Value> ValueOf(CFTypeRef object, std::size_t depth);

std::optional<Value> NumberValue(CFNumberRef number) {
    if (CFNumberIsFloatType(number)) {
        double value = 0;
        CFNumberGetValue(number, kCFNumberFloat64Type, &value);
        return Value{value};
    }
    std::int64_t value = 0;
    CFNumberGetValue(number, kCFNumberSInt64Type, &value);
    return Value{value};
}

template <typename Structure>
Structure Unwrapped(AXValueRef value) {
    Structure structure{};
    AXValueGetValue(value, AXValueGetType(value), &structure);
    return structure;
}

std::optional<Value> StructureValue(AXValueRef value) {
    switch (AXValueGetType(value)) {
        case kAXValueTypeCGPoint: {
            const auto point = Unwrapped<CGPoint>(value);
            return Value{desktop_link::Point{point.x, point.y}};
        }
        case kAXValueTypeCGSize: {
            const auto size = Unwrapped<CGSize>(value);
            return Value{desktop_link::Size{size.width, size.height}};
        }
        case kAXValueTypeCGRect: {
            const auto rect = Unwrapped<CGRect>(value);
            return Value{desktop_link::Rect{{rect.origin.x, rect.origin.y},
                                            {rect.size.width, rect.size.height}}};
        }
        case kAXValueTypeCFRange: {
            const auto range = Unwrapped<CFRange>(value);
            return Value{desktop_link::Range{range.location, range.length}};
        }
        case kAXValueTypeAXError:
            return Value{desktop_link::ErrorValue{Unwrapped<AXError>(value)}};
        case kAXValueTypeIllegal:
            break;
    }
    return std::nullopt;
}

std::optional<Value> ArrayValue(CFArrayRef array, std::size_t depth) {
    desktop_link::Array values;
    const CFIndex count = CFArrayGetCount(array);
    for (CFIndex index = 0; index < count; ++index) {
        std::optional<Value> value = ValueOf(CFArrayGetValueAtIndex(array, index), depth);
        if (!value) {
            return std::nullopt;
        }
        values.push_back(*std::move(value));
    }
    return Value{std::move(values)};
}

std::optional<Value> DictionaryValue(CFDictionaryRef dictionary, std::size_t depth) {
    const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count);
    std::vector<const void*> objects(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), objects.data());
    desktop_link::Dictionary entries;
    for (std::size_t index = 0; index < count; ++index) {
        std::optional<std::string> name = TextOf(keys[index]);
        std::optional<Value> value = ValueOf(objects[index], depth);
        if (!name || !value) {
            return std::nullopt;
        }
        entries.push_back({*std::move(name), *std::move(value)});
    }
    return Value{std::move(entries)};
}

std::optional<Value> ValueOf(CFTypeRef object, std::size_t depth) {
    if (object == nullptr || depth > kDeepestValue) {
        return std::nullopt;
    }
    if (IsElement(object)) {
        return Value{ReferenceOf(static_cast<AXUIElementRef>(object))};
    }
    const CFTypeID type = CFGetTypeID(object);
    if (type == CFStringGetTypeID()) {
        std::optional<std::string> text = TextOf(object);
        return text ? std::optional(Value{*std::move(text)}) : std::nullopt;
    }
    if (type == CFBooleanGetTypeID()) {
        return Value{CFBooleanGetValue(static_cast<CFBooleanRef>(object)) != 0};
    }
    if (type == CFNumberGetTypeID()) {
        return NumberValue(static_cast<CFNumberRef>(object));
    }
    if (type == AXValueGetTypeID()) {
        return StructureValue(static_cast<AXValueRef>(object));
    }
    if (type == CFNullGetTypeID()) {
        return Value{};
    }
    if (type == CFArrayGetTypeID()) {
        return ArrayValue(static_cast<CFArrayRef>(object), depth + 1);
    }
    if (type == CFDictionaryGetTypeID()) {
        return DictionaryValue(static_cast<CFDictionaryRef>(object), depth + 1);
    }
    if (type == CFDataGetTypeID()) {
        const auto data = static_cast<CFDataRef>(object);
        const UInt8* bytes = CFDataGetBytePtr(data);
        return Value{desktop_link::Bytes{{bytes, bytes + CFDataGetLength(data)}}};
    }
    return std::nullopt;
}

std::optional<std::string> Encoded(CFStringRef string) {
    const CFIndex length = CFStringGetLength(string);
    std::string text(
        static_cast<std::size_t>(CFStringGetMaximumSizeForEncoding(length, kCFStringEncodingUTF8)),
        '\0');
    CFIndex used = 0;
    const CFIndex converted = CFStringGetBytes(
        string, CFRangeMake(0, length), kCFStringEncodingUTF8, 0, false,
        reinterpret_cast<UInt8*>(text.data()), static_cast<CFIndex>(text.size()), &used);
    if (converted != length) {
        return std::nullopt;
    }
    text.resize(static_cast<std::size_t>(used));
    return text;
}

// Constant strings are never freed, and a program has only those of its source. Nearly every name
// that is sent is one.
const std::optional<std::string>& TextOfConstant(CFStringRef string) {
    static auto* texts = new std::unordered_map<CFStringRef, std::optional<std::string>>;
    const auto known = texts->find(string);
    return known != texts->end() ? known->second
                                 : texts->emplace(string, Encoded(string)).first->second;
}

}  // namespace

CFTypeRef CreateObject(const Value& value) {
    return CreateObject(value, 0);
}

CFArrayRef CreateArray(std::span<const Value> values) {
    return CreateArray(values, 0);
}

std::optional<Value> ValueOf(CFTypeRef object) {
    return ValueOf(object, 0);
}

std::optional<std::string> TextOf(CFTypeRef object) {
    if (object == nullptr || CFGetTypeID(object) != CFStringGetTypeID()) {
        return std::nullopt;
    }
    const auto string = static_cast<CFStringRef>(object);
    if (CFGetRetainCount(string) == std::numeric_limits<CFIndex>::max()) {
        return TextOfConstant(string);
    }
    return Encoded(string);
}

}  // namespace application_services
