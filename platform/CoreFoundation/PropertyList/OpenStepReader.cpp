#include "platform/CoreFoundation/PropertyList/OpenStepReader.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace property_list {

namespace {

bool IsSpace(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\u2028' || c == u'\u2029';
}

bool IsUnquoted(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           std::u16string_view(u"_$/:.-").find(c) != std::u16string_view::npos;
}

// The value of a hexadecimal digit, or nothing.
std::optional<unsigned> HexDigit(char16_t c) {
    if (c >= u'0' && c <= u'9') {
        return c - u'0';
    }
    const char16_t lower = c | 0x20;
    if (lower >= u'a' && lower <= u'f') {
        return lower - u'a' + 10;
    }
    return std::nullopt;
}

class Reader {
  public:
    Reader(std::u16string_view text, const ObjectMaker& make) : rest_(text), make_(make) {}

    Object ReadDocument() {
        if (!SkipToToken()) {
            return make_.Dictionary({}, {}, ObjectMaker::Duplicates::kLastWins);
        }
        const std::u16string_view document = rest_;
        const bool mayBeKey = AtString();
        Object value = ReadValue(0);
        if (value == nullptr || !SkipToToken()) {
            return value;
        }
        rest_ = document;
        return mayBeKey ? ReadEntries(0) : nullptr;
    }

  private:
    // Skips white space and comments; false at the end of the text. A comment may lack its end.
    bool SkipToToken() {
        while (!rest_.empty()) {
            if (IsSpace(rest_.front())) {
                rest_.remove_prefix(1);
            } else if (rest_.starts_with(u"//")) {
                rest_.remove_prefix(
                    std::min(rest_.find_first_of(u"\n\r\u2028\u2029"), rest_.size()));
            } else if (rest_.starts_with(u"/*")) {
                const std::size_t end = rest_.find(u"*/", 2);
                rest_.remove_prefix(end == std::u16string_view::npos ? rest_.size() : end + 2);
            } else {
                return true;
            }
        }
        return false;
    }

    bool Take(char16_t token) {
        if (!SkipToToken() || rest_.front() != token) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    bool AtString() {
        return SkipToToken() &&
               (rest_.front() == u'"' || rest_.front() == u'\'' || IsUnquoted(rest_.front()));
    }

    Object ReadValue(int depth) {
        if (depth > kDeepestNesting) {
            return nullptr;
        }
        if (AtString()) {
            return ReadString();
        }
        if (Take(u'{')) {
            Object dictionary = ReadEntries(depth);
            return Take(u'}') ? std::move(dictionary) : nullptr;
        }
        if (Take(u'(')) {
            return ReadArray(depth);
        }
        return Take(u'<') ? ReadData() : nullptr;
    }

    // The last item may be followed by a comma.
    Object ReadArray(int depth) {
        std::vector<Object> items;
        while (!Take(u')')) {
            Object item = ReadValue(depth + 1);
            if (item == nullptr) {
                return nullptr;
            }
            items.push_back(std::move(item));
            if (!Take(u',')) {
                return Take(u')') ? make_.Array(items) : nullptr;
            }
        }
        return make_.Array(items);
    }

    // Entries `key = value;`, or `key;` whose value is the key, up to what can't begin a key.
    Object ReadEntries(int depth) {
        std::vector<Object> keys;
        std::vector<Object> values;
        while (AtString()) {
            Object key = ReadString();
            if (key == nullptr) {
                return nullptr;
            }
            Object value = Take(u'=') ? ReadValue(depth + 1) : Object(CFRetain(key.get()));
            if (value == nullptr || !Take(u';')) {
                return nullptr;
            }
            keys.push_back(std::move(key));
            values.push_back(std::move(value));
        }
        return make_.Dictionary(keys, values, ObjectMaker::Duplicates::kLastWins);
    }

    Object ReadString() {
        if (rest_.front() == u'"' || rest_.front() == u'\'') {
            return ReadQuoted();
        }
        const std::u16string_view text = rest_.substr(
            0,
            static_cast<std::size_t>(std::ranges::find_if_not(rest_, IsUnquoted) - rest_.begin()));
        rest_.remove_prefix(text.size());
        return make_.String(text);
    }

    Object ReadQuoted() {
        const char16_t quote = rest_.front();
        rest_.remove_prefix(1);
        std::u16string text;
        while (!rest_.empty()) {
            const char16_t c = rest_.front();
            rest_.remove_prefix(1);
            if (c == quote) {
                return make_.String(text);
            }
            if (c != u'\\') {
                text.push_back(c);
            } else if (!rest_.empty()) {
                text.push_back(ReadEscaped());
            }
        }
        return nullptr;
    }

    // What follows a backslash. An unknown escape is the character itself.
    char16_t ReadEscaped() {
        const char16_t c = rest_.front();
        if (c >= u'0' && c <= u'7') {
            return NextStepCharacter(static_cast<std::uint8_t>(ReadNumber(8, 3)));
        }
        rest_.remove_prefix(1);
        switch (c) {
            case u'a':
                return u'\a';
            case u'b':
                return u'\b';
            case u'f':
                return u'\f';
            case u'n':
                return u'\n';
            case u'r':
                return u'\r';
            case u't':
                return u'\t';
            case u'v':
                return u'\v';
            case u'U':
                return static_cast<char16_t>(ReadNumber(16, 4));
            default:
                return c;
        }
    }

    // Up to `longest` digits of the base; 0 without any.
    unsigned ReadNumber(unsigned base, int longest) {
        unsigned value = 0;
        for (int count = 0; count < longest && !rest_.empty(); ++count) {
            const std::optional<unsigned> digit = HexDigit(rest_.front());
            if (!digit || *digit >= base) {
                break;
            }
            value = value * base + *digit;
            rest_.remove_prefix(1);
        }
        return value;
    }

    // Pairs of hexadecimal digits, white space between the pairs; no comments.
    Object ReadData() {
        std::vector<std::uint8_t> bytes;
        for (;;) {
            rest_.remove_prefix(
                std::min(rest_.find_first_not_of(u" \n\t\r\u2028\u2029"), rest_.size()));
            if (rest_.starts_with(u'>')) {
                rest_.remove_prefix(1);
                return make_.Data(bytes);
            }
            const std::optional<unsigned> high =
                rest_.empty() ? std::nullopt : HexDigit(rest_.front());
            const std::optional<unsigned> low =
                rest_.size() > 1 ? HexDigit(rest_[1]) : std::nullopt;
            if (!high || !low) {
                return nullptr;
            }
            bytes.push_back(static_cast<std::uint8_t>(*high << 4U | *low));
            rest_.remove_prefix(2);
        }
    }

    std::u16string_view rest_;
    const ObjectMaker& make_;
};

}  // namespace

Object ReadOpenStep(std::u16string_view text, const ObjectMaker& make) {
    return Reader(text, make).ReadDocument();
}

}  // namespace property_list
