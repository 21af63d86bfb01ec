#include "platform/CoreFoundation/Strings/TextEncoding.h"

#include <unicode/unorm2.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <bit>

#include "platform/CoreFoundation/Strings/EightBitTables.h"

namespace core_foundation {
namespace {

constexpr char16_t kOhmSign = 0x2126;  // macOS writes it as the capital omega that it equals
constexpr char16_t kOmega = 0x03A9;

static_assert(std::endian::native == std::endian::little);

bool IsBigEndian(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingUTF16BE;
}

bool IsEightBit(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingMacRoman || encoding == kCFStringEncodingISOLatin1 ||
           encoding == kCFStringEncodingWindowsLatin1 || encoding == kCFStringEncodingASCII;
}

bool IsUTF16(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingUTF16 || encoding == kCFStringEncodingUTF16BE ||
           encoding == kCFStringEncodingUTF16LE;
}

template <std::size_t kSize>
int ByteIn(const std::array<char16_t, kSize>& table, char16_t unit) {
    const auto found = std::find(table.begin(), table.end(), unit);
    return found == table.end() ? -1 : 0x80 + static_cast<int>(found - table.begin());
}

// The byte of a character in an eight-bit encoding, or -1.
int ByteOf(char16_t unit, CFStringEncoding encoding) {
    if (unit < 0x80) {
        return unit;
    }
    switch (encoding) {
        case kCFStringEncodingMacRoman:
            return ByteIn(kMacRomanUpperHalf, unit == kOhmSign ? kOmega : unit);
        case kCFStringEncodingWindowsLatin1:
            return unit >= 0xA0 && unit <= 0xFF ? unit : ByteIn(kWindowsLatin1Controls, unit);
        case kCFStringEncodingISOLatin1:
            return unit <= 0xFF ? unit : -1;
        default:
            return -1;
    }
}

// The unit of a byte in an eight-bit encoding, or -1. Bytes beyond ASCII are read as ISO Latin 1
// when ASCII is requested, as in Core Foundation.
int UnitOf(std::uint8_t byte, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingMacRoman && byte >= 0x80) {
        return kMacRomanUpperHalf[byte - 0x80U];
    }
    if (encoding == kCFStringEncodingWindowsLatin1 && byte >= 0x80 && byte < 0xA0) {
        const char16_t unit = kWindowsLatin1Controls[byte - 0x80U];
        return unit == 0 ? -1 : unit;
    }
    return byte;
}

struct Composition {
    char16_t unit = 0;
    std::uint8_t units = 1;  // how many it was made of
};

// The letter at the front with the combining marks after it, as far as they compose to one unit.
Composition ComposeFront(std::u16string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    static const UNormalizer2* const normalizer = unorm2_getNFCInstance(&error);
    Composition composition{text.front()};
    constexpr std::size_t kMostMarks = 4;
    while (composition.units < std::min(text.size(), kMostMarks)) {
        const UChar32 composed =
            unorm2_composePair(normalizer, composition.unit, text[composition.units]);
        if (composed < 0) {
            break;
        }
        composition.unit = static_cast<char16_t>(composed);
        ++composition.units;
    }
    return composition;
}

EncodedCharacter EncodeEightBit(std::u16string_view text, CFStringEncoding encoding) {
    EncodedCharacter encoded;
    encoded.units = 1;
    int byte = -1;
    if (encoding != kCFStringEncodingASCII && text.size() > 1 && text[1] >= 0x300) {
        const Composition composition = ComposeFront(text);
        if (composition.units > 1) {
            byte = ByteOf(composition.unit, encoding);
            encoded.units = byte < 0 ? 1 : composition.units;
        }
    }
    if (byte < 0) {
        byte = ByteOf(text.front(), encoding);
    }
    if (byte >= 0) {
        encoded.size = 1;
        encoded.bytes[0] = static_cast<std::uint8_t>(byte);
    }
    return encoded;
}

EncodedCharacter EncodeUTF16(char16_t unit, bool bigEndian) {
    const auto low = static_cast<std::uint8_t>(unit & 0xFF);
    const auto high = static_cast<std::uint8_t>(unit >> 8);
    return bigEndian ? EncodedCharacter{1, 2, {high, low}} : EncodedCharacter{1, 2, {low, high}};
}

EncodedCharacter EncodeUTF8(std::u16string_view text) {
    EncodedCharacter encoded;
    std::size_t next = 0;
    UChar32 character = 0;
    U16_NEXT(text.data(), next, text.size(), character);
    encoded.units = static_cast<std::uint8_t>(next);
    if (!U_IS_SURROGATE(character)) {
        U8_APPEND_UNSAFE(encoded.bytes, encoded.size, character);
    }
    return encoded;
}

std::optional<std::u16string> DecodeUTF8(std::span<const std::uint8_t> bytes) {
    std::u16string units;
    units.reserve(bytes.size());
    for (std::size_t next = 0; next < bytes.size();) {
        UChar32 character = 0;
        U8_NEXT(bytes.data(), next, bytes.size(), character);
        if (character < 0) {
            return std::nullopt;
        }
        if (character > 0xFFFF) {
            units += static_cast<char16_t>(U16_LEAD(character));
            units += static_cast<char16_t>(U16_TRAIL(character));
        } else {
            units += static_cast<char16_t>(character);
        }
    }
    return units;
}

// Half a unit at the end is left out.
std::u16string DecodeUTF16(std::span<const std::uint8_t> bytes, bool bigEndian) {
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t next = 0; next + 1 < bytes.size(); next += 2) {
        const std::uint8_t high = bytes[bigEndian ? next : next + 1];
        const std::uint8_t low = bytes[bigEndian ? next + 1 : next];
        units += static_cast<char16_t>(high << 8 | low);
    }
    return units;
}

