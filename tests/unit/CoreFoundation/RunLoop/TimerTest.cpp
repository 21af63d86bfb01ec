// Timers beyond the reference scenarios: contexts, odd dates, and callbacks that run the loop.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

using testing::ElementsAre;

std::vector<std::string> events;

TEST(TimerContext, InfoIsRetainedForTheTimerAndAroundItsCallback) {
    events.clear();
    Scene scene;
    CFRunLoopTimerContext context{};
    context.retain = [](const void* info) {
        events.push_back("retain");
        return info;
    };
    context.release = [](const void*) { events.push_back("release"); };
    const auto timer = CFRunLoopTimerCreate(
        nullptr, CFAbsoluteTimeGetCurrent() + 0.1, 0.1, 0, 0,
        [](CFRunLoopTimerRef fired, void*) {
            CFRunLoopTimerInvalidate(fired);
            events.push_back("callback's end");
        },
        &context);
    CFRunLoopAddTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    scene.Run(1);
    EXPECT_THAT(events, ElementsAre("retain", "retain", "release", "callback's end", "release"));
    CFRelease(timer);
}

TEST(TimerContext, InfoIsReleasedOnceHoweverOftenTheTimerIsInvalidated) {
    events.clear();
    CFRunLoopTimerContext context{};
    context.release = [](const void*) { events.push_back("release"); };
    const auto timer = CFRunLoopTimerCreate(
        nullptr, CFAbsoluteTimeGetCurrent() + 10, 0, 0, 0, [](CFRunLoopTimerRef, void*) {},
        &context);
    CFRunLoopTimerInvalidate(timer);
    CFRunLoopTimerInvalidate(timer);
    CFRelease(timer);
    EXPECT_THAT(events, ElementsAre("release"));
}

TEST(TimerDate, OfAnInvalidTimerIsZero) {
    Scene scene;
    scene.Spend(5);
    const auto timer = scene.MakeTimer(10, 0, [] {});
    EXPECT_EQ(CFRunLoopTimerGetNextFireDate(timer), CFAbsoluteTimeGetCurrent() + 10);
    CFRunLoopTimerInvalidate(timer);
    EXPECT_EQ(CFRunLoopTimerGetNextFireDate(timer), 0);
}

TEST(TimerDate, ThatIsNoNumberMeansNow) {
    Scene scene;
    double fired = -1;
    scene.AddTimer(__builtin_nan(""), 0, [&] { fired = scene.Time(); });
    scene.Run(1);
    EXPECT_EQ(fired, 0);
}

TEST(TimerDate, BeyondWhatTheClockCountsNeverComes) {
    Scene scene;
    int fires = 0;
    scene.Spend(4e9);
    scene.Spend(4e9);
    scene.AddTimer(4e9, 4e9, [&] { ++fires; });
    EXPECT_EQ(scene.Run(1), kCFRunLoopRunTimedOut);
    EXPECT_EQ(fires, 0);
}

TEST(TimerNesting, OneThatAnEarlierOnesCallbackLetFireDoesNotFireAgain) {
    Scene scene;
    std::vector<double> times;
    scene.AddTimer(0.05, 0, [&] {
        scene.Run(0);
        EXPECT_EQ(times.size(), 1U) << "the later timer was due in the nested run";
    });
    scene.AddTimer(0.1, 1, [&] { times.push_back(scene.Time()); });
    scene.Spend(0.2);
    scene.Run(0.1);
    EXPECT_THAT(times, ElementsAre(0.2));
}

TEST(RunLoopRun, ReturnsWhenItsLastTimerIsOver) {
    int fires = 0;
    std::thread([&] {
        Scene scene;
        scene.AddTimer(0.1, 0, [&] { ++fires; });
        CFRunLoopRun();
    }).join();
    EXPECT_EQ(fires, 1);
}

}  // namespace
}  // namespace run_loop_test
