#include "scenes/notation/Hex.h"

#include <charconv>

namespace scene_notation {

std::string FormatHex(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> ParseHex(std::string_view text) {
    if (text.size() % 2 != 0) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 2);
    for (; !text.empty(); text.remove_prefix(2)) {
        const char* const end = text.data() + 2;
        if (std::from_chars(text.data(), end, bytes.emplace_back(), 16).ptr != end) {
            return std::nullopt;
        }
    }
    return bytes;
}

}  // namespace scene_notation
