// Help texts that fit, and the word that was probably meant.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace terminal {

// The text with its lines broken at blanks so that none is longer than `columns`. The rest of a
// line in two or more columns (a name, blanks, an explanation) continues under its last column.
std::string Wrapped(std::string_view text, std::size_t columns);

// The name that differs from the word in the fewest letters (added, left out, replaced, or swapped
// with their neighbour). Empty when the best differs in more than a third of the word's letters and
// more than one of them, or in all of them.
std::string Nearest(std::string_view word, const std::vector<std::string>& names);

}  // namespace terminal
