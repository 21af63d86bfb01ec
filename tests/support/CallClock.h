// Controls from a test how calls to applications are timed.
#pragma once

#include "accessibility/calls/ApplicationCall.h"

namespace test_support {

// A clock for calls that stands still until it is advanced. One at a time.
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
