#include "tests/documents/Pattern.h"

#include <algorithm>
#include <functional>
#include <span>

namespace documents {

namespace {

constexpr std::string_view kAnything = "...";

bool MatchFrom(std::span<const std::string> patterns, std::span<const std::string> lines) {
    if (patterns.empty()) {
        return lines.empty();
    }
    if (patterns.front() == kAnything) {
        return MatchFrom(patterns.subspan(1), lines) ||
               (!lines.empty() && MatchFrom(patterns, lines.subspan(1)));
    }
    return !lines.empty() && Matches(patterns.front(), lines.front()) &&
           MatchFrom(patterns.subspan(1), lines.subspan(1));
}

}  // namespace

bool Matches(std::string_view pattern, std::string_view line) {
    std::size_t gap = pattern.find(kAnything);
    if (gap == std::string_view::npos) {
        return pattern == line;
    }
    if (!line.starts_with(pattern.substr(0, gap))) {
        return false;
    }
    line.remove_prefix(gap);
    pattern.remove_prefix(gap + kAnything.size());
    // Each part as early as possible, the last one at the end.
    while ((gap = pattern.find(kAnything)) != std::string_view::npos) {
        const std::size_t found = line.find(pattern.substr(0, gap));
        if (found == std::string_view::npos) {
            return false;
        }
        line.remove_prefix(found + gap);
        pattern.remove_prefix(gap + kAnything.size());
    }
    return line.ends_with(pattern);
}

bool MatchLines(const std::vector<std::string>& patterns, const std::vector<std::string>& lines) {
    return MatchFrom(patterns, lines);
}

}  // namespace documents
