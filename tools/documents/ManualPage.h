// Manual pages in the man macros, which every system's man reads.
#pragma once

#include <string>
#include <string_view>

#include "tools/Grammar.h"
#include "tools/terminal/Program.h"

namespace documents {

// `verbs` is null for a program without verbs.
std::string WriteManualPage(const terminal::Program& program, const krt9ctl::Grammar* verbs,
                            std::string_view version);

}  // namespace documents
