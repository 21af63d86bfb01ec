// The command line of krt9-desktop as data.
#pragma once

#include "tools/terminal/Program.h"

namespace desktop {

const terminal::Program& DesktopProgram();

}  // namespace desktop
