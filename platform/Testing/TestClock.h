// A clock under the run loops that stands still until somebody moves it.
//
// While one is installed, CFAbsoluteTimeGetCurrent() shows its time, timers fire by it, and a run
// loop that would wait moves it to the next timer or deadline instead of sleeping. Ready
// descriptors are looked at before that. A loop with neither timer nor deadline really waits. An
// answer of another process is therefore always too late when a time-out is in force.
#pragma once

#include <CoreFoundation/CFBase.h>

namespace platform_testing {

// One at a time. Install it before the timers are made that it is to drive.
class TestClock {
  public:
    explicit TestClock(CFAbsoluteTime start = 0);
    ~TestClock();
    TestClock(const TestClock&) = delete;
    TestClock& operator=(const TestClock&) = delete;

    // Moves the time without calling anything: what becomes due is called by the next pass.
    void Advance(CFTimeInterval seconds);
};

}  // namespace platform_testing
