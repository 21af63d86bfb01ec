#include "tools/Arguments.h"

#include <fmt/format.h>

#include <charconv>
#include <cstdlib>
#include <optional>

#include "tools/Text.h"

namespace krt9ctl {

namespace {

constexpr double kLongestTime = 86400;

std::optional<std::int64_t> ParseInteger(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative) {
        text.remove_prefix(1);
    }
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    if (hex) {
        text.remove_prefix(2);
    }
    // Unsigned, so that a second sign is refused.
    std::uint64_t magnitude = 0;
    const char* end = text.data() + text.size();
    const auto [stop, problem] = std::from_chars(text.data(), end, magnitude, hex ? 16 : 10);
    if (problem != std::errc() || stop != end || magnitude > 1ULL << 40) {
        return std::nullopt;
    }
    const auto value = static_cast<std::int64_t>(magnitude);
    return negative ? -value : value;
}

std::optional<std::int64_t> ParseWithin(const Parameter& parameter, std::string_view text) {
    const auto value = ParseInteger(text);
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

std::string ParseText(const Parameter& parameter, const std::string& text) {
    if (text.find('\0') != std::string::npos) {
        throw UsageError(fmt::format("{}: a zero byte cannot stand in a text", parameter.name));
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

MessageCode Arguments::Code(std::string_view name) const {
    return std::get<MessageCode>(First(name));
}

Bytes Arguments::HexOrNone(std::string_view name) const {
    return Has(name) ? std::get<Bytes>(First(name)) : Bytes{};
}

}  // namespace krt9ctl
