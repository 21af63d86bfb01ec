// A signal is delivered at any instant: the layer holds none back. Each case is a program of its
// own.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <optional>
#include <thread>

#include "tests/support/SessionFixture.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

volatile std::sig_atomic_t interrupts = 0;

void CountInterrupt(int) {
    interrupts = interrupts + 1;
}

// Does the work in a new process, with the handler installed, and expects it to return 0.
void ExpectZeroFrom(const std::function<int()>& work, void (*handler)(int) = CountInterrupt) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            alarm(20);
            std::signal(SIGINT, handler);
            _exit(work());
        },
        testing::ExitedWithCode(0), "");
}

TEST(Interrupt, IsDeliveredInTheMiddleOfACallbackToo) {
    ExpectZeroFrom([] {
        Scene scene(Scene::Clock::real);
        bool atOnce = false;
        scene.AddTimer(0.001, 0, [&] {
            raise(SIGINT);
            atOnce = interrupts == 1;
        });
        while (interrupts == 0) {
            scene.Run(0.01);
        }
        return atOnce ? 0 : 1;
    });
}

// What a program does that must not be interrupted in between: it keeps the signal blocked, and
// unblocks it in observers.
TEST(Interrupt, BlockedIsDeliveredInTheWaitBetweenTwoObservers) {
    ExpectZeroFrom([] {
        sigset_t interrupt;
        sigemptyset(&interrupt);
        sigaddset(&interrupt, SIGINT);
        pthread_sigmask(SIG_BLOCK, &interrupt, nullptr);
        Scene scene(Scene::Clock::real);
        std::thread([] { kill(getpid(), SIGINT); }).join();
        int before = -1;
        scene.AddObserver(kCFRunLoopBeforeWaiting, [&](CFRunLoopActivity) {
            before = before < 0 ? interrupts : before;
            pthread_sigmask(SIG_UNBLOCK, &interrupt, nullptr);
        });
        scene.AddObserver(kCFRunLoopAfterWaiting, [&](CFRunLoopActivity) {
            pthread_sigmask(SIG_BLOCK, &interrupt, nullptr);
        });
        while (interrupts == 0) {
            scene.Run(0.01);
        }
        return before == 0 && interrupts == 1 ? 0 : 1;
    });
}

CFMessagePortRef servedPort = nullptr;
CFRunLoopTimerRef runningTimer = nullptr;

// What the driver does in its handler: gives everything up and exits.
void GiveEverythingUp(int) {
    CFRunLoopRemoveTimer(CFRunLoopGetCurrent(), runningTimer, kCFRunLoopDefaultMode);
    CFMessagePortInvalidate(servedPort);
    CFRelease(servedPort);
    std::exit(0);
}

TEST(Interrupt, HandlerMayGiveEverythingUpInAnObserverAndExit) {
    // The new program works in the session that this one made.
    std::optional<test_support::SessionFixture> session;
    if (std::getenv("KRT9_SESSION_DIR") == nullptr) {
        session.emplace();
    }
    ExpectZeroFrom(
        [] {
            servedPort =
                CFMessagePortCreateLocal(nullptr, CFSTR("port"), nullptr, nullptr, nullptr);
            CFRunLoopAddSource(CFRunLoopGetCurrent(),
                               CFMessagePortCreateRunLoopSource(nullptr, servedPort, 0),
                               kCFRunLoopCommonModes);
            runningTimer = CFRunLoopTimerCreate(
                nullptr, CFAbsoluteTimeGetCurrent(), 0.001, 0, 0, [](CFRunLoopTimerRef, void*) {},
                nullptr);
            CFRunLoopAddTimer(CFRunLoopGetCurrent(), runningTimer, kCFRunLoopDefaultMode);
            CFRunLoopAddObserver(
                CFRunLoopGetCurrent(),
                CFRunLoopObserverCreate(
                    nullptr, kCFRunLoopBeforeWaiting, true, 0,
                    [](CFRunLoopObserverRef, CFRunLoopActivity, void*) { raise(SIGINT); }, nullptr),
                kCFRunLoopCommonModes);
            CFRunLoopRun();
            return 1;
        },
        GiveEverythingUp);
    EXPECT_TRUE(session->Files().empty()) << "the port's socket was left behind";
}

}  // namespace
}  // namespace run_loop_test
