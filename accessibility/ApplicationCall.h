// Calls to an application that may hang.
//
// A call that nobody answers ends with kAXErrorCannotComplete when its messaging time-out is over,
// 6 seconds as a rule. An operation goes on after a call that failed: a search that has listed a
// thousand controls of an application that stops answering would wait a thousand times. So a
// request, and a tick, waits for one call at most; the calls that it would make after that fail
// like it, at once. Main thread only.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

// Lives as long as the operation whose calls share one wait. Operations may be parts of others:
// then the wait is the outermost one's. Calls outside of any are all made.
class OneWait {
  public:
    OneWait();
    ~OneWait();
    OneWait(const OneWait&) = delete;
    OneWait& operator=(const OneWait&) = delete;

    // Whether a call of the operation has been waited for in vain.
    static bool IsOver();

    // A call took so many seconds to end like this.
    static void Note(AXError error, CFTimeInterval seconds);

  private:
    static int depth;
    static bool over;
};

// The error of `call`, which makes one accessibility call; kAXErrorCannotComplete without making it
// when the operation's wait is over.
template <typename Call>
AXError CallApplication(const Call& call) {
    if (OneWait::IsOver()) {
        return kAXErrorCannotComplete;
    }
    const CFAbsoluteTime start = CFAbsoluteTimeGetCurrent();
    const AXError error = call();
    OneWait::Note(error, CFAbsoluteTimeGetCurrent() - start);
    return error;
}
