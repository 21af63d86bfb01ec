// The timers, sources and observers of one run-loop test, on the test clock. They call functions of
// the test, and leave the loop when the scene is destroyed.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "tests/unit/CoreFoundation/RunLoop/SceneClock.h"

namespace run_loop_test {

class Scene {
  public:
    using Callback = std::function<void()>;

    enum class Clock { test, real };
    explicit Scene(Clock clock = Clock::test);
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    ~Scene();  // invalidates what it made

    CFRunLoopRef Loop() const { return loop_; }

    // A mode of this scene alone.
    CFRunLoopMode Custom() const { return custom_; }
    // Adds it to the common set, in which it stays as long as the loop.
    void MakeCustomCommon();
    // Takes the timer out of the modes that earlier scenes added to the common set.
    void RemoveFromAddedCommonModes(CFRunLoopTimerRef timer) const;
    // "custom" for that mode, else its name; "" for null.
    std::string NameOf(CFRunLoopMode mode) const;

    // `after` and `interval` in seconds. Owned by the scene; in no mode yet.
    CFRunLoopTimerRef MakeTimer(double after, double interval, Callback fired);
    CFRunLoopSourceRef MakeSource(Callback performed, CFIndex order = 0);
    // The caller releases it.
    CFRunLoopTimerRef MakeTimerForCaller(double after, double interval, Callback fired);
    // A source that reports `schedule:MODE` and `cancel:MODE`.
    CFRunLoopSourceRef MakeReportingSource(std::function<void(std::string)> report);

    using ActivityCallback = std::function<void(CFRunLoopActivity)>;
    CFRunLoopObserverRef MakeObserver(CFOptionFlags activities, ActivityCallback told,
                                      CFIndex order = 0, bool repeats = true);

    // The same, added to the mode.
    CFRunLoopTimerRef AddTimer(double after, double interval, Callback fired,
                               CFRunLoopMode mode = kCFRunLoopDefaultMode);
    CFRunLoopSourceRef AddSource(Callback performed, CFRunLoopMode mode = kCFRunLoopDefaultMode,
                                 CFIndex order = 0);
    CFRunLoopObserverRef AddObserver(CFOptionFlags activities, ActivityCallback told,
                                     CFIndex order = 0, bool repeats = true);
    CFRunLoopSourceRef AddIdleSource(CFRunLoopMode mode = kCFRunLoopDefaultMode);

    // Seconds since the scene began.
    double Time() const { return CFAbsoluteTimeGetCurrent() - start_; }
    // Lets time pass as a long callback does.
    void Spend(double seconds) { clock_->Advance(seconds); }

    CFRunLoopRunResult Run(double seconds, bool returnAfterSourceHandled = false,
                           CFRunLoopMode mode = kCFRunLoopDefaultMode) const {
        return CFRunLoopRunInMode(mode, seconds, returnAfterSourceHandled);
    }

  private:
    std::optional<SceneClock> clock_;
    CFAbsoluteTime start_;
    const CFRunLoopRef loop_ = CFRunLoopGetCurrent();
    const CFRunLoopMode custom_;
    std::deque<Callback> callbacks_;  // never moved: the contexts point to them
    std::deque<std::pair<const Scene*, std::function<void(std::string)>>> reports_;
    std::deque<CFRunLoopTimerRef> timers_;
    std::deque<CFRunLoopSourceRef> sources_;
    std::deque<ActivityCallback> activityCallbacks_;
    std::deque<CFRunLoopObserverRef> observers_;
};

}  // namespace run_loop_test
