// Calls to applications that may hang: every accessibility call of the driver goes through here.
//
// A call that nobody answers ends with kAXErrorCannotComplete when its messaging time-out is over.
// An operation goes on after a call that failed: a search that has listed a thousand controls of an
// application that stops answering would wait a thousand times. So a process whose call was waited
// for to the end counts as hung, and for the rest of the request or the tick its further calls fail
// like that one, at once and without being made. That holds for this process only: a window may
// list controls of others, which are asked as if nothing had happened. A call that ends with that
// error earlier was answered so by the application; only that one call has failed. Main thread
// only.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <chrono>

// Lives as long as the operation that waits for each hung process once. Operations may be parts of
// others: then the outermost one counts. Calls outside of any are all made.
class OneWait {
  public:
    OneWait();
    ~OneWait();
    OneWait(const OneWait&) = delete;
    OneWait& operator=(const OneWait&) = delete;
};

// How calls are measured. No setting: only tests change it.
struct CallTiming {
    using Clock = std::chrono::steady_clock;  // no step of the wall clock changes a duration

    // Seconds that a call waits for its answer. The platform documents no number of its own, so
    // the driver sets this one for the process, before its first call.
    float timeout = 6;

    Clock::time_point (*now)() = Clock::now;
};

// The timing that it replaces.
CallTiming SetCallTiming(const CallTiming& timing);

// One call to the process that an element belongs to; see CallApplication.
class MeasuredCall {
  public:
    explicit MeasuredCall(AXUIElementRef element);

    // Whether the process hangs, as far as the operation knows.
    bool IsInVain() const;

    void Ended(AXError error);

  private:
    pid_t process_ = 0;  // remains so when the element is none, which the call then says itself
    CallTiming::Clock::time_point start_;
};

// The error of `call`, which makes one accessibility call on `element`; kAXErrorCannotComplete
// without making it when the element's process hangs.
template <typename Call>
AXError CallApplication(AXUIElementRef element, const Call& call) {
    MeasuredCall measured(element);
    if (measured.IsInVain()) {
        return kAXErrorCannotComplete;
    }
    const AXError error = call();
    measured.Ended(error);
    return error;
}
