// How the bytes of a recorded session are written.
//
// A body is a row of words, each of which stands for some bytes:
//   49  -3  0x900   an integer: 4 bytes, least significant first
//   "Viewer"        a text in UTF-8 and its 0 byte
//   u"Viewer"       of an ASCII text the number of UTF-16 units as an integer, then the units, low
//                   byte first
//   x3b00           these bytes; x alone is a body without bytes
// A word that begins with '#' ends the row: what follows is for the reader.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Companion.h"

namespace golden {

using test_support::Bytes;

// The words of a line, without the remark at its end.
std::vector<std::string> Words(std::string_view line);

// Throws std::invalid_argument.
Bytes BytesOf(const std::string& word);
// Nothing for no words: a body that is absent, which is not one without bytes.
std::optional<Bytes> BodyOf(const std::vector<std::string>& words);
// The text between the quotation marks of a word; throws std::invalid_argument.
std::string TextOf(const std::string& word);

// Two digits a byte; "(none)" and "(empty)" for what has none.
std::string HexOf(const std::optional<Bytes>& bytes);
// What a reply says: its integers.
std::string IntegersIn(const Bytes& bytes);
// What a message says: the text before its 0 byte, what is not ASCII as \xNN.
std::string QuotedText(const Bytes& bytes);

// Most significant byte first, as the companion answers a status query.
Bytes BigEndian(const std::vector<unsigned int>& words);

}  // namespace golden
