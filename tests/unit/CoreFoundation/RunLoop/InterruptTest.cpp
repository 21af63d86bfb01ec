// SIGINT reaches the main thread only where its run loop waits. Each case is a program of its own,
// since what a run loop once holds back it holds back for good.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <optional>

#include "tests/support/SessionFixture.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

volatile std::sig_atomic_t interrupts = 0;

void CountInterrupt(int) {
    interrupts = interrupts + 1;
}

// Does the work in a new program, after installing the handler there, and expects its answer to be
// 0.
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

TEST(Interrupt, IsHeldBackAsSoonAsTheMainThreadHasARunLoop) {
    ExpectZeroFrom([] {
        raise(SIGINT);
        if (interrupts != 1) {
            return 1;
        }
        CFRunLoopGetCurrent();
        raise(SIGINT);
        return interrupts == 1 ? 0 : 2;
    });
}

TEST(Interrupt, IsDeliveredWhileTheLoopWaitsAndNotBefore) {
    ExpectZeroFrom([] {
        Scene scene(Scene::Clock::real);
        bool early = false;
        scene.AddTimer(0.001, 0, [&] {
            raise(SIGINT);
            early = interrupts != 0;
        });
        scene.Run(0.01);
        return early ? 1 : interrupts == 1 ? 0 : 2;
    });
}

TEST(Interrupt, IsDeliveredInANestedWait) {
    ExpectZeroFrom([] {
        Scene scene(Scene::Clock::real);
        bool delivered = false;
        scene.AddTimer(0.001, 0, [&] {
            raise(SIGINT);
            scene.AddIdleSource(scene.Custom());
            scene.Run(0.005, false, scene.Custom());
            delivered = interrupts == 1;
        });
        scene.Run(0.02);
        return delivered ? 0 : 1;
    });
}

TEST(Interrupt, IsDeliveredToALoopThatIsNeverIdle) {
    ExpectZeroFrom([] {
        Scene scene(Scene::Clock::real);
        CFRunLoopSourceRef source = nullptr;
        source = scene.AddSource([&] { CFRunLoopSourceSignal(source); });
        CFRunLoopSourceSignal(source);
        CFRunLoopGetCurrent();
        raise(SIGINT);
        const double start = CFAbsoluteTimeGetCurrent();
        while (interrupts == 0 && CFAbsoluteTimeGetCurrent() - start < 10) {
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
        }
        return interrupts == 1 ? 0 : 1;
    });
}

TEST(Interrupt, HandlerThatWasInstalledLateIsHeldBackFromTheNextRunOn) {
    ExpectZeroFrom(
        [] {
            CFRunLoopGetCurrent();
            std::signal(SIGINT, CountInterrupt);
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
            raise(SIGINT);
            return interrupts == 0 ? 0 : 1;
        },
        SIG_DFL);
}

TEST(Interrupt, EndsAProcessThatDoesNotHandleIt) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            std::signal(SIGINT, SIG_DFL);
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
            raise(SIGINT);
            _exit(1);
        },
        testing::KilledBySignal(SIGINT), "");
}

CFMessagePortRef servedPort = nullptr;
CFRunLoopTimerRef runningTimer = nullptr;

// What the driver does in its handler: gives everything up, from within the wait, and exits.
void GiveEverythingUp(int) {
    CFRunLoopRemoveTimer(CFRunLoopGetCurrent(), runningTimer, kCFRunLoopDefaultMode);
    CFMessagePortInvalidate(servedPort);
    CFRelease(servedPort);
    std::exit(0);
}

TEST(Interrupt, HandlerMayGiveEverythingUpAndExit) {
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
                nullptr, CFAbsoluteTimeGetCurrent(), 0.001, 0, 0,
                [](CFRunLoopTimerRef, void*) { raise(SIGINT); }, nullptr);
            CFRunLoopAddTimer(CFRunLoopGetCurrent(), runningTimer, kCFRunLoopDefaultMode);
            CFRunLoopRun();
            return 1;
        },
        GiveEverythingUp);
    EXPECT_TRUE(session->Files().empty()) << "the port's socket was left behind";
}

}  // namespace
}  // namespace run_loop_test
