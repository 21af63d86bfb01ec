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

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace recording {

using Bytes = std::vector<std::uint8_t>;

// The words of a line, without the remark at its end.
std::vector<std::string> Words(std::string_view line);

// A message's code: its four characters, the first one in the most significant byte, or x and the
// hex digits of four that are not all letters and digits. CodeOf throws std::invalid_argument.
std::string CodeWord(std::int32_t code);
std::int32_t CodeOf(const std::string& word);

// Throws std::logic_error for a word that stands for no bytes.
Bytes BytesOf(const std::string& word);
// Nothing for no words: a body that is absent, which is not one without bytes.
std::optional<Bytes> BodyOf(const std::vector<std::string>& words);
// The text between the quotation marks of a word; throws std::invalid_argument.
std::string TextOf(const std::string& word);

// A body in words that BodyOf reads: as integers where it can consist of a few of them.
std::string WordsOf(const Bytes& body);

// Two digits a byte; "(none)" and "(empty)" for what has none.
std::string HexOf(const std::optional<Bytes>& bytes);
// The integers in a reply or body; a rest of fewer than 4 bytes is left out.
std::string IntegersIn(const Bytes& bytes);
// What a message says: the text before its 0 byte, what is not ASCII as \xNN.
std::string QuotedText(const Bytes& bytes);

// Most significant byte first, as the companion answers a status query.
Bytes BigEndian(const std::vector<unsigned int>& words);

}  // namespace recording
