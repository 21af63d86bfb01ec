// SIGINT, SIGTERM and SIGHUP as a flag to check between two steps, so that no step is cut in
// half.
#pragma once

#include "tools/ExitCode.h"

namespace krt9ctl {

// While it exists, the first of these signals only sets a flag. After it another SIGINT or SIGTERM
// ends the process; another SIGHUP does not, because a terminal that closes sends several. An
// ignored SIGHUP stays ignored, as nohup requires; SIGINT does not, because shells start every
// process of a script's background with it ignored. One object at a time.
class Interruption {
  public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    // The exit code for the first signal that arrived; ok while there is none.
    static ExitCode Raised();

    // Waits until one of the signals arrives or the time, in seconds, has passed.
    static void Pause(double seconds);

    // Waits until something can be read from the descriptor, or it has ended; false when one of the
    // signals arrives before, or has arrived.
    static bool AwaitInput(int descriptor);
};

}  // namespace krt9ctl
