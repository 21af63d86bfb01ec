// SIGINT reaches the process only where its run loop waits and nothing is in progress. Each case is
// a separate program: what is blocked once stays blocked.

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "driver/Interrupts.h"
#include "tests/support/SessionFixture.h"

namespace {

volatile std::sig_atomic_t interrupts = 0;

void CountInterrupt(int) {
    interrupts = interrupts + 1;
}

class InterruptsDeathTest : public testing::Test {
  protected:
    InterruptsDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    // Does the work in a new program whose main begins like the driver's, and expects 0 of it.
    static void ExpectZeroFrom(const std::function<int()>& work) {
        EXPECT_EXIT(
            {
                alarm(20);
                std::signal(SIGINT, CountInterrupt);
                AllowInterruptsOnlyWhileWaiting();
                _exit(work());
            },
            testing::ExitedWithCode(0), "");
    }

    static CFRunLoopTimerRef AddTimer(double after, double interval,
                                      CFRunLoopTimerCallBack callback) {
        CFRunLoopTimerRef timer =
            CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + after, interval,
                                 0, 0, callback, nullptr);
        CFRunLoopAddTimer(CFRunLoopGetCurrent(), timer, kCFRunLoopDefaultMode);
        return timer;
    }

    static bool IsBlocked() {
        sigset_t mask;
        pthread_sigmask(SIG_BLOCK, nullptr, &mask);
        return sigismember(&mask, SIGINT) == 1;
    }

    static void Run(double seconds) { CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds, false); }

    // Its runs do not end with the first source that they handle, as the driver's do not. Without a
    // time limit, since the machine may be slow: the program's alarm is the limit.
    static void RunUntil(const std::function<bool()>& done) {
        while (!done()) {
            Run(0.01);
        }
    }
    static bool Interrupted() { return interrupts != 0; }
};

TEST_F(InterruptsDeathTest, IsBlockedBeforeTheLoopRuns) {
    ExpectZeroFrom([] {
        raise(SIGINT);
        return IsBlocked() && interrupts == 0 ? 0 : 1;
    });
}

TEST_F(InterruptsDeathTest, ThatCameBeforeTheLoopRanIsDeliveredByItsFirstWait) {
    ExpectZeroFrom([] {
        raise(SIGINT);
        RunUntil(Interrupted);
        return interrupts == 1 ? 0 : 1;
    });
}

TEST_F(InterruptsDeathTest, DuringACallbackIsDeliveredOnceItHasReturned) {
    ExpectZeroFrom([] {
        static bool held = false;
        AddTimer(0.001, 0, [](CFRunLoopTimerRef, void*) {
            raise(SIGINT);
            held = interrupts == 0;
        });
        RunUntil(Interrupted);
        return held && interrupts == 1 ? 0 : 1;
    });
}

TEST_F(InterruptsDeathTest, IsNotDeliveredByARunInsideACallback) {
    ExpectZeroFrom([] {
        static bool held = false;
        AddTimer(1, 0, [](CFRunLoopTimerRef, void*) {});
        AddTimer(0.001, 0, [](CFRunLoopTimerRef, void*) {
            raise(SIGINT);
            Run(0.01);
            held = interrupts == 0 && IsBlocked();
        });
        RunUntil(Interrupted);
        return held && interrupts == 1 ? 0 : 1;
    });
}

TEST_F(InterruptsDeathTest, IsBlockedAgainOnceTheLoopHasWaited) {
    ExpectZeroFrom([] {
        static int fires = 0;
        static bool blocked = true;
        AddTimer(0.001, 0.001, [](CFRunLoopTimerRef, void*) {
            ++fires;
            blocked = blocked && IsBlocked();
        });
        RunUntil([] { return fires > 2; });
        return blocked && IsBlocked() ? 0 : 1;
    });
}

// Other observers may do work that must not be interrupted.
TEST_F(InterruptsDeathTest, IsBlockedWhileOtherObserversAreTold) {
    ExpectZeroFrom([] {
        static int told = 0;
        static bool blocked = true;
        for (const CFIndex order : {-1000, 0, 1000}) {
            CFRunLoopAddObserver(CFRunLoopGetCurrent(),
                                 CFRunLoopObserverCreate(
                                     kCFAllocatorDefault, kCFRunLoopAllActivities, true, order,
                                     [](CFRunLoopObserverRef, CFRunLoopActivity, void*) {
                                         ++told;
                                         blocked = blocked && IsBlocked();
                                     },
                                     nullptr),
                                 kCFRunLoopCommonModes);
        }
        AddTimer(0.001, 0.001, [](CFRunLoopTimerRef, void*) {});
        RunUntil([] { return told > 50; });
        return blocked ? 0 : 1;
    });
}

// Every callback takes longer than the timer's interval, so that no wait ever lasts.
TEST_F(InterruptsDeathTest, IsDeliveredToALoopThatIsNeverIdle) {
    ExpectZeroFrom([] {
        AddTimer(0.0001, 0.0001, [](CFRunLoopTimerRef, void*) { usleep(1000); });
        raise(SIGINT);
        RunUntil(Interrupted);
        return interrupts == 1 ? 0 : 1;
    });
}

CFMessagePortRef client = nullptr;

// The next message is in the queue before this one is done.
CFDataRef SendTheNext(CFMessagePortRef, SInt32, CFDataRef, void*) {
    CFMessagePortSendRequest(client, 0, nullptr, 1, 0, nullptr, nullptr);
    return nullptr;
}

TEST_F(InterruptsDeathTest, IsDeliveredToALoopThatIsNeverIdleForItsRequests) {
    ExpectZeroFrom([] {
        const test_support::SessionFixture session;
        const CFMessagePortRef served = CFMessagePortCreateLocal(
            kCFAllocatorDefault, CFSTR("served"), SendTheNext, nullptr, nullptr);
        CFRunLoopAddSource(CFRunLoopGetCurrent(),
                           CFMessagePortCreateRunLoopSource(kCFAllocatorDefault, served, 0),
                           kCFRunLoopCommonModes);
        client = CFMessagePortCreateRemote(kCFAllocatorDefault, CFSTR("served"));
        SendTheNext(nullptr, 0, nullptr, nullptr);
        raise(SIGINT);
        RunUntil(Interrupted);
        return interrupts == 1 ? 0 : 1;
    });
}

TEST_F(InterruptsDeathTest, ThatTheParentBlockedIsDeliveredAllTheSame) {
    sigset_t interrupt;
    sigset_t before;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    pthread_sigmask(SIG_BLOCK, &interrupt, &before);
    ExpectZeroFrom([] {
        raise(SIGINT);
        RunUntil(Interrupted);
        return interrupts == 1 ? 0 : 1;
    });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace
