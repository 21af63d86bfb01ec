#include "tools/recording/Notation.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "scenes/notation/Hex.h"

namespace recording {

namespace {

Bytes LittleEndian(unsigned int value) {
    Bytes bytes;
    for (unsigned int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<unsigned char>(value >> shift));
    }
    return bytes;
}

Bytes CountedUnits(const std::string& text) {
    Bytes bytes = LittleEndian(static_cast<unsigned int>(text.size()));
    for (const char unit : text) {
        if (static_cast<unsigned char>(unit) > 0x7F) {
            throw std::invalid_argument("units of what is not ASCII: " + text);
        }
        bytes.push_back(static_cast<unsigned char>(unit));
        bytes.push_back(0);
    }
    return bytes;
}

bool IsHex(const std::string& word) {
    return word.starts_with('x');
}

}  // namespace

std::vector<std::string> Words(std::string_view line) {
    std::vector<std::string> words;
    while (true) {
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        if (line.empty() || line.starts_with('#')) {
            return words;
        }
        const std::size_t opening = line.find('"');
        std::size_t end = std::min(line.find(' '), line.size());
        if (opening < end) {
            end = line.find('"', opening + 1);
            if (end == std::string_view::npos) {
                throw std::invalid_argument("a quotation mark that is not closed");
            }
            ++end;
        }
        words.emplace_back(line.substr(0, end));
        line.remove_prefix(end);
    }
}

std::string CodeWord(std::int32_t code) {
    const Bytes bytes = BigEndian({static_cast<unsigned int>(code)});
    const bool isWord = std::all_of(bytes.begin(), bytes.end(), [](unsigned char character) {
        return character < 0x80 && std::isalnum(character) != 0;
    });
    return isWord ? std::string(bytes.begin(), bytes.end())
                  : "x" + scene_notation::FormatHex(bytes);
}

std::int32_t CodeOf(const std::string& word) {
    Bytes bytes(word.begin(), word.end());
    if (word.size() == 9 && IsHex(word)) {
        bytes = BytesOf(word);
    }
    if (bytes.size() != 4) {
        throw std::invalid_argument("no code: " + word);
    }
    std::uint32_t code = 0;
    for (const unsigned char byte : bytes) {
        code = code << 8 | byte;
    }
    return static_cast<std::int32_t>(code);
}

std::string TextOf(const std::string& word) {
    const std::size_t opening = word.find('"');
    if (opening == std::string::npos || word.size() < opening + 2) {
        throw std::invalid_argument("no text: " + word);
    }
    return word.substr(opening + 1, word.size() - opening - 2);
}

Bytes BytesOf(const std::string& word) {
    if (word.starts_with('"')) {
        const std::string text = TextOf(word);
        return {text.c_str(), text.c_str() + text.size() + 1};
    }
    if (word.starts_with("u\"")) {
        return CountedUnits(TextOf(word));
    }
    if (IsHex(word)) {
        if (const auto bytes = scene_notation::ParseHex(std::string_view(word).substr(1))) {
            return *bytes;
        }
        throw std::invalid_argument("no bytes: " + word);
    }
    std::size_t read = 0;
    const long long number = std::stoll(word, &read, 0);
    if (read != word.size()) {
        throw std::invalid_argument("no number: " + word);
    }
    return LittleEndian(static_cast<unsigned int>(number));
}

std::optional<Bytes> BodyOf(const std::vector<std::string>& words) {
    if (words.empty()) {
        return std::nullopt;
    }
    Bytes body;
    for (const std::string& word : words) {
        const Bytes bytes = BytesOf(word);
        body.insert(body.end(), bytes.begin(), bytes.end());
    }
    return body;
}

std::string WordsOf(const Bytes& body) {
    constexpr std::size_t kMostIntegers = 6;
    const bool areIntegers = body.size() % 4 == 0 && body.size() <= 4 * kMostIntegers;
    if (body.empty()) {
        return "x";
    }
    return areIntegers ? IntegersIn(body) : "x" + scene_notation::FormatHex(body);
}

std::string HexOf(const std::optional<Bytes>& bytes) {
    if (!bytes) {
        return "(none)";
    }
    if (bytes->empty()) {
        return "(empty)";
    }
    return scene_notation::FormatHex(*bytes);
}

std::string IntegersIn(const Bytes& bytes) {
    std::string text;
    for (std::size_t i = 0; i + 4 <= bytes.size(); i += 4) {
        const std::uint32_t value = static_cast<std::uint32_t>(bytes[i]) |
                                    static_cast<std::uint32_t>(bytes[i + 1]) << 8 |
                                    static_cast<std::uint32_t>(bytes[i + 2]) << 16 |
                                    static_cast<std::uint32_t>(bytes[i + 3]) << 24;
        text += (text.empty() ? "" : " ") + std::to_string(static_cast<std::int32_t>(value));
    }
    return text;
}

std::string QuotedText(const Bytes& bytes) {
    std::string text;
    for (auto byte = bytes.begin(); byte != bytes.end() && *byte != 0; ++byte) {
        if (*byte >= 0x20 && *byte <= 0x7E) {
            text += static_cast<char>(*byte);
        } else {
            text += "\\x" + scene_notation::FormatHex({&*byte, 1});
        }
    }
    return '"' + text + '"';
}

Bytes BigEndian(const std::vector<unsigned int>& words) {
    Bytes bytes;
    for (const unsigned int word : words) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            bytes.push_back(static_cast<unsigned char>(word >> shift));
        }
    }
    return bytes;
}

}  // namespace recording
