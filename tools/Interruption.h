// SIGINT, SIGTERM and SIGHUP as a question to ask between two steps, so that work is never cut in
// half.
#pragma once

#include "tools/ExitCode.h"

namespace krt9ctl {

// While it lives the first of these signals only raises a flag. After it another SIGINT or SIGTERM
// ends the process; another SIGHUP does not, because a terminal that closes sends several. An
// ignored SIGHUP stays ignored, as nohup wants it; SIGINT does not, because shells start every
// process of a script's background with it ignored. One object at a time.
class Interruption {
  public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    // The exit code that stands for the signal that came first; ok while none came.
    static ExitCode Raised();
};

}  // namespace krt9ctl
