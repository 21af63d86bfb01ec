// Conversion between UTF-16 code units and the bytes of an encoding.
#pragma once

#include <CoreFoundation/CFString.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace core_foundation {

bool IsSupported(CFStringEncoding encoding);

// One character as bytes: the least that a conversion can take or leave.
struct EncodedCharacter {
    std::uint8_t units = 0;  // UTF-16 code units that it took, at least 1
    std::uint8_t size = 0;   // bytes; 0 when the encoding lacks the character
    std::uint8_t bytes[4] = {};
};

// Converts the character at the front of `text`, which must not be empty. In the eight-bit
// encodings a letter followed by a combining mark is tried as the composed letter first, as macOS
// does.
EncodedCharacter EncodeFront(std::u16string_view text, CFStringEncoding encoding);

// The whole text; nothing when the encoding lacks a character or is not supported.
std::optional<std::string> Encode(std::u16string_view text, CFStringEncoding encoding);

// UTF-8 for people to read: an unpaired surrogate becomes U+FFFD.
std::string EncodeForPeople(std::u16string_view text);

// Nothing when the bytes are not text of that encoding. Byte-order marks are characters here.
std::optional<std::u16string> Decode(std::span<const std::uint8_t> bytes,
                                     CFStringEncoding encoding);

}  // namespace core_foundation
