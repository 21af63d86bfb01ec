#include "tests/unit/CoreFoundation/PropertyList/TaggedTree.h"

#import <Foundation/Foundation.h>

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <vector>

#include "tests/unit/CoreFoundation/PropertyList/ArchiverUID.h"

using nlohmann::json;

namespace {

bool HasUnpairedSurrogate(const std::vector<UniChar>& units) {
    for (std::size_t at = 0; at < units.size(); ++at) {
        const bool isHigh = (units[at] & 0xFC00) == 0xD800;
        if (isHigh && at + 1 < units.size() && (units[at + 1] & 0xFC00) == 0xDC00) {
            ++at;
        } else if ((units[at] & 0xF800) == 0xD800) {
            return true;
        }
    }
    return false;
}

// An unpaired surrogate has no UTF-8: its text is given as code units.
json Text(CFStringRef string) {
    std::vector<UniChar> units(static_cast<std::size_t>(CFStringGetLength(string)));
    CFStringGetCharacters(string, {0, CFStringGetLength(string)}, units.data());
    if (!HasUnpairedSurrogate(units)) {
        return Utf8(string);
    }
    std::string hex;
    for (const UniChar unit : units) {
        hex += fmt::format("{:04x}", unit);
    }
    return {{"u16", hex}};
}

json Number(CFNumberRef number) {
    json tree{{"cftype", CFNumberGetType(number)}};
    if (CFNumberIsFloatType(number)) {
        double value = 0;
        CFNumberGetValue(number, kCFNumberFloat64Type, &value);
        tree["real"] = fmt::format("{:.17g}", value);
        tree["bits"] = fmt::format("{:016x}", std::bit_cast<std::uint64_t>(value));
        return tree;
    }
    SInt64 value = 0;
    const bool fits = CFNumberGetValue(number, kCFNumberSInt64Type, &value);
    tree["int"] = [[(NSNumber*)number stringValue] UTF8String];
    if (tree["int"] != std::to_string(value)) {
        tree["as_sint64"] = std::to_string(value);
        tree["as_sint64_ok"] = fits;
    }
    return tree;
}

json Array(CFArrayRef array) {
    json items = json::array();
    for (CFIndex index = 0; index < CFArrayGetCount(array); ++index) {
        items.push_back(TaggedTree(CFArrayGetValueAtIndex(array, index)));
    }
    return {{"array", std::move(items)}};
}

json Dictionary(CFDictionaryRef dictionary) {
    const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count);
    std::vector<const void*> values(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
    json entries = json::array();
    for (std::size_t index = 0; index < count; ++index) {
        json key = CFGetTypeID(keys[index]) == CFStringGetTypeID()
                       ? Text(static_cast<CFStringRef>(keys[index]))
                       : TaggedTree(keys[index]);
        entries.push_back({std::move(key), TaggedTree(values[index])});
    }
    std::sort(entries.begin(), entries.end());
    return {{"dict", std::move(entries)}};
}

// The vectors do not contain sets.
json Other(id object) {
    if ([object isKindOfClass:[NSDate class]]) {
        return {{"date", fmt::format("{:.17g}", [object timeIntervalSinceReferenceDate])}};
    }
    if (const auto value = ArchiverUIDValue((CFTypeRef)object)) {
        return {{"other", "CFKeyedArchiverUID"}, {"value", *value}};
    }
    if ([object isKindOfClass:[NSSet class]]) {
        return {{"other", "CFSet"}};
    }
    return {
        {"other", object == [NSNull null] ? "CFNull" : [[[object class] description] UTF8String]}};
}

json Data(CFDataRef data) {
    std::string hex;
    for (CFIndex index = 0; index < CFDataGetLength(data); ++index) {
        hex += fmt::format("{:02x}", CFDataGetBytePtr(data)[index]);
    }
    return {{"data", hex}};
}

json Tree(CFTypeRef object) {
    const CFTypeID type = CFGetTypeID(object);
    if (type == CFStringGetTypeID()) {
        return {{"string", Text(static_cast<CFStringRef>(object))}};
    }
    if (type == CFBooleanGetTypeID()) {
        return {{"bool", object == kCFBooleanTrue}};
    }
    if (type == CFNumberGetTypeID()) {
        return Number(static_cast<CFNumberRef>(object));
    }
    if (type == CFDataGetTypeID()) {
        return Data(static_cast<CFDataRef>(object));
    }
    if (type == CFArrayGetTypeID()) {
        return Array(static_cast<CFArrayRef>(object));
    }
    if (type == CFDictionaryGetTypeID()) {
        return Dictionary(static_cast<CFDictionaryRef>(object));
    }
    return Other((id)object);
}

}  // namespace

std::string Utf8(CFStringRef string) {
    const CFRange all{0, CFStringGetLength(string)};
    CFIndex size = 0;
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, '?', false, nullptr, 0, &size);
    std::string text(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, '?', false,
                     reinterpret_cast<UInt8*>(text.data()), size, nullptr);
    return text;
}

json TaggedTree(CFTypeRef object) {
    if (object == nullptr) {
        return nullptr;
    }
    @autoreleasepool {
        return Tree(object);
    }
}

json FullTree(const json& tree) {
    if (tree.is_object() && tree.contains("nest")) {
        json full = FullTree(tree["leaf"]);
        for (int level = 0; level < tree["levels"]; ++level) {
            full = tree["nest"] == "array"
                       ? json{{"array", json::array({std::move(full)})}}
                       : json{{"dict", json::array({json::array({tree["key"], std::move(full)})})}};
        }
        return full;
    }
    if (tree.is_object() && tree.value("other", "") == "CFSet") {
        return {{"other", "CFSet"}};
    }
    if (tree.is_structured()) {
        json full = tree;
        for (json& part : full) {
            part = FullTree(part);
        }
        return full;
    }
    return tree;
}

json TaggedError(CFErrorRef error) {
    if (error == nullptr) {
        return nullptr;
    }
    @autoreleasepool {
        return {{"domain", [[(NSError*)error domain] UTF8String]},
                {"code", [(NSError*)error code]}};
    }
}
