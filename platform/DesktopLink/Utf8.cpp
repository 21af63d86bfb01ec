#include "platform/DesktopLink/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace desktop_link {

namespace {

// What may follow a lead byte: how many bytes, and the range of the first of them.
struct Continuation {
    std::size_t count = 0;
    std::uint8_t first = 0x80, last = 0xBF;
};

Continuation ContinuationAfter(std::uint8_t lead) {
    if (lead >= 0xC2 && lead <= 0xDF) {
        return {1};
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return {2, static_cast<std::uint8_t>(lead == 0xE0 ? 0xA0 : 0x80),
                static_cast<std::uint8_t>(lead == 0xED ? 0x9F : 0xBF)};
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        return {3, static_cast<std::uint8_t>(lead == 0xF0 ? 0x90 : 0x80),
                static_cast<std::uint8_t>(lead == 0xF4 ? 0x8F : 0xBF)};
    }
    return {};
}

}  // namespace

bool IsUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto lead = static_cast<std::uint8_t>(text[i]);
        if (lead < 0x80) {
            continue;
        }
        auto [count, first, last] = ContinuationAfter(lead);
        if (count == 0 || text.size() - i <= count) {
            return false;
        }
        for (; count != 0; --count) {
            const auto byte = static_cast<std::uint8_t>(text[++i]);
            if (byte < first || byte > last) {
                return false;
            }
            first = 0x80;
            last = 0xBF;
        }
    }
    return true;
}

}  // namespace desktop_link
