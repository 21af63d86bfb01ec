#include "tools/SceneValue.h"

#include <ApplicationServices/ApplicationServices.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "tools/Bytes.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

constexpr int kDeepestValue = 32;

using Written = std::optional<Json>;

Json Tagged(const char* tag, Json content) {
    Json tagged;
    tagged[tag] = std::move(content);
    return tagged;
}

Json WriteUnusualNumber(double number) {
    const char* text = std::isnan(number) ? "nan" : number > 0 ? "inf" : "-inf";
    return Tagged("double", text);
}

// A whole number without a fraction, so that coordinates read well.
Json WriteCoordinate(double number) {
    constexpr double kExact = 9007199254740992;  // 2^53
    if (!std::isfinite(number)) {
        return WriteUnusualNumber(number);
    }
    if (std::trunc(number) == number && std::abs(number) < kExact &&
        !(number == 0 && std::signbit(number))) {
        return static_cast<std::int64_t>(number);
    }
    return number;
}

Json WriteCoordinates(std::initializer_list<double> numbers) {
    Json written = Json::array();
    for (const double number : numbers) {
        written.push_back(WriteCoordinate(number));
    }
    return written;
}

Written WriteNumber(CFNumberRef number) {
    if (CFNumberIsFloatType(number)) {
        double value = 0;
        CFNumberGetValue(number, kCFNumberFloat64Type, &value);
        return std::isfinite(value) ? Json(value) : WriteUnusualNumber(value);
    }
    std::int64_t value = 0;
    CFNumberGetValue(number, kCFNumberSInt64Type, &value);
    return Json(value);
}

template <typename Structure>
Structure Unwrap(AXValueRef value, AXValueType type) {
    Structure structure{};
    AXValueGetValue(value, type, &structure);
    return structure;
}

Written WriteError(AXError error) {
    return error == kAXErrorNoValue ? Json(nullptr) : Tagged("error", error);
}

// Points, sizes and frames stand untagged where their attribute says what they are.
Written WriteStructure(AXValueRef value, std::string_view attribute) {
    const auto tagUnless = [attribute](std::string_view plain, const char* tag, Json content) {
        return attribute == plain ? content : Tagged(tag, std::move(content));
    };
    switch (AXValueGetType(value)) {
        case kAXValueTypeCGPoint: {
            const auto point = Unwrap<CGPoint>(value, kAXValueTypeCGPoint);
            return tagUnless("AXPosition", "point", WriteCoordinates({point.x, point.y}));
        }
        case kAXValueTypeCGSize: {
            const auto size = Unwrap<CGSize>(value, kAXValueTypeCGSize);
            return tagUnless("AXSize", "size", WriteCoordinates({size.width, size.height}));
        }
        case kAXValueTypeCGRect: {
            const auto rect = Unwrap<CGRect>(value, kAXValueTypeCGRect);
            return tagUnless("AXFrame", "rect",
                             WriteCoordinates({rect.origin.x, rect.origin.y, rect.size.width,
                                               rect.size.height}));
        }
        case kAXValueTypeCFRange: {
            const auto range = Unwrap<CFRange>(value, kAXValueTypeCFRange);
            return Tagged("range", Json::array({range.location, range.length}));
        }
        case kAXValueTypeAXError: {
            const auto error = Unwrap<AXError>(value, kAXValueTypeAXError);
            // Inside another value it is an object, not a failure to read.
            return attribute.empty() ? Tagged("axerror", error) : WriteError(error);
        }
        case kAXValueTypeIllegal:
            break;
    }
    return std::nullopt;
}

Written WriteText(CFTypeRef text) {
    const auto utf8 = Utf8Of(text);
    return utf8 ? Written(*utf8) : std::nullopt;
}

Json WriteData(CFDataRef data) {
    const UInt8* bytes = CFDataGetBytePtr(data);
    return Tagged("data", FormatHex({bytes, static_cast<std::size_t>(CFDataGetLength(data))}));
}

bool PlainArrayMeansSomethingElse(std::string_view attribute) {
    constexpr std::array<std::string_view, 6> kNames = {
        "AXPosition", "AXSize", "AXFrame", "AXChildren", "AXSelectedRows", "AXWindows"};
    return std::find(kNames.begin(), kNames.end(), attribute) != kNames.end();
}

class Writer {
  public:
    explicit Writer(const DescribeElement& describe) : describe_(describe) {}

    Written Write(CFTypeRef value, std::string_view attribute, int depth) const {
        if (depth > kDeepestValue) {
            return std::nullopt;
        }
        const CFTypeID type = CFGetTypeID(value);
        if (type == CFArrayGetTypeID()) {
            return WriteArray(static_cast<CFArrayRef>(value), attribute, depth);
        }
        if (type == CFDictionaryGetTypeID()) {
            return WriteDictionary(static_cast<CFDictionaryRef>(value), depth);
        }
        return WriteSimple(value, type, attribute);
    }

  private:
    Written WriteSimple(CFTypeRef value, CFTypeID type, std::string_view attribute) const {
        if (type == CFStringGetTypeID()) {
            return WriteText(value);
        }
        if (type == CFBooleanGetTypeID()) {
            return Json(CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0);
        }
        if (type == CFNumberGetTypeID()) {
            return WriteNumber(static_cast<CFNumberRef>(value));
        }
        if (type == AXValueGetTypeID()) {
            return WriteStructure(static_cast<AXValueRef>(value), attribute);
        }
        if (type == AXUIElementGetTypeID()) {
            return describe_(value);
        }
        if (type == CFDataGetTypeID()) {
            return WriteData(static_cast<CFDataRef>(value));
        }
        if (type == CFNullGetTypeID()) {
            return Tagged("null", true);
        }
        return std::nullopt;
    }

    Written WriteArray(CFArrayRef array, std::string_view attribute, int depth) const {
        Json items = Json::array();
        for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
            auto item = Write(CFArrayGetValueAtIndex(array, i), "", depth + 1);
            if (!item) {
                return std::nullopt;
            }
            items.push_back(*std::move(item));
        }
        return PlainArrayMeansSomethingElse(attribute) ? Tagged("array", std::move(items)) : items;
    }

    // Sorted by key, since a dictionary has no order.
    Written WriteDictionary(CFDictionaryRef dictionary, int depth) const {
        const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
        std::vector<CFTypeRef> keys(count);
        std::vector<CFTypeRef> values(count);
        CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
        std::map<std::string, Json> entries;
        for (std::size_t i = 0; i < count; ++i) {
            const auto key = Utf8Of(keys[i]);
            auto value = Write(values[i], "", depth + 1);
            if (!key || !value) {
                return std::nullopt;
            }
            entries[*key] = *std::move(value);
        }
        return Tagged("dictionary", entries);
    }

    const DescribeElement& describe_;
};

}  // namespace

std::optional<Json> SceneValueOf(CFTypeRef value, std::string_view attribute,
                                 const DescribeElement& describe) {
    return Writer(describe).Write(value, attribute, 0);
}

}  // namespace krt9ctl
