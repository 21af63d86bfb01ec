// An accessibility tree as a scene of the simulated desktop.
#pragma once

#include <string>

#include "tools/AccessibilityTree.h"
#include "tools/FrontApplication.h"

namespace krt9ctl {

struct SceneDump {
    std::string text;               // one element a line
    std::size_t leftOutValues = 0;  // values that a scene cannot hold
};

// What follows from the tree (parents, windows of elements, indexes of rows ...) is omitted: a
// scene's tree gives it again, so that a dump of the scene is the same dump.
SceneDump WriteScene(const AccessibilityTree& tree, const ApplicationFacts& facts, bool isFront);

}  // namespace krt9ctl
