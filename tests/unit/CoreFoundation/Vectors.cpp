#include "tests/unit/CoreFoundation/Vectors.h"

#include <algorithm>
#include <fstream>
#include <ostream>

#include "VEKCommon/OwnedReference.h"
#include "scenes/notation/Hex.h"
#include "tests/support/Paths.h"
#include "tests/unit/CoreFoundation/Unsettled.h"

namespace vectors {

using nlohmann::json;

void PrintTo(const Vector& vector, std::ostream* stream) {
    *stream << vector.id;
}

std::vector<Vector> Load(const std::string& file) {
    std::ifstream stream(std::string(KRT9_TEST_DATA) + "/corefoundation/" + file);
    const json document = json::parse(stream);
    std::vector<Vector> all;
    for (const json& entry : document.at("cases")) {
        all.push_back({entry.at("id"), entry.at("family"), entry.at("input"), entry.at("result")});
    }
    return all;
}

std::vector<Vector> Covered(const std::string& file, const Checks& checks) {
    std::vector<Vector> covered = Load(file);
    std::erase_if(covered, [&](const Vector& vector) { return !checks.contains(vector.family); });
    return covered;
}

std::map<std::string, int> Uncovered(const std::string& file, const Checks& checks) {
    std::map<std::string, int> counts;
    for (const Vector& vector : Load(file)) {
        if (!checks.contains(vector.family)) {
            ++counts[vector.family];
        }
    }
    return counts;
}

void Verify(const Vector& vector, const Checks& checks, const Deviations& deviations) {
    SCOPED_TRACE(vector.id + " " + vector.input.dump());
    const std::string difference = checks.at(vector.family)(vector);
    const auto deviation = deviations.find(vector.id);
    if (const auto reason = WhyUnsettledHere(vector.family, deviation != deviations.end())) {
        ReportUnsettled(vector.id, difference, *reason);
    } else if (deviation == deviations.end()) {
        EXPECT_EQ(difference, "") << "measured: " << vector.result.dump();
    } else {
        EXPECT_EQ(difference, deviation->second.got) << deviation->second.reason;
    }
}

std::string NameOf(const testing::TestParamInfo<Vector>& info) {
    std::string name = info.param.id;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

std::vector<UniChar> UnitsOf(const json& text) {
    if (text.is_object()) {
        const std::vector<UInt8> bytes = Bytes(text.at("u16"));
        std::vector<UniChar> units;
        for (std::size_t index = 0; index + 1 < bytes.size(); index += 2) {
            units.push_back(static_cast<UniChar>(bytes[index] << 8 | bytes[index + 1]));
        }
        return units;
    }
    // A byte-order mark would be left out at the beginning, but not after another character.
    const std::string utf8 = 'x' + text.get<std::string>();
    const OwnedReference<CFStringRef> string(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(utf8.data()),
                                static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
    std::vector<UniChar> units = UnitsOf(string.get());
    units.erase(units.begin());
    return units;
}

CFStringRef NewText(const json& text) {
    if (text.is_null()) {
        return nullptr;
    }
    const std::vector<UniChar> units = UnitsOf(text);
    return CFStringCreateWithCharacters(kCFAllocatorDefault, units.data(),
                                        static_cast<CFIndex>(units.size()));
}

std::vector<UniChar> UnitsOf(CFStringRef text) {
    const CFIndex length = CFStringGetLength(text);
    std::vector<UniChar> units(static_cast<std::size_t>(length));
    CFStringGetCharacters(text, CFRangeMake(0, length), units.data());
    return units;
}

std::string Shown(CFStringRef text) {
    if (text == nullptr) {
        return "null";
    }
    std::string shown = "\"";
    for (const UniChar unit : UnitsOf(text)) {
        if (unit >= ' ' && unit <= '~') {
            shown += static_cast<char>(unit);
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", unit);
            shown += escape;
        }
    }
    return shown + '"';
}

std::vector<UInt8> Bytes(const std::string& hex) {
    return scene_notation::ParseHex(hex).value();
}

std::string CompareText(CFStringRef text, const json& expected) {
    if (text == nullptr || expected.is_null()) {
        return text == nullptr && expected.is_null() ? "" : "got " + Shown(text);
    }
    return UnitsOf(text) == UnitsOf(expected) ? "" : "got " + Shown(text);
}

}  // namespace vectors
