// An application's windows and elements as rectangles, for the templates of the view.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tools/Listing.h"

namespace krt9ctl {

// Elements of an application beyond this number are not drawn.
inline constexpr std::size_t kMostDrawn = 50000;

// Whole points. Frames are moved and cut to numbers of at most a million.
struct Rectangle {
    long x = 0, y = 0, width = 0, height = 0;
};

struct DrawnElement {
    Rectangle frame;       // within the window
    std::string line;      // what the element is, as `find` prints it
    std::string style;     // "reached", "unreached", "nameless": a class
    std::size_t pair = 0;  // its number among the elements that were found again; 0 for none
    std::string label;     // to be written into it; empty when it does not fit
};

struct DrawnWindow {
    Rectangle frame;  // within the drawing: one below the other
    std::string title;
    std::vector<DrawnElement> elements;  // larger ones first, so that none hides a smaller one
};

struct Drawing {
    std::string title;
    long width = 0, height = 0;
    std::vector<DrawnWindow> windows;  // that have a frame
    std::vector<std::string> undrawn;  // lines of elements that have an identifier and no frame
    std::size_t leftOut = 0;           // elements beyond the limit
};

// Pairs by the element's index in the list.
Drawing Draw(const Listing& listing, const std::map<std::size_t, std::size_t>& pairs);

}  // namespace krt9ctl
