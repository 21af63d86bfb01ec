// What the driver must see in a value of another application.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/DesktopLink/Value.h"

namespace adversary {

// Nothing, or null, for a value of another type.
std::optional<std::string> TextIn(const desktop_link::Value& value);
std::optional<desktop_link::ElementReference> ElementIn(const desktop_link::Value& value);
const desktop_link::Array* ArrayIn(const desktop_link::Value& value);

// A number as Core Foundation truncates it to 32 bits: of an integer the low ones, of a real number
// the integral part, or the least integer for one that is out of range. A Boolean is not a number.
std::optional<std::int32_t> NumberIn(const desktop_link::Value& value);

std::optional<std::string> TextAt(const desktop_link::Array& values, std::size_t index);

// Towards zero; a value that does not fit becomes the nearest limit, and NaN becomes 0.
std::int32_t Truncated(double value);

// The number that a text begins with, 0 without any.
std::int32_t LeadingNumber(const std::string& text);

// An empty text is not contained in any text.
bool Contains(const std::string& text, const std::string& part);

// The text's bytes up to its first 0. Nothing for one that has other than ASCII characters, which
// suffices for the texts of the tests, or that does not fit `size` bytes with its terminator.
std::optional<std::string> Sendable(const std::string& text, std::size_t size);

}  // namespace adversary
