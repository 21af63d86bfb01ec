// Which element of one release's editor is which one of another's, when the identifiers have moved.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "tools/ElementList.h"

namespace krt9ctl {

// How alike two elements are in each respect, from 0 to 1; nothing where neither has anything to
// compare.
struct Likeness {
    double role = 0;
    std::optional<double> text;   // title, description, and the value if it is a text
    std::optional<double> place;  // the frame within the window
    double path = 0;              // the roles from the window down, and the position
    bool sameIdentifier = false;

    // From 0 to 1.
    double Score() const;
};

struct ElementMatch {
    std::size_t from = 0, to = 0;  // indexes in the two lists
    Likeness likeness;
    // From 0 to 1: the score, up to half of it less when another element is nearly as alike.
    double confidence = 0;
};

struct ElementMatching {
    std::vector<ElementMatch> matches;     // in the order of the first list
    std::vector<std::size_t> gone, added;  // without counterpart
};

// More pairs than these are not compared; it takes about ten seconds.
inline constexpr std::size_t kMostPairs = 50'000'000;

// Matches the elements that have identifiers, each with one other at most. Throws
// std::runtime_error when there are more pairs. Reports the number of elements done now and then.
ElementMatching MatchElements(const ElementList& from, const ElementList& to,
                              const std::function<void(std::size_t)>& progress);

}  // namespace krt9ctl
