// krt9ctl from its command line to its exit code.
#pragma once

#include <string>
#include <vector>

#include "tools/ExitCode.h"
#include "tools/Output.h"

namespace krt9ctl {

// What a verb that acts by itself is given.
struct Context {
    Output& output;
    double timeout;  // seconds
};

ExitCode RunCommandLine(std::vector<std::string> words, const Streams& streams);

}  // namespace krt9ctl
