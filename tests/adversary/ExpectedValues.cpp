#include "tests/adversary/ExpectedValues.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace adversary {

using desktop_link::Value;

namespace {

constexpr double kLeast = std::numeric_limits<std::int32_t>::min();
constexpr double kGreatest = std::numeric_limits<std::int32_t>::max();

}  // namespace

std::optional<std::string> TextIn(const Value& value) {
    const auto* text = std::get_if<std::string>(&value.content);
    return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::optional<desktop_link::ElementReference> ElementIn(const Value& value) {
    const auto* element = std::get_if<desktop_link::ElementReference>(&value.content);
    return element != nullptr ? std::optional(*element) : std::nullopt;
}

const desktop_link::Array* ArrayIn(const Value& value) {
    return std::get_if<desktop_link::Array>(&value.content);
}

std::optional<std::int32_t> NumberIn(const Value& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value.content)) {
        return static_cast<std::int32_t>(*integer);
    }
    const auto* real = std::get_if<double>(&value.content);
    if (real == nullptr) {
        return std::nullopt;
    }
    const bool fits = *real > kLeast - 1.0 && *real < kGreatest + 1.0;
    return static_cast<std::int32_t>(fits ? *real : kLeast);
}

std::optional<std::string> TextAt(const desktop_link::Array& values, std::size_t index) {
    return index < values.size() ? TextIn(values[index]) : std::nullopt;
}

std::int32_t Truncated(double value) {
    return std::isnan(value) ? 0 : static_cast<std::int32_t>(std::clamp(value, kLeast, kGreatest));
}

std::int32_t LeadingNumber(const std::string& text) {
    const long long number = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<std::int32_t>(
        std::clamp<long long>(number, std::numeric_limits<std::int32_t>::min(),
                              std::numeric_limits<std::int32_t>::max()));
}

bool Contains(const std::string& text, const std::string& part) {
    return !part.empty() && text.find(part) != std::string::npos;
}

std::optional<std::string> Sendable(const std::string& text, std::size_t size) {
    const bool isPlain = std::all_of(text.begin(), text.end(),
                                     [](char each) { return static_cast<signed char>(each) >= 0; });
    return isPlain && text.size() < size ? std::optional<std::string>(text.c_str()) : std::nullopt;
}

}  // namespace adversary
