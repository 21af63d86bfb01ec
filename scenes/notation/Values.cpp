#include "scenes/notation/Values.h"

#include <cmath>
#include <initializer_list>
#include <string>
#include <utility>

#include "scenes/notation/Names.h"

namespace scene_notation {

namespace {

Json Tagged(const char* tag, Json content) {
    Json tagged;
    tagged[tag] = std::move(content);
    return tagged;
}

// Untagged where the attribute itself says what an array of numbers is.
Json WriteStructure(std::initializer_list<double> numbers, const char* tag,
                    std::string_view plainFor, std::string_view attribute) {
    Json written = Json::array();
    for (const double number : numbers) {
        written.push_back(WriteCoordinate(number));
    }
    return attribute == plainFor ? written : Tagged(tag, std::move(written));
}

// JSON has no numbers for these.
Json WriteNonFinite(double number) {
    if (std::isnan(number)) {
        return Tagged(tag::kDouble, "nan");
    }
    return Tagged(tag::kDouble, number > 0 ? "inf" : "-inf");
}

}  // namespace

Json WriteNull() {
    return Tagged(tag::kNull, true);
}

Json WriteNothing() {
    return Tagged(tag::kNothing, true);
}

Json WriteCoordinate(double number) {
    constexpr double kExact = 9007199254740992;  // whole numbers up to 2^53 have one form only
    const bool isNegativeZero = number == 0 && std::signbit(number);
    if (std::trunc(number) == number && std::abs(number) < kExact && !isNegativeZero) {
        return static_cast<std::int64_t>(number);
    }
    return WriteDouble(number);
}

Json WriteDouble(double number) {
    return std::isfinite(number) ? Json(number) : WriteNonFinite(number);
}

Json WritePoint(double x, double y, std::string_view attribute) {
    return WriteStructure({x, y}, tag::kPoint, "AXPosition", attribute);
}

Json WriteSize(double width, double height, std::string_view attribute) {
    return WriteStructure({width, height}, tag::kSize, "AXSize", attribute);
}

Json WriteRect(double x, double y, double width, double height, std::string_view attribute) {
    return WriteStructure({x, y, width, height}, tag::kRect, "AXFrame", attribute);
}

Json WriteRange(std::int64_t location, std::int64_t length) {
    return Tagged(tag::kRange, Json::array({location, length}));
}

Json WriteData(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte / 16];
        text += kDigits[byte % 16];
    }
    return Tagged(tag::kData, std::move(text));
}

Json WriteArray(Json items, std::string_view attribute) {
    return PlainArrayMeansSomethingElse(attribute) ? Tagged(tag::kArray, std::move(items)) : items;
}

Json WriteDictionary(Json entries) {
    return Tagged(tag::kDictionary, std::move(entries));
}

Json WriteErrorValue(std::int32_t error) {
    return Tagged(tag::kErrorValue, error);
}

Json WriteFailure(std::int32_t error) {
    return error == kNoValueError ? Json(nullptr) : Tagged(tag::kFailure, error);
}

}  // namespace scene_notation
