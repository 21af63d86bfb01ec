#include "tools/Arguments.h"

#include <fmt/format.h>

#include <cstdlib>
#include <optional>

#include "tools/Numbers.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

constexpr double kLongestTime = 86400;

std::optional<std::int64_t> ParseSignedInteger(std::string_view text) {
    const bool negative = text.starts_with('-');
    const auto magnitude = ParseUnsigned(text.substr(negative ? 1 : 0));
    return negative && magnitude ? std::optional(-*magnitude) : magnitude;
}

std::optional<std::int64_t> ParseWithin(const Parameter& parameter, std::string_view text) {
    const auto value = ParseSignedInteger(text);
    return value && *value >= parameter.smallest && *value <= parameter.largest ? value
                                                                                : std::nullopt;
}

std::int64_t ParseNumber(const Parameter& parameter, const std::string& text) {
    const auto value = ParseWithin(parameter, text);
    if (!value) {
        throw UsageError(fmt::format("{}: '{}' is not a whole number from {} to {}", parameter.name,
                                     Printable(text), parameter.smallest, parameter.largest));
    }
    return *value;
}

Coordinates ParseCoordinates(const Parameter& parameter, const std::string& text) {
    const std::size_t comma = text.find(',');
    if (comma != std::string::npos) {
        const auto x = ParseWithin(parameter, std::string_view(text).substr(0, comma));
        const auto y = ParseWithin(parameter, std::string_view(text).substr(comma + 1));
        if (x && y) {
            return {*x, *y};
        }
    }
    throw UsageError(fmt::format("{}: '{}' is not X,Y (two whole numbers from {} to {})",
                                 parameter.name, Printable(text), parameter.smallest,
                                 parameter.largest));
}

std::int64_t ParseElementArgument(const Parameter& parameter, const std::string& text) {
    const auto element = ParseElement(text);
    if (!element) {
        throw UsageError(fmt::format(
            "{}: '{}' is not an element: a number from 0 to {}, or _NS: and such a number, which "
            "krt9ctl find tells",
            parameter.name, Printable(text), kLargestUnsigned32));
    }
    return *element;
}

KeyChoice ParseKeyArgument(const Parameter& parameter, const std::string& text) {
    const auto key = ParseKey(text);
    if (const auto* problem = std::get_if<std::string>(&key)) {
        throw UsageError(fmt::format("{}: {}", parameter.name, *problem));
    }
    return std::get<KeyChoice>(key);
}

std::string ParseText(const Parameter& parameter, const std::string& text) {
    if (text.find('\0') != std::string::npos) {
        throw UsageError(fmt::format("{}: a text cannot contain a zero byte", parameter.name));
    }
    if (!IsUtf8(text)) {
        throw UsageError(fmt::format("{}: the text is not UTF-8", parameter.name));
    }
    return text;
}

MessageCode ParseCodeArgument(const Parameter& parameter, const std::string& text) {
    const auto code = ParseCode(text);
    if (!code) {
        throw UsageError(fmt::format("{}: '{}' is not four printable ASCII characters",
                                     parameter.name, Printable(text)));
    }
    return *code;
}

Bytes ParseHexArgument(const Parameter& parameter, const std::string& text) {
    auto bytes = ParseHex(text);
    if (!bytes) {
        throw UsageError(
            fmt::format("{}: '{}' is not pairs of hex digits", parameter.name, Printable(text)));
    }
    return *std::move(bytes);
}

}  // namespace

std::optional<std::int64_t> ParseElement(std::string_view text) {
    constexpr std::string_view kPrefix = "_NS:";
    text.remove_prefix(text.starts_with(kPrefix) ? kPrefix.size() : 0);
    const auto number = ParseUnsigned(text);
    return number && *number <= kLargestUnsigned32 ? number : std::nullopt;
}

double ParseSeconds(std::string_view name, const std::string& text) {
    const bool looksDecimal = text.find_first_not_of("0123456789.") == std::string::npos;
    char* stop = nullptr;
    const double seconds = std::strtod(text.c_str(), &stop);
    if (!looksDecimal || *stop != '\0' || !(seconds > 0 && seconds <= kLongestTime)) {
        throw UsageError(fmt::format("{}: '{}' is not a time in seconds above 0 and up to {}", name,
                                     Printable(text), kLongestTime));
    }
    return seconds;
}

Arguments::Value Arguments::Convert(const Parameter& parameter, const std::string& text) {
    switch (parameter.kind) {
        case ValueKind::flag:
            return true;
        case ValueKind::number:
            return ParseNumber(parameter, text);
        case ValueKind::seconds:
            return ParseSeconds(parameter.name, text);
        case ValueKind::coordinates:
            return ParseCoordinates(parameter, text);
        case ValueKind::element:
            return ParseElementArgument(parameter, text);
        case ValueKind::key:
            return ParseKeyArgument(parameter, text);
        case ValueKind::file:
        case ValueKind::text:
            return ParseText(parameter, text);
        case ValueKind::code:
            return ParseCodeArgument(parameter, text);
        case ValueKind::hex:
            return ParseHexArgument(parameter, text);
    }
    throw UsageError(fmt::format("{}: unknown kind of value", parameter.name));
}

Arguments::Arguments(const Verb& verb, const GivenTexts& given) {
    for (const Parameter& parameter : verb.parameters) {
        const auto texts = given.find(parameter.name);
        if (texts == given.end()) {
            continue;
        }
        for (const std::string& text : texts->second) {
            values_[parameter.name].push_back(Convert(parameter, text));
        }
    }
}

std::int64_t Arguments::Number(std::string_view name) const {
    return std::get<std::int64_t>(First(name));
}

std::int64_t Arguments::NumberOr(std::string_view name, std::int64_t otherwise) const {
    return Has(name) ? Number(name) : otherwise;
}

double Arguments::SecondsOr(std::string_view name, double otherwise) const {
    return Has(name) ? std::get<double>(First(name)) : otherwise;
}

Coordinates Arguments::Point(std::string_view name) const {
    return std::get<Coordinates>(First(name));
}

const std::string& Arguments::Text(std::string_view name) const {
    return std::get<std::string>(First(name));
}

std::vector<std::string> Arguments::Texts(std::string_view name) const {
    std::vector<std::string> texts;
    if (Has(name)) {
        for (const Value& value : values_.at(name)) {
            texts.push_back(std::get<std::string>(value));
        }
    }
    return texts;
}

KeyChoice Arguments::Key(std::string_view name) const {
    return std::get<KeyChoice>(First(name));
}

MessageCode Arguments::Code(std::string_view name) const {
    return std::get<MessageCode>(First(name));
}

Bytes Arguments::HexOrNone(std::string_view name) const {
    return Has(name) ? std::get<Bytes>(First(name)) : Bytes{};
}

}  // namespace krt9ctl
