// krt9ctl from its words to its exit code.
#pragma once

#include <string>
#include <vector>

#include "tools/ExitCode.h"
#include "tools/Output.h"

namespace krt9ctl {

// What a verb that acts on its own works with.
struct Context {
    Output& output;
    double timeout;  // seconds
};

ExitCode RunCommandLine(std::vector<std::string> words, const Streams& streams);

}  // namespace krt9ctl
