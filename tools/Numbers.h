// Whole numbers as people type them.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace krt9ctl {

// Decimal, or hexadecimal after 0x. Nothing for any other text, signs included, and for numbers
// above 2^40, which no parameter accepts.
inline std::optional<std::int64_t> ParseUnsigned(std::string_view text) {
    constexpr std::uint64_t kLargest = 1ULL << 40;
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(hex ? 2 : 0);
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, problem] = std::from_chars(text.data(), end, number, hex ? 16 : 10);
    if (problem != std::errc() || stop != end || number > kLargest) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(number);
}

}  // namespace krt9ctl
