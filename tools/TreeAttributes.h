// Attributes that follow from the tree, so that a scene does not repeat them.
#pragma once

#include <optional>
#include <string>

#include "tools/AccessibilityTree.h"

namespace krt9ctl {

// Whether the value is the one that the tree alone gives.
bool FollowsFromTree(const AccessibilityTree& tree, std::size_t place, const std::string& attribute,
                     CFTypeRef value);

// The window, among the application's, whose AXMain is true.
std::optional<std::size_t> MainWindow(const AccessibilityTree& tree);

// Whether the value is the boolean true.
bool IsTrue(CFTypeRef value);

}  // namespace krt9ctl
