// Calls to applications that may hang: every accessibility call of the driver goes through here.
//
// A call that is not answered fails with kAXErrorCannotComplete when the messaging time-out
// expires. Operations go on after a failed call, so a search that has listed a thousand controls of
// an application that stops answering would wait a thousand times. Therefore a process that let a
// call time out counts as hung, and for the rest of the request or the tick further calls to it
// fail with the same error at once, without being made. Other processes are not affected: a window
// may list controls of several. A call that fails with that error earlier got this answer from the
// application, and only that call has failed.
// Main thread only.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <chrono>

// The scope of an operation, which waits for each hung process at most once. Operations may nest:
// the outermost one counts. Outside of any operation every call is made.
class OneWait {
  public:
    OneWait();
    ~OneWait();
    OneWait(const OneWait&) = delete;
    OneWait& operator=(const OneWait&) = delete;
};

// How calls are timed. Not a setting: only tests change it.
struct CallTiming {
    using Clock = std::chrono::steady_clock;  // not affected by steps of the wall clock

    // Seconds that a call waits for its answer. The platform does not document its default, so the
    // driver sets this one for the process, before its first call.
    float timeout = 6;

    Clock::time_point (*now)() = Clock::now;
};

// Returns the timing that it replaces.
CallTiming SetCallTiming(const CallTiming& timing);

// Calls made since the process started: each is one exchange.
unsigned long CallsMade();

// One call to the process that an element belongs to; see CallApplication.
class MeasuredCall {
  public:
    explicit MeasuredCall(AXUIElementRef element);

    // Whether the current operation has found the process to hang.
    bool ProcessIsHung() const;

    // To be called with the result as soon as the call has returned.
    void Ended(AXError error);

  private:
    pid_t process_ = 0;  // stays 0 for an object that is not an element; the call reports that
    CallTiming::Clock::time_point start_;
};

// Returns the error of `call`, which makes one accessibility call on `element`; when the element's
// process hangs, kAXErrorCannotComplete without making it.
template <typename Call>
AXError CallApplication(AXUIElementRef element, const Call& call) {
    MeasuredCall measured(element);
    if (measured.ProcessIsHung()) {
        return kAXErrorCannotComplete;
    }
    const AXError error = call();
    measured.Ended(error);
    return error;
}