std::optional<std::u16string> DecodeEightBit(std::span<const std::uint8_t> bytes,
                                             CFStringEncoding encoding) {
    std::u16string units;
    units.reserve(bytes.size());
    for (const std::uint8_t byte : bytes) {
        const int unit = UnitOf(byte, encoding);
        if (unit < 0) {
            return std::nullopt;
        }
        units += static_cast<char16_t>(unit);
    }
    return units;
}

}  // namespace

bool IsSupported(CFStringEncoding encoding) {
    return IsEightBit(encoding) || IsUTF16(encoding) || encoding == kCFStringEncodingUTF8;
}

EncodedCharacter EncodeFront(std::u16string_view text, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF8) {
        return EncodeUTF8(text);
    }
    if (IsUTF16(encoding)) {
        return EncodeUTF16(text.front(), IsBigEndian(encoding));
    }
    return EncodeEightBit(text, encoding);
}

std::optional<std::string> Encode(std::u16string_view text, CFStringEncoding encoding) {
    if (!IsSupported(encoding)) {
        return std::nullopt;
    }
    std::string bytes;
    bytes.reserve(text.size());
    while (!text.empty()) {
        const EncodedCharacter encoded = EncodeFront(text, encoding);
        if (encoded.size == 0) {
            return std::nullopt;
        }
        bytes.append(reinterpret_cast<const char*>(encoded.bytes), encoded.size);
        text.remove_prefix(encoded.units);
    }
    return bytes;
}

std::string EncodeForPeople(std::u16string_view text) {
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    std::string bytes;
    bytes.reserve(text.size());
    while (!text.empty()) {
        const EncodedCharacter encoded = EncodeUTF8(text);
        bytes += encoded.size == 0
                     ? kReplacement
                     : std::string_view(reinterpret_cast<const char*>(encoded.bytes), encoded.size);
        text.remove_prefix(encoded.units);
    }
    return bytes;
}

std::optional<std::u16string> Decode(std::span<const std::uint8_t> bytes,
                                     CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF8) {
        return DecodeUTF8(bytes);
    }
    if (IsUTF16(encoding)) {
        return DecodeUTF16(bytes, IsBigEndian(encoding));
    }
    return IsEightBit(encoding) ? DecodeEightBit(bytes, encoding) : std::nullopt;
}

}  // namespace core_foundation
