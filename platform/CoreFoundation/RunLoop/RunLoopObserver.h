// An observer of a run loop: called with what the loop is about to do.
#pragma once

#include <CoreFoundation/CFRunLoop.h>

#include <atomic>
#include <vector>

#include "platform/CoreFoundation/RunLoop/RunLoopMember.h"

namespace run_loop {

using core_foundation::Retained;

class Observer final : public LoopMember {
  public:
    static CFTypeID TypeID() { return CFRunLoopObserverGetTypeID(); }
    CFTypeID Type() const override { return TypeID(); }
    CFRunLoopObserverRef Ref() const {
        return static_cast<CFRunLoopObserverRef>(const_cast<void*>(Reference()));
    }

    Observer(CFOptionFlags activities, bool repeats, CFIndex order,
             CFRunLoopObserverCallBack callout, const CFRunLoopObserverContext& context);

    CFIndex Order() const { return order_; }
    bool IsValid() const { return valid_; }
    // Whether it is to be called for the activity: interested, and not being called already. It is
    // in a mode, and therefore valid.
    bool Wants(CFRunLoopActivity activity) const {
        return !calling_ && (activities_ & activity) != 0;
    }

    // Calls it for the activity, unless it has become invalid. One that does not repeat is invalid
    // afterwards. Takes no lock and allocates nothing except for that: a program's signal handler
    // may run just before and just after the callout of an observer that repeats, and use the loop.
    void Call(CFRunLoopActivity activity);

    // Removes the observer from its loop permanently. The mutex is not held.
    void Invalidate();

  private:
    void Finalize() override { Invalidate(); }

    const CFOptionFlags activities_;
    const bool repeats_;
    const CFIndex order_;
    const CFRunLoopObserverCallBack callout_;
    const CFRunLoopObserverContext context_;
    std::atomic<bool> valid_ = true;
    std::atomic<bool> calling_ = false;
};

}  // namespace run_loop
