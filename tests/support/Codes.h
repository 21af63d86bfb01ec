// The codes of messages as four characters.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace test_support {

// The first character in the most significant byte. Throws unless there are four.
inline std::int32_t CodeOf(std::string_view fourCharacters) {
    if (fourCharacters.size() != 4) {
        throw std::invalid_argument("no code: " + std::string(fourCharacters));
    }
    std::uint32_t code = 0;
    for (const char character : fourCharacters) {
        code = code << 8 | static_cast<unsigned char>(character);
    }
    return static_cast<std::int32_t>(code);
}

inline std::string CodeText(std::int32_t code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += static_cast<char>(static_cast<std::uint32_t>(code) >> shift & 0xFF);
    }
    return text;
}

}  // namespace test_support
