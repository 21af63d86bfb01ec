// How calls to applications are measured, in the hands of a test.
#pragma once

#include "accessibility/calls/ApplicationCall.h"

namespace test_support {

// A clock of calls that stands still until somebody moves it. One at a time.
class CallClock {
  public:
    explicit CallClock(float timeout = CallTiming().timeout)
        : previous_(SetCallTiming({timeout, [] { return now; }})) {}
    ~CallClock() { SetCallTiming(previous_); }
    CallClock(const CallClock&) = delete;
    CallClock& operator=(const CallClock&) = delete;

    static void Advance(double seconds) {
        now += std::chrono::duration_cast<CallTiming::Clock::duration>(
            std::chrono::duration<double>(seconds));
    }

  private:
    static inline CallTiming::Clock::time_point now;

    CallTiming previous_;
};

}  // namespace test_support
