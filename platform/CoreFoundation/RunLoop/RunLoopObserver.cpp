#include "platform/CoreFoundation/RunLoop/RunLoopObserver.h"

#include <utility>

#include "platform/CoreFoundation/RunLoop/RunLoop.h"

namespace run_loop {

Observer::Observer(CFOptionFlags activities, bool repeats, CFIndex order,
                   CFRunLoopObserverCallBack callout, const CFRunLoopObserverContext& context)
    : activities_(activities),
      repeats_(repeats),
      order_(order),
      callout_(callout),
      context_(context) {
    if (context_.retain != nullptr) {
        context_.retain(context_.info);
    }
}

void Observer::Call(CFRunLoopActivity activity) {
    if (!valid_) {
        return;
    }
    calling_ = true;
    callout_(Ref(), activity, context_.info);
    if (!repeats_) {
        Invalidate();
    }
    calling_ = false;
}

void Observer::Invalidate() {
    std::vector<Retained<Observer>> withdrawn;
    {
        const std::lock_guard lock(StructureMutex());
        if (!valid_.exchange(false)) {
            return;
        }
        withdrawn = RunLoop::WithdrawEverywhere(*this);
    }
    if (context_.release != nullptr) {
        context_.release(context_.info);
    }
}

}  // namespace run_loop
