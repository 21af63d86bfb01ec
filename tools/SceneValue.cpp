#include "tools/SceneValue.h"

#include <ApplicationServices/ApplicationServices.h>

#include <map>
#include <string>
#include <vector>

#include "scenes/notation/Names.h"
#include "scenes/notation/Values.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace notation = scene_notation;

namespace {

using Written = std::optional<Json>;

Json WriteNumber(CFNumberRef number) {
    if (CFNumberIsFloatType(number)) {
        double value = 0;
        CFNumberGetValue(number, kCFNumberFloat64Type, &value);
        return notation::WriteDouble(value);
    }
    std::int64_t value = 0;
    CFNumberGetValue(number, kCFNumberSInt64Type, &value);
    return value;
}

template <typename Structure>
Structure Unwrap(AXValueRef value, AXValueType type) {
    Structure structure{};
    AXValueGetValue(value, type, &structure);
    return structure;
}

Written WriteStructure(AXValueRef value, std::string_view attribute) {
    switch (AXValueGetType(value)) {
        case kAXValueTypeCGPoint: {
            const auto point = Unwrap<CGPoint>(value, kAXValueTypeCGPoint);
            return notation::WritePoint(point.x, point.y, attribute);
        }
        case kAXValueTypeCGSize: {
            const auto size = Unwrap<CGSize>(value, kAXValueTypeCGSize);
            return notation::WriteSize(size.width, size.height, attribute);
        }
        case kAXValueTypeCGRect: {
            const auto rect = Unwrap<CGRect>(value, kAXValueTypeCGRect);
            return notation::WriteRect(rect.origin.x, rect.origin.y, rect.size.width,
                                       rect.size.height, attribute);
        }
        case kAXValueTypeCFRange: {
            const auto range = Unwrap<CFRange>(value, kAXValueTypeCFRange);
            return notation::WriteRange(range.location, range.length);
        }
        case kAXValueTypeAXError: {
            const auto error = Unwrap<AXError>(value, kAXValueTypeAXError);
            // Inside another value it is an object, not a failure to read.
            return attribute.empty() ? notation::WriteErrorValue(error)
                                     : notation::WriteFailure(error);
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
    return notation::WriteData({bytes, static_cast<std::size_t>(CFDataGetLength(data))});
}

class Writer {
  public:
    explicit Writer(const DescribeElement& describe) : describe_(describe) {}

    Written Write(CFTypeRef value, std::string_view attribute, std::size_t depth) const {
        if (depth > notation::kDeepestValue) {
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
            return notation::WriteNull();
        }
        return std::nullopt;
    }

    Written WriteArray(CFArrayRef array, std::string_view attribute, std::size_t depth) const {
        Json items = Json::array();
        for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
            auto item = Write(CFArrayGetValueAtIndex(array, i), "", depth + 1);
            if (!item) {
                return std::nullopt;
            }
            items.push_back(*std::move(item));
        }
        return notation::WriteArray(std::move(items), attribute);
    }

    // Sorted by key, since a dictionary has no order.
    Written WriteDictionary(CFDictionaryRef dictionary, std::size_t depth) const {
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
        return notation::WriteDictionary(entries);
    }

    const DescribeElement& describe_;
};

}  // namespace

std::optional<Json> SceneValueOf(CFTypeRef value, std::string_view attribute,
                                 const DescribeElement& describe) {
    return Writer(describe).Write(value, attribute, 0);
}

}  // namespace krt9ctl
