// Bytes as pairs of hex digits.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace scene_notation {

// Two lower-case digits a byte, no blanks.
std::string FormatHex(std::span<const std::uint8_t> bytes);

// Pairs of digits in either case, without blanks. Nothing for anything else.
std::optional<std::vector<std::uint8_t>> ParseHex(std::string_view text);

}  // namespace scene_notation
