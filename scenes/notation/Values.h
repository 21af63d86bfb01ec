// Attribute values as a scene writes them, from plain numbers, texts and bytes. An attribute's name
// decides which values need no tag; it is empty for a value inside another one.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>

namespace scene_notation {

using Json = nlohmann::ordered_json;

// The error of a reading that finds no value (as in AXError), which is written as null.
inline constexpr std::int32_t kNoValueError = -25212;

Json WriteNull();
Json WriteNothing();

// A whole number stands without a fraction, so that coordinates read well.
Json WriteCoordinate(double number);
// Keeps its fraction, which tells a floating number from an integer.
Json WriteDouble(double number);

Json WritePoint(double x, double y, std::string_view attribute);
Json WriteSize(double width, double height, std::string_view attribute);
Json WriteRect(double x, double y, double width, double height, std::string_view attribute);
Json WriteRange(std::int64_t location, std::int64_t length);
Json WriteData(std::span<const std::uint8_t> bytes);
Json WriteArray(Json items, std::string_view attribute);
Json WriteDictionary(Json entries);

// A value of error type, and a reading that fails.
Json WriteErrorValue(std::int32_t error);
Json WriteFailure(std::int32_t error);

}  // namespace scene_notation
