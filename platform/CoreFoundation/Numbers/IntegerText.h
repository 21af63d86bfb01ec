// Numbers at the beginning of texts.
#pragma once

#include <cstdint>
#include <string_view>

namespace core_foundation {

// What Core Foundation skips before a number: control characters, too, but not line separators.
bool IsBlank(char16_t unit);

// Skips blanks, takes one sign, skips blanks again, and takes the ASCII digits up to the first
// other character. 0 when there is none; clamped to 32 bits.
std::int32_t LeadingInteger(std::u16string_view text);

}  // namespace core_foundation
