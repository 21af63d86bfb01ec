// Numbers at the beginning of texts.
#pragma once

#include <cstdint>
#include <string_view>

namespace core_foundation {

// What Core Foundation skips before a number: also control characters, but no line separator.
bool IsBlank(char16_t unit);

// Skips blanks, takes one sign, skips blanks again, and takes the ASCII digits up to the first
// other character. 0 when there is none; held at the limits of 32 bits.
std::int32_t LeadingInteger(std::u16string_view text);

}  // namespace core_foundation
