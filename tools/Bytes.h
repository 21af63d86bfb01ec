// Bytes of message bodies and the four-character codes of messages, as people write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "scenes/notation/Hex.h"

namespace krt9ctl {

using Bytes = std::vector<std::uint8_t>;

// Pairs of hex digits in either case; blanks may stand between bytes. Nothing for anything else.
std::optional<Bytes> ParseHex(std::string_view text);

using scene_notation::FormatHex;

// A message identifier: four characters, the first one in the most significant byte.
using MessageCode = std::int32_t;

// Exactly four printable ASCII characters; nothing for anything else.
std::optional<MessageCode> ParseCode(std::string_view text);

// The four characters when all are printable ASCII, else "0x" and eight hex digits.
std::string FormatCode(MessageCode code);

}  // namespace krt9ctl
