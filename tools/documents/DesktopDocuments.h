// The programs of the simulated desktop, which exists on Linux only.
#pragma once

#include <vector>

#include "tools/terminal/Program.h"

namespace documents {

std::vector<const terminal::Program*> SimulatedPrograms();

}  // namespace documents
