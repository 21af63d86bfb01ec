// krt9ctl from its command line to its exit code.
#pragma once

#include <string>
#include <vector>

#include "tools/Arguments.h"
#include "tools/ExitCode.h"
#include "tools/Output.h"

namespace krt9ctl {

// What a verb that acts by itself is given.
struct Context {
    Output& output;
    double timeout;         // seconds
    int inDescriptor = -1;  // of the standard input; -1 for none
};

// What is wrong with a command line: the verb, the sentence, and the command that shows more.
std::string Explain(const UsageError& error);

ExitCode RunCommandLine(std::vector<std::string> words, const Streams& streams);

}  // namespace krt9ctl
