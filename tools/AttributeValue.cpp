#include "tools/AttributeValue.h"

#include <ApplicationServices/ApplicationServices.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "scenes/notation/Names.h"
#include "tools/Text.h"

namespace krt9ctl {

using scene_notation::Answer;
using scene_notation::Value;

namespace {

using Converted = std::optional<Value>;

Value NumberOf(CFNumberRef number) {
    if (CFNumberIsFloatType(number)) {
        double value = 0;
        CFNumberGetValue(number, kCFNumberFloat64Type, &value);
        return {value};
    }
    std::int64_t value = 0;
    CFNumberGetValue(number, kCFNumberSInt64Type, &value);
    return {value};
}

template <typename Structure>
Structure Unwrap(AXValueRef value) {
    Structure structure{};
    AXValueGetValue(value, AXValueGetType(value), &structure);
    return structure;
}

Converted StructureOf(AXValueRef value) {
    switch (AXValueGetType(value)) {
        case kAXValueTypeCGPoint: {
            const auto [x, y] = Unwrap<CGPoint>(value);
            return Value{desktop_link::Point{x, y}};
        }
        case kAXValueTypeCGSize: {
            const auto [width, height] = Unwrap<CGSize>(value);
            return Value{desktop_link::Size{width, height}};
        }
        case kAXValueTypeCGRect: {
            const auto [origin, size] = Unwrap<CGRect>(value);
            return Value{desktop_link::Rect{{origin.x, origin.y}, {size.width, size.height}}};
        }
        case kAXValueTypeCFRange: {
            const auto [location, length] = Unwrap<CFRange>(value);
            return Value{desktop_link::Range{location, length}};
        }
        case kAXValueTypeAXError:
            return Value{desktop_link::ErrorValue{Unwrap<AXError>(value)}};
        case kAXValueTypeIllegal:
            break;
    }
    return std::nullopt;
}

Value BytesOf(CFDataRef data) {
    const UInt8* bytes = CFDataGetBytePtr(data);
    return {desktop_link::Bytes{{bytes, bytes + CFDataGetLength(data)}}};
}

class Conversion {
  public:
    explicit Conversion(const IdOfElement& idOf) : idOf_(idOf) {}

    Converted Convert(CFTypeRef value, std::size_t depth) const {
        if (depth > scene_notation::kDeepestValue) {
            return std::nullopt;
        }
        const CFTypeID type = CFGetTypeID(value);
        if (type == CFArrayGetTypeID()) {
            return ArrayOf(static_cast<CFArrayRef>(value), depth);
        }
        if (type == CFDictionaryGetTypeID()) {
            return DictionaryOf(static_cast<CFDictionaryRef>(value), depth);
        }
        return SimpleValueOf(value, type);
    }

  private:
    Converted SimpleValueOf(CFTypeRef value, CFTypeID type) const {
        if (type == CFStringGetTypeID()) {
            const auto text = Utf8Of(value);
            return text ? Converted({*text}) : std::nullopt;
        }
        if (type == CFBooleanGetTypeID()) {
            return Value{CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0};
        }
        if (type == CFNumberGetTypeID()) {
            return NumberOf(static_cast<CFNumberRef>(value));
        }
        if (type == AXValueGetTypeID()) {
            return StructureOf(static_cast<AXValueRef>(value));
        }
        if (type == AXUIElementGetTypeID()) {
            return Value{desktop_link::ElementReference{0, idOf_(value)}};
        }
        if (type == CFDataGetTypeID()) {
            return BytesOf(static_cast<CFDataRef>(value));
        }
        if (type == CFNullGetTypeID()) {
            return Value{};
        }
        return std::nullopt;
    }

    Converted ArrayOf(CFArrayRef array, std::size_t depth) const {
        desktop_link::Array items;
        for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
            auto item = Convert(CFArrayGetValueAtIndex(array, i), depth + 1);
            if (!item) {
                return std::nullopt;
            }
            items.push_back(*std::move(item));
        }
        return Value{std::move(items)};
    }

    // Sorted by key, since a dictionary has no order.
    Converted DictionaryOf(CFDictionaryRef dictionary, std::size_t depth) const {
        const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
        std::vector<CFTypeRef> keys(count);
        std::vector<CFTypeRef> values(count);
        CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
        std::map<std::string, Value> entries;
        for (std::size_t i = 0; i < count; ++i) {
            const auto key = Utf8Of(keys[i]);
            auto value = Convert(values[i], depth + 1);
            if (!key || !value) {
                return std::nullopt;
            }
            entries[*key] = *std::move(value);
        }
        desktop_link::Dictionary sorted;
        for (auto& [key, value] : entries) {
            sorted.push_back({key, std::move(value)});
        }
        return Value{std::move(sorted)};
    }

    const IdOfElement& idOf_;
};

}  // namespace

std::optional<Answer> AnswerOf(CFTypeRef value, const IdOfElement& idOf) {
    auto converted = Conversion(idOf).Convert(value, 0);
    if (!converted) {
        return std::nullopt;
    }
    const auto* error = std::get_if<desktop_link::ErrorValue>(&converted->content);
    return error != nullptr && error->code != kAXErrorSuccess ? Answer::Error(error->code)
                                                              : Answer::Of(*std::move(converted));
}

}  // namespace krt9ctl
