// From the model back to a scene. Nothing recurses over the tree of elements.
#pragma once

#include <string>

#include "desktop/Model.h"

namespace desktop {

// One element a line, so that two dumps can be compared line by line.
std::string WriteScene(Model& model);

}  // namespace desktop
