#include "platform/CoreFoundation/InterruptHold.h"

#include <unistd.h>

#include "platform/CoreFoundation/RunLoopClock.h"

namespace run_loop {
namespace {

constexpr Instant kLongestBusyTime = 10'000'000;  // 10 ms

// Used by the main thread alone.
bool holding = false;
sigset_t waitMask;
Instant lastLetThrough = 0;

bool ProgramHandlesInterrupts() {
    struct sigaction action {};
    if (sigaction(SIGINT, nullptr, &action) != 0) {
        return false;
    }
    return (action.sa_flags & SA_SIGINFO) != 0 ||
           (action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN);
}

}  // namespace

bool OnMainThread() {
    thread_local const bool isMain = getpid() == gettid();
    return isMain;
}

void HoldInterrupts() {
    if (!OnMainThread() || holding || !ProgramHandlesInterrupts()) {
        return;
    }
    sigset_t interrupt;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    if (pthread_sigmask(SIG_BLOCK, &interrupt, &waitMask) == 0) {
        sigdelset(&waitMask, SIGINT);
        holding = true;
    }
}

const sigset_t* WaitMask() {
    return OnMainThread() && holding ? &waitMask : nullptr;
}

void InterruptsWereLetThrough() {
    if (WaitMask() != nullptr) {
        lastLetThrough = MonotonicNow();
    }
}

void LetInterruptsThroughIfStarved() {
    if (WaitMask() == nullptr || MonotonicNow() - lastLetThrough < kLongestBusyTime) {
        return;
    }
    InterruptsWereLetThrough();
    sigset_t pending;
    sigset_t held;
    if (sigpending(&pending) == 0 && sigismember(&pending, SIGINT) == 1 &&
        pthread_sigmask(SIG_SETMASK, &waitMask, &held) == 0) {
        pthread_sigmask(SIG_SETMASK, &held, nullptr);
    }
}

}  // namespace run_loop
