// Texts between the command line (UTF-8), the wire (the system encoding, UTF-16) and the terminal.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "VEKCommon/OwnedReference.h"

namespace krt9ctl {

bool IsUtf8(std::string_view text);

// Null when the text is not UTF-8.
OwnedReference<CFStringRef> StringOf(std::string_view utf8);

// The text, safe to print on a terminal: control characters and bytes that are not UTF-8 as \xNN.
std::string Printable(std::string_view text);

// The text of an object as UTF-8. Nothing if the object is not a string, and for text that has no
// UTF-8 form (unpaired surrogates).
std::optional<std::string> Utf8Of(CFTypeRef object);

// In the system encoding, in which the driver reads and writes 0-terminated texts. Nothing when a
// character has no place in it.
std::optional<std::string> ToSystemEncoding(std::string_view utf8);

// Bytes of the system encoding as UTF-8. Nothing when they are not text in that encoding.
std::optional<std::string> FromSystemEncoding(std::span<const std::uint8_t> bytes);

std::vector<unsigned short> ToUtf16(std::string_view utf8);

}  // namespace krt9ctl
