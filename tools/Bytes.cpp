#include "tools/Bytes.h"

#include <fmt/format.h>

#include <algorithm>

namespace krt9ctl {

namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

int HexDigitValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return -1;
}

bool IsPrintableAscii(unsigned char character) {
    return character >= 0x20 && character <= 0x7E;
}

}  // namespace

std::optional<Bytes> ParseHex(std::string_view text) {
    Bytes bytes;
    std::size_t position = 0;
    while (position < text.size()) {
        if (text[position] == ' ') {
            ++position;
            continue;
        }
        const int high = HexDigitValue(text[position]);
        const int low = position + 1 < text.size() ? HexDigitValue(text[position + 1]) : -1;
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
        position += 2;
    }
    return bytes;
}

std::string FormatHex(std::span<const std::uint8_t> bytes) {
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        text += kHexDigits[byte >> 4];
        text += kHexDigits[byte & 15];
    }
    return text;
}

std::optional<MessageCode> ParseCode(std::string_view text) {
    if (text.size() != 4 || !std::all_of(text.begin(), text.end(), IsPrintableAscii)) {
        return std::nullopt;
    }
    std::uint32_t code = 0;
    for (const char character : text) {
        code = (code << 8) | static_cast<unsigned char>(character);
    }
    return static_cast<MessageCode>(code);
}

std::string FormatCode(MessageCode signedCode) {
    const auto code = static_cast<std::uint32_t>(signedCode);
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += static_cast<char>((code >> shift) & 0xFF);
    }
    return std::all_of(text.begin(), text.end(), IsPrintableAscii) ? text
                                                                   : fmt::format("0x{:08x}", code);
}

}  // namespace krt9ctl
