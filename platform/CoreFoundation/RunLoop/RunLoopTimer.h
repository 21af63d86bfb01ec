// A timer of a run loop.
#pragma once

#include <CoreFoundation/CFRunLoop.h>

#include "platform/CoreFoundation/RunLoop/RunLoopClock.h"
#include "platform/CoreFoundation/RunLoop/RunLoopMember.h"

namespace run_loop {

using core_foundation::Retained;

// All members that are not constant are guarded by StructureMutex(), unless they say otherwise.
class Timer final : public LoopMember {
  public:
    static CFTypeID TypeID() { return CFRunLoopTimerGetTypeID(); }
    CFTypeID Type() const override { return TypeID(); }
    CFRunLoopTimerRef Ref() const {
        return static_cast<CFRunLoopTimerRef>(const_cast<void*>(Reference()));
    }

    // interval <= 0: fires once. A date of NaN means now.
    Timer(CFAbsoluteTime fireDate, CFTimeInterval interval, CFRunLoopTimerCallBack callout,
          const CFRunLoopTimerContext& context);

    bool IsValid() const { return valid_; }
    Instant FireTime() const { return fireTime_; }
    CFTimeInterval IntervalInSeconds() const { return intervalInSeconds_; }
    // The mutex is not held.
    CFAbsoluteTime NextFireDate() const;

    // The next date at which the timer can fire: kNever while it is firing.
    Instant NextDue() const { return firing_ ? kNever : fireTime_; }

    // Calls the timer if it is due at `now` and in the mode. The mutex is not held.
    void FireIfDue(const Mode& mode, Instant now);

    // Removes the timer from its loop permanently. The mutex is not held.
    void Invalidate();

  private:
    class Firing;

    void Finalize() override { Invalidate(); }
    // The first date of the grid that has not passed yet, after one that has.
    Instant NextOnGrid(Instant date) const;

    bool Repeats() const { return interval_ > 0; }

    const CFTimeInterval intervalInSeconds_;
    const std::int64_t interval_;  // nanoseconds
    const CFRunLoopTimerCallBack callout_;
    const CFRunLoopTimerContext context_;
    Instant fireTime_;
    bool valid_ = true;
    bool firing_ = false;
};

}  // namespace run_loop
