// What a document says a program prints: text in which "..." stands for any text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace documents {

// Within one line.
bool Matches(std::string_view pattern, std::string_view line);

// Line by line. A line that is "..." stands for any number of lines.
bool MatchLines(const std::vector<std::string>& patterns, const std::vector<std::string>& lines);

}  // namespace documents
