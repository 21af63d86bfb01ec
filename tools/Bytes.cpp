#include "tools/Bytes.h"

#include <fmt/format.h>

#include <algorithm>

namespace krt9ctl {

namespace {

bool IsPrintableAscii(unsigned char character) {
    return character >= 0x20 && character <= 0x7E;
}

}  // namespace

std::optional<Bytes> ParseHex(std::string_view text) {
    Bytes bytes;
    while (!text.empty()) {
        const std::string_view pairs = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(pairs.size() + 1, text.size()));
        const auto parsed = scene_notation::ParseHex(pairs);
        if (!parsed) {
            return std::nullopt;
        }
        bytes.insert(bytes.end(), parsed->begin(), parsed->end());
    }
    return bytes;
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
