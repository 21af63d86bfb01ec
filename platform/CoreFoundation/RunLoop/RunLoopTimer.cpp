#include "platform/CoreFoundation/RunLoop/RunLoopTimer.h"

#include <algorithm>

#include "platform/CoreFoundation/RunLoop/RunLoop.h"
#include "platform/Variants/Variants.h"

namespace run_loop {

namespace {

// A date in the past counts as now: the timer's grid begins there.
Instant FireTimeFor(CFAbsoluteTime date) {
    return std::max(InstantOf(date), Now());
}

std::int64_t GridStep(CFTimeInterval interval) {
    return interval > 0 ? std::max(Nanoseconds(interval), std::int64_t{1}) : 0;
}

}  // namespace

Timer::Timer(CFAbsoluteTime fireDate, CFTimeInterval interval, CFRunLoopTimerCallBack callout,
             const CFRunLoopTimerContext& context)
    : intervalInSeconds_(std::max(interval, 0.0)),
      interval_(GridStep(interval)),
      callout_(callout),
      context_(context),
      fireTime_(FireTimeFor(fireDate)) {
    if (context_.retain != nullptr) {
        context_.retain(context_.info);
    }
}

// Marks the timer as firing, and sets its next date however the callback is left.
class Timer::Firing {
  public:
    explicit Firing(Timer& timer) : timer_(timer) { timer_.firing_ = true; }
    Firing(const Firing&) = delete;
    Firing& operator=(const Firing&) = delete;
    ~Firing() {
        if (!timer_.Repeats()) {
            timer_.Invalidate();
        }
        const std::lock_guard lock(StructureMutex());
        timer_.firing_ = false;
        if (timer_.valid_) {
            timer_.fireTime_ = timer_.NextOnGrid(timer_.fireTime_);
        }
    }

  private:
    Timer& timer_;
};

void Timer::FireIfDue(const Mode& mode, Instant now) {
    std::unique_lock lock(StructureMutex());
    const bool inMode = IsIn(mode);
    if (!inMode || NextDue() > now) {
        return;
    }
    const Firing firing(*this);
    lock.unlock();
    // The callback may invalidate the timer and still use what its info points to.
    if (context_.retain != nullptr) {
        context_.retain(context_.info);
    }
    platform_testing::InterruptOnce(platform_testing::Variant::interruptInTick);
    callout_(Ref(), context_.info);
    if (context_.release != nullptr) {
        context_.release(context_.info);
    }
}

Instant Timer::NextOnGrid(Instant date) const {
    const std::int64_t steps = (Now() - date) / interval_ + 1;
    return Later(date, steps * interval_);
}

CFAbsoluteTime Timer::NextFireDate() const {
    const std::lock_guard lock(StructureMutex());
    return valid_ ? DateOf(fireTime_) : 0;
}

void Timer::Invalidate() {
    std::vector<Retained<Timer>> withdrawn;
    {
        const std::lock_guard lock(StructureMutex());
        if (!valid_) {
            return;
        }
        valid_ = false;
        withdrawn = RunLoop::WithdrawEverywhere(*this);
    }
    if (context_.release != nullptr) {
        context_.release(context_.info);
    }
}

}  // namespace run_loop
