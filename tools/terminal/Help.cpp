#include "tools/terminal/Help.h"

#include <algorithm>

namespace terminal {

namespace {

// Where the rest of a long line continues: under the last column that begins in its first half,
// else under its first letter.
std::size_t Indentation(std::string_view line, std::size_t columns) {
    std::size_t indentation = std::min(line.find_first_not_of(' '), line.size());
    for (std::size_t gap = line.find("  ", indentation); gap != std::string_view::npos;) {
        const std::size_t next = line.find_first_not_of(' ', gap);
        if (next == std::string_view::npos || next > columns / 2) {
            break;
        }
        indentation = next;
        gap = line.find("  ", next);
    }
    return indentation;
}

void AppendWrapped(std::string& text, std::string_view line, std::size_t columns) {
    const std::size_t indentation = Indentation(line, columns);
    std::size_t room = columns;
    while (line.size() > room) {
        std::size_t end = line.rfind(' ', room);
        if (end == std::string_view::npos || line.find_first_not_of(' ') > end) {
            end = line.find(' ', room);  // a word that does not fit is not broken
        }
        if (end == std::string_view::npos) {
            break;
        }
        text += std::string(line.substr(0, end)) + "\n" + std::string(indentation, ' ');
        line.remove_prefix(end + 1);
        room = columns - indentation;
    }
    text += line;
}

// Adding, leaving out, replacing a letter and swapping two neighbours cost one each.
std::size_t Distance(std::string_view left, std::string_view right) {
    std::vector<std::vector<std::size_t>> cost(left.size() + 1,
                                               std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t k = 0; k <= right.size(); ++k) {
            if (i == 0 || k == 0) {
                cost[i][k] = i + k;
                continue;
            }
            const std::size_t replaced = cost[i - 1][k - 1] + (left[i - 1] == right[k - 1] ? 0 : 1);
            cost[i][k] = std::min({cost[i - 1][k] + 1, cost[i][k - 1] + 1, replaced});
            if (i > 1 && k > 1 && left[i - 1] == right[k - 2] && left[i - 2] == right[k - 1]) {
                cost[i][k] = std::min(cost[i][k], cost[i - 2][k - 2] + 1);
            }
        }
    }
    return cost.back().back();
}

}  // namespace

std::string Wrapped(std::string_view text, std::size_t columns) {
    std::string wrapped;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        AppendWrapped(wrapped, text.substr(0, end), columns);
        if (end < text.size()) {
            wrapped += '\n';
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return wrapped;
}

std::string Nearest(std::string_view word, const std::vector<std::string>& names) {
    constexpr std::size_t kLongestWord = 40;  // the cost grows with the product of the lengths
    std::string nearest;
    std::size_t best = std::min(std::max<std::size_t>(word.size() / 3, 1) + 1, word.size());
    for (const std::string& name : names) {
        if (word.size() <= kLongestWord) {
            const std::size_t distance = Distance(word, name);
            nearest = distance < best ? name : nearest;
            best = std::min(best, distance);
        }
    }
    return nearest;
}

}  // namespace terminal
