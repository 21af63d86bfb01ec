// What the system knows of a process: how much it holds.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace test_support {

struct ProcessState {
    std::size_t residentBytes = 0;
    std::size_t descriptors = 0;
    std::size_t threads = 0;

    static ProcessState Of(pid_t process);
};

// The process has a handler of its own for the signal.
bool HandlesSignal(pid_t process, int signalNumber);

}  // namespace test_support
