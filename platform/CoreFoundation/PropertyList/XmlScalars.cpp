#include "platform/CoreFoundation/PropertyList/XmlScalars.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <utility>

#include "platform/CoreFoundation/Numbers/IntegerText.h"

namespace property_list {

namespace {

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

// The value of a digit in bases up to 16, or 16 for any other character.
unsigned DigitValue(char16_t c) {
    if (IsDigit(c)) {
        return static_cast<unsigned>(c - u'0');
    }
    if (c >= u'a' && c <= u'f') {
        return static_cast<unsigned>(c - u'a') + 10U;
    }
    if (c >= u'A' && c <= u'F') {
        return static_cast<unsigned>(c - u'A') + 10U;
    }
    return 16;
}

// The blanks of an integer, which Core Foundation looks for in UTF-8: those of a number in a string
// without the characters U+0080 to U+00A0.
void SkipIntegerSpace(std::u16string_view& text) {
    const auto* const end = std::ranges::find_if_not(text, [](char16_t c) {
        return c == u'\u205F' || (core_foundation::IsBlank(c) && (c < 0x80 || c > 0xA0));
    });
    text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
}

// Removes one of the prefixes from the text.
bool Take(std::u16string_view& text, std::u16string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

// The whole text as digits of the base; nothing when there is no digit, another character, or a
// number of more than 64 bits.
std::optional<std::uint64_t> ParseDigits(std::u16string_view digits, unsigned base) {
    std::uint64_t value = 0;
    for (const char16_t c : digits) {
        const unsigned digit = DigitValue(c);
        if (digit >= base || __builtin_mul_overflow(value, base, &value) ||
            __builtin_add_overflow(value, digit, &value)) {
            return std::nullopt;
        }
    }
    return digits.empty() ? std::nullopt : std::optional(value);
}

// The next `count` digits and the mark after them, removed from the text.
std::optional<int> TakeField(std::u16string_view& text, std::size_t count, char16_t mark) {
    if (text.size() <= count || text[count] != mark) {
        return std::nullopt;
    }
    const std::optional<std::uint64_t> value = ParseDigits(text.substr(0, count), 10);
    text.remove_prefix(count + 1);
    return value ? std::optional(static_cast<int>(*value)) : std::nullopt;
}

constexpr double kSecondsPerDay = 86400;
constexpr auto kReferenceDay = std::chrono::sys_days{std::chrono::January / 1 / 2001};

// Month 0 counts as January, and month 13 as the January after.
double SecondsOfDate(int year, int month, int day) {
    const auto first = std::chrono::sys_days{std::chrono::year{year + month / 13} /
                                             (month == 0 || month == 13 ? 1 : month) / 1};
    return static_cast<double>((first - kReferenceDay).count() + day - 1) * kSecondsPerDay;
}

std::string LowerCaseAscii(std::u16string_view text) {
    std::string ascii;
    for (const char16_t c : text) {
        if (c >= 0x80) {
            return {};
        }
        ascii.push_back(static_cast<char>(c >= u'A' && c <= u'Z' ? c + (u'a' - u'A') : c));
    }
    return ascii;
}

// An optional sign, digits with at most one point among them, an optional exponent.
bool IsDecimalNumber(std::string_view text) {
    const auto digits = [&text] {
        const std::size_t count = std::min(text.find_first_not_of("0123456789"), text.size());
        text.remove_prefix(count);
        return count;
    };
    const auto take = [&text](std::string_view any) {
        const bool found = !text.empty() && any.find(text.front()) != std::string_view::npos;
        text.remove_prefix(found ? 1 : 0);
        return found;
    };
    take("+-");
    std::size_t mantissa = digits();
    if (take(".")) {
        mantissa += digits();
    }
    if (mantissa == 0) {
        return false;
    }
    if (take("e")) {
        take("+-");
        if (digits() == 0) {
            return false;
        }
    }
    return text.empty();
}

// 64 for a character outside the alphabet. The padding counts as zero bits.
unsigned Base64Value(char16_t c) {
    if (c >= u'A' && c <= u'Z') {
        return static_cast<unsigned>(c - u'A');
    }
    if (c >= u'a' && c <= u'z') {
        return static_cast<unsigned>(c - u'a') + 26U;
    }
    if (IsDigit(c)) {
        return static_cast<unsigned>(c - u'0') + 52U;
    }
    switch (c) {
        case u'+':
            return 62;
        case u'/':
            return 63;
        case u'=':
            return 0;
        default:
            return 64;
    }
}

}  // namespace

Object ParseInteger(std::u16string_view text) {
    SkipIntegerSpace(text);
    const bool isNegative = Take(text, u"-");
    if (isNegative || Take(text, u"+")) {
        SkipIntegerSpace(text);
    }
    const bool isHexadecimal = Take(text, u"0x") || Take(text, u"0X");
    const std::optional<std::uint64_t> magnitude = ParseDigits(text, isHexadecimal ? 16 : 10);
    constexpr std::uint64_t kLargestSigned = std::numeric_limits<std::int64_t>::max();
    if (!magnitude || (isNegative && *magnitude > kLargestSigned + 1)) {
        return nullptr;
    }
    if (isNegative) {
        return ObjectMaker::Integer(static_cast<std::int64_t>(0 - *magnitude));
    }
    return *magnitude <= kLargestSigned
               ? ObjectMaker::Integer(static_cast<std::int64_t>(*magnitude))
               : ObjectMaker::WideInteger(*magnitude);
}

Object ParseReal(std::u16string_view text) {
    static constexpr std::array<std::pair<std::string_view, double>, 7> kNames{
        {{"nan", std::numeric_limits<double>::quiet_NaN()},
         {"inf", std::numeric_limits<double>::infinity()},
         {"+inf", std::numeric_limits<double>::infinity()},
         {"-inf", -std::numeric_limits<double>::infinity()},
         {"infinity", std::numeric_limits<double>::infinity()},
         {"+infinity", std::numeric_limits<double>::infinity()},
         {"-infinity", -std::numeric_limits<double>::infinity()}}};
    static const locale_t kPlainLocale = newlocale(LC_ALL_MASK, "C", nullptr);

    const std::string name = LowerCaseAscii(text);
    const auto* found = std::ranges::find(kNames, name, &decltype(kNames)::value_type::first);
    if (found != kNames.end()) {
        return ObjectMaker::Real(found->second);
    }
    text.remove_prefix(static_cast<std::size_t>(
        std::ranges::find_if_not(text, core_foundation::IsBlank) - text.begin()));
    const std::string number = LowerCaseAscii(text);
    if (!IsDecimalNumber(number)) {
        return nullptr;
    }
    return ObjectMaker::Real(strtod_l(number.c_str(), nullptr, kPlainLocale));
}

Object ParseDate(std::u16string_view text) {
    const bool isNegative = Take(text, u"-");
    const std::size_t yearDigits = text.find(u'-');
    if (yearDigits < 4 || yearDigits > 5) {
        return nullptr;
    }
    const std::optional<int> year = TakeField(text, yearDigits, u'-');
    const std::optional<int> month = TakeField(text, 2, u'-');
    const std::optional<int> day = TakeField(text, 2, u'T');
    const std::optional<int> hour = TakeField(text, 2, u':');
    const std::optional<int> minute = TakeField(text, 2, u':');
    const std::optional<int> second = TakeField(text, 2, u'Z');
    constexpr int kLastYear = 32766;  // the last year of std::chrono, less one for month 13
    if (!year || !month || !day || !hour || !minute || !second || !text.empty() ||
        *year > kLastYear || *month > 13) {
        return nullptr;
    }
    return ObjectMaker::Date(SecondsOfDate(isNegative ? -*year : *year, *month, *day) +
                             *hour * 3600.0 + *minute * 60.0 + *second);
}

Object ParseData(std::u16string_view text, const ObjectMaker& make) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t group = 0;
    unsigned groupLength = 0;
    unsigned padding = 0;  // '=' in a row, white space between them allowed
    for (const char16_t c : text) {
        if (c >= 0x80) {
            return nullptr;
        }
        const bool isSpace = c == u' ' || (c >= u'\t' && c <= u'\r');
        padding = c == u'=' ? padding + 1 : (isSpace ? padding : 0);
        const unsigned value = Base64Value(c);
        if (value == 64) {
            continue;
        }
        group = group << 6U | value;
        if (++groupLength == 4) {
            bytes.push_back(static_cast<std::uint8_t>(group >> 16U));
            if (padding < 2) {
                bytes.push_back(static_cast<std::uint8_t>(group >> 8U));
            }
            if (padding < 1) {
                bytes.push_back(static_cast<std::uint8_t>(group));
            }
            groupLength = 0;
        }
    }
    return make.Data(bytes);
}

bool AppendEntity(std::u16string_view& rest, std::u16string& text) {
    static constexpr std::array<std::pair<std::u16string_view, char16_t>, 5> kNames{
        {{u"amp", u'&'}, {u"apos", u'\''}, {u"gt", u'>'}, {u"lt", u'<'}, {u"quot", u'"'}}};
    const std::size_t end = rest.find(u';');
    if (end == std::u16string_view::npos) {
        return false;
    }
    std::u16string_view name = rest.substr(1, end - 1);
    rest.remove_prefix(end + 1);
    if (!Take(name, u"#")) {
        const auto* found = std::ranges::find(kNames, name, &decltype(kNames)::value_type::first);
        if (found == kNames.end()) {
            return false;
        }
        text.push_back(found->second);
        return true;
    }
    const unsigned base = Take(name, u"x") ? 16 : 10;
    // A reference without any digit names the character 0.
    const std::optional<std::uint64_t> code = name.empty() ? 0 : ParseDigits(name, base);
    if (!code || *code > 0x10FFFF || (*code >= 0xD800 && *code <= 0xDFFF)) {
        return false;
    }
    if (*code < 0x10000) {
        text.push_back(static_cast<char16_t>(*code));
    } else {
        text.push_back(static_cast<char16_t>(0xD800 + ((*code - 0x10000) >> 10U)));
        text.push_back(static_cast<char16_t>(0xDC00 + ((*code - 0x10000) & 0x3FFU)));
    }
    return true;
}

}  // namespace property_list
