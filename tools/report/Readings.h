// The requests of a report: each reads a control that a request can name.
#pragma once

#include "tools/AccessibilityTree.h"
#include "tools/Request.h"

namespace krt9ctl {

// Value and position of each control that the driver's search finds, the index of a radio group,
// the number in a text field that holds nothing else; in the order of the tree, and of so many
// controls at most.
inline constexpr std::size_t kMostControlsRead = 200;
Plan Readings(const AccessibilityTree& tree);

}  // namespace krt9ctl
