// Mutations of documents: JSON texts, each in a line of its own, the first of them a scene and the
// others commands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

// The lines of an input.
std::vector<std::string> Lines(const std::uint8_t* data, std::size_t size);

// Changes one place of the tree of one line: a value taken from another place, of another kind,
// repeated, removed, or with other characters. A line that is not JSON is left unchanged.
std::vector<std::string> MutateOneLine(std::vector<std::string> lines, unsigned seed);

}  // namespace fuzz
