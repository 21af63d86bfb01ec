// Comparing texts as their canonical decompositions: a composed character and the letter with its
// marks are the same.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace core_foundation {

// Below, at or above 0. Texts that differ are ordered by the code points of their decompositions,
// not by UTF-16 code units.
int CompareCanonically(std::u16string_view first, std::u16string_view second);

struct FoundText {
    std::size_t location;  // in code units, like the length
    std::size_t length;    // may differ from the length of the text that was looked for
};

// The first occurrence of a text that is not empty. One that ends between a letter and its marks,
// or inside a composed character, does not count.
std::optional<FoundText> FindCanonically(std::u16string_view text, std::u16string_view wanted);

}  // namespace core_foundation
