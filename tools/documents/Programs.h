// The programs that have a manual page, besides the simulated desktop.
#pragma once

#include "tools/terminal/Program.h"

namespace documents {

// Without the verbs, which the grammar holds.
const terminal::Program& CompanionProgram();
const terminal::Program& DriverProgram();

}  // namespace documents
