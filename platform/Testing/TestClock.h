// A clock for the run loops that stands still until it is advanced.
//
// While one is installed, CFAbsoluteTimeGetCurrent() shows its time, timers fire by it, and a run
// loop that would wait moves it to the next timer or deadline instead of sleeping. Ready
// descriptors are checked before that. A loop with neither timer nor deadline really waits. An
// answer of another process is therefore always too late when a time-out is in force.
#pragma once

#include <CoreFoundation/CFBase.h>

namespace platform_testing {

// One at a time. Install it before creating the timers that it is to drive.
class TestClock {
  public:
    explicit TestClock(CFAbsoluteTime start = 0);
    ~TestClock();
    TestClock(const TestClock&) = delete;
    TestClock& operator=(const TestClock&) = delete;

    // Advances the time without calling anything: what becomes due is called by the next pass.
    void Advance(CFTimeInterval seconds);
};

}  // namespace platform_testing
