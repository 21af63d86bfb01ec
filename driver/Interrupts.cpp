#include "driver/Interrupts.h"

#include <CoreFoundation/CoreFoundation.h>

#include <climits>
#include <csignal>

#include "VEKCommon/OwnedReference.h"

namespace {

// Nested runs of the loop: a callback may begin another one.
int runs = 0;

void SetInterruptMask(int how) {
    sigset_t interrupt;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    pthread_sigmask(how, &interrupt, nullptr);
}

// A pending signal is delivered before pthread_sigmask returns, while the run loop is calling out
// and holds no lock. Between the return of this callout and the wait itself, and between the wait
// and the next callout, the run loop of macOS holds its own locks for a moment. They are recursive,
// so that the thread may take them again, and the loop does not allocate there, directly or not.
// So the handler may remove the timer and the port from the loop there, too.
void LoopGoesOn(CFRunLoopObserverRef, CFRunLoopActivity activity, void*) {
    switch (activity) {
        case kCFRunLoopEntry:
            ++runs;
            break;
        case kCFRunLoopExit:
            --runs;
            break;
        default:
            if (runs == 1) {
                SetInterruptMask(SIG_UNBLOCK);
            }
    }
}

void LoopHasWaited(CFRunLoopObserverRef, CFRunLoopActivity, void*) {
    SetInterruptMask(SIG_BLOCK);
}

void Observe(CFOptionFlags activities, CFIndex order, CFRunLoopObserverCallBack callback) {
    const OwnedReference<CFRunLoopObserverRef> observer(
        CFRunLoopObserverCreate(kCFAllocatorDefault, activities, true, order, callback, nullptr));
    CFRunLoopAddObserver(CFRunLoopGetCurrent(), observer.get(), kCFRunLoopCommonModes);
}

}  // namespace

// These are the last observer before the wait and the first one after it: all others run with the
// signal blocked.
void AllowInterruptsOnlyWhileWaiting() {
    SetInterruptMask(SIG_BLOCK);
    Observe(kCFRunLoopEntry | kCFRunLoopBeforeWaiting | kCFRunLoopExit, LONG_MAX, LoopGoesOn);
    Observe(kCFRunLoopAfterWaiting, LONG_MIN, LoopHasWaited);
}
