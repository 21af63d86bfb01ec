// What must hold for every input: the process ends with a line that says what did not.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

// The fuzzer may have closed stderr for the target's own lines; the place is in the crash's stack.
[[noreturn]] inline void Fail(const char* what) {
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

inline void Check(bool holds, const char* what) {
    if (!holds) {
        Fail(what);
    }
}

}  // namespace fuzz
