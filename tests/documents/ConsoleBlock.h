// The lines of a console block as steps of a session. CONTRIBUTING.md describes the notation.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/Companion.h"

namespace documents {

using test_support::Bytes;

enum class StepKind {
    command,  // $ COMMAND, further lines of it: > TEXT
    request,  // -> CODE BYTES
    message,  // <- CODE BYTES
    desktop,  // desktop: TEXT
    driver,   // driver: TEXT
};

struct Step {
    StepKind kind = StepKind::command;
    int line = 0;
    std::string text;  // of a command, of a log; the code of a request or message
    bool isBackground = false;
    int exitCode = 0;
    std::vector<std::string> output;  // patterns
    Bytes body;
    std::optional<Bytes> reply;  // of a request: empty for "nothing"
};

// Throws std::runtime_error, with the number of the line, for a line that is no step.
std::vector<Step> ReadConsole(const std::vector<std::string>& code, int firstLine);

}  // namespace documents
