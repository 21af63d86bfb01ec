// An accessibility tree as a scene of the simulated desktop.
#pragma once

#include <functional>
#include <string>

#include "scenes/notation/Answer.h"
#include "tools/AccessibilityTree.h"
#include "tools/FrontApplication.h"

namespace krt9ctl {

struct SceneDump {
    std::string text;               // one element a line
    std::size_t leftOutValues = 0;  // values that a scene cannot hold
};

// Changes what an attribute holds before it is written; the application's AXTitle is its name.
using ChangeAnswer = std::function<void(const TreeElement& element, const std::string& attribute,
                                        scene_notation::Answer& answer)>;

// What follows from the tree (parents, windows of elements, indexes of rows ...) is omitted: a
// scene's tree gives it again, so that a dump of the scene is the same dump.
SceneDump WriteScene(const AccessibilityTree& tree, const ApplicationFacts& facts, bool isFront,
                     const ChangeAnswer& change = {});

}  // namespace krt9ctl
