// What the reference scenarios do not ask.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/TestClock.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

using testing::ElementsAre;

TEST(TestClock, WaitingMovesItToTheNextTimerAndToTheDeadline) {
    Scene scene;
    std::vector<double> times;
    scene.AddTimer(3600, 3600, [&] { times.push_back(scene.Time()); });
    scene.Run(3 * 3600 + 60);
    EXPECT_THAT(times, ElementsAre(3600, 7200, 10800));
    EXPECT_EQ(scene.Time(), 3 * 3600 + 60);
}

TEST(TestClock, AdvancingCallsNothingUntilTheLoopRuns) {
    platform_testing::TestClock clock(1000);
    EXPECT_EQ(CFAbsoluteTimeGetCurrent(), 1000);
    clock.Advance(0.5);
    EXPECT_EQ(CFAbsoluteTimeGetCurrent(), 1000.5);
    clock.Advance(-7);
    EXPECT_EQ(CFAbsoluteTimeGetCurrent(), 1000.5) << "time does not run backwards";
}

TEST(TestClock, StepsThroughTicksOneByOne) {
    Scene scene;
    int ticks = 0;
    scene.AddTimer(0.1, 0.1, [&] { ++ticks; });
    for (int tick = 1; tick <= 20; ++tick) {
        scene.Spend(0.1);
        scene.Run(0);
        EXPECT_EQ(ticks, tick);
    }
}

TEST(RealClock, IsTheSystemsOwn) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    EXPECT_EQ(kCFAbsoluteTimeIntervalSince1970, 978307200.0);
    EXPECT_NEAR(CFAbsoluteTimeGetCurrent() + kCFAbsoluteTimeIntervalSince1970,
                static_cast<double>(now.tv_sec), 10);
}

TEST(RunLoopTimer, BelongsToOneLoop) {
    Scene scene;
    const auto timer = scene.AddTimer(10, 0, [] {});
    std::thread([&] {
        CFRunLoopAddTimer(CFRunLoopGetCurrent(), timer, kCFRunLoopDefaultMode);
        EXPECT_FALSE(CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer, kCFRunLoopDefaultMode));
    }).join();
    EXPECT_TRUE(CFRunLoopContainsTimer(scene.Loop(), timer, kCFRunLoopDefaultMode));
}

TEST(RunLoopTimer, RemovedByAnEarlierOneOfTheSamePassDoesNotFire) {
    Scene scene;
    int fires = 0;
    const auto later = scene.MakeTimer(0.1, 0.1, [&] { ++fires; });
    scene.AddTimer(0.05, 0,
                   [&] { CFRunLoopRemoveTimer(scene.Loop(), later, kCFRunLoopDefaultMode); });
    CFRunLoopAddTimer(scene.Loop(), later, kCFRunLoopDefaultMode);
    scene.Spend(0.2);
    scene.Run(0.5);
    EXPECT_EQ(fires, 0);
}

TEST(RunLoopTimer, MayReleaseItselfInItsCallback) {
    Scene scene;
    CFRunLoopTimerRef timer = nullptr;
    bool fired = false;
    timer = scene.MakeTimerForCaller(0.1, 0.1, [&] {
        CFRunLoopTimerInvalidate(timer);
        CFRelease(timer);
        fired = true;
    });
    CFRunLoopAddTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    scene.Run(1);
    EXPECT_TRUE(fired);
}

TEST(RunLoopTimer, VeryShortAndVeryLongIntervalsAreKept) {
    Scene scene;
    int fires = 0;
    scene.AddTimer(1e18, 1e18, [&] { ++fires; });
    CFRunLoopTimerRef shortest = nullptr;
    int shortFires = 0;
    shortest = scene.AddTimer(0, 1e-12, [&] {
        if (++shortFires == 5) {
            CFRunLoopTimerInvalidate(shortest);
        }
    });
    EXPECT_EQ(CFRunLoopTimerGetInterval(shortest), 1e-12);
    scene.Run(1);
    EXPECT_EQ(fires, 0);
    EXPECT_EQ(shortFires, 5);
}

TEST(RunLoopTimer, IntervalThatIsNoNumberStopsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(CFRunLoopTimerCreate(
                     nullptr, 0, __builtin_nan(""), 0, 0, [](CFRunLoopTimerRef, void*) {}, nullptr),
                 "CFRunLoopTimerCreate: the interval is not a number");
}

TEST(RunLoopRun, FinishesAtOnceWithoutAMode) {
    EXPECT_EQ(CFRunLoopRunInMode(nullptr, 1, false), kCFRunLoopRunFinished);
    EXPECT_EQ(CFRunLoopRunInMode(CFSTR("never heard of"), 1, false), kCFRunLoopRunFinished);
}

TEST(RunLoopRun, ModeIsNamedByItsTextAlone) {
    Scene scene;
    int performs = 0;
    const CFMutableStringRef same = CFStringCreateMutable(nullptr, 0);
    CFStringReplaceAll(same, scene.Custom());
    CFRunLoopSourceSignal(scene.AddSource([&] { ++performs; }, same));
    CFStringReplaceAll(same, CFSTR("changed"));
    EXPECT_EQ(scene.Run(1, true, scene.Custom()), kCFRunLoopRunHandledSource);
    CFRelease(same);
}

TEST(RunLoopException, OfCPlusPlusLeavesTheLoopInOrder) {
    Scene scene;
    int fires = 0;
    const auto timer = scene.AddTimer(0.1, 0.1, [&] {
        if (++fires == 1) {
            throw std::runtime_error("from a timer");
        }
    });
    const auto source = scene.AddSource([] { throw std::logic_error("from a source"); });
    EXPECT_THROW(scene.Run(1), std::runtime_error);
    EXPECT_EQ(CFRunLoopCopyCurrentMode(scene.Loop()), nullptr);
    EXPECT_TRUE(CFRunLoopTimerIsValid(timer));
    CFRunLoopSourceSignal(source);
    EXPECT_THROW(scene.Run(1), std::logic_error);
    EXPECT_EQ(CFRunLoopCopyCurrentMode(scene.Loop()), nullptr);
    EXPECT_EQ(scene.Run(0.35), kCFRunLoopRunTimedOut);
    EXPECT_EQ(fires, 4);
}

TEST(RunLoopException, OfAOneShotTimerStillEndsTheTimer) {
    Scene scene;
    const auto timer = scene.AddTimer(0.1, 0, [] { throw std::runtime_error("from a timer"); });
    EXPECT_THROW(scene.Run(1), std::runtime_error);
    EXPECT_FALSE(CFRunLoopTimerIsValid(timer));
}

TEST(RunLoopThreads, SourcesAndTimersAreAddedToALoopThatWaits) {
    Scene scene(Scene::Clock::real);
    scene.AddIdleSource();
    std::atomic<int> calls = 0;
    std::thread other([&] {
        while (!CFRunLoopIsWaiting(scene.Loop())) {
            std::this_thread::yield();
        }
        scene.AddTimer(0, 0, [&] {
            ++calls;
            const auto source = scene.AddSource([&] {
                ++calls;
                CFRunLoopStop(scene.Loop());
            });
            CFRunLoopSourceSignal(source);
        });
    });
    EXPECT_EQ(scene.Run(10), kCFRunLoopRunStopped);
    other.join();
    EXPECT_EQ(calls, 2);
}

TEST(RunLoopThreads, ManyThreadsMayAddRemoveSignalWakeAndStop) {
    Scene scene(Scene::Clock::real);
    scene.AddIdleSource();
    std::atomic<bool> over = false;
    std::vector<std::thread> threads;
    const auto hammer = [&] {
        CFRunLoopSourceContext context{};
        context.perform = [](void*) {};
        for (int i = 0; i < 300; ++i) {
            const auto source = CFRunLoopSourceCreate(nullptr, i % 3, &context);
            const auto timer = CFRunLoopTimerCreate(
                nullptr, CFAbsoluteTimeGetCurrent(), i % 2 ? 0.0001 : 0, 0, 0,
                [](CFRunLoopTimerRef, void*) {}, nullptr);
            CFRunLoopAddSource(scene.Loop(), source, kCFRunLoopCommonModes);
            CFRunLoopAddTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
            CFRunLoopSourceSignal(source);
            CFRunLoopWakeUp(scene.Loop());
            CFRunLoopStop(scene.Loop());
            if (i % 2 == 0) {
                CFRunLoopRemoveSource(scene.Loop(), source, kCFRunLoopCommonModes);
                CFRunLoopRemoveTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
            }
            CFRunLoopSourceInvalidate(source);
            CFRunLoopTimerInvalidate(timer);
            CFRelease(source);
            CFRelease(timer);
        }
    };
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back(hammer);
    }
    std::thread ender([&] {
        for (auto& thread : threads) {
            thread.join();
        }
        over = true;
        CFRunLoopStop(scene.Loop());
        CFRunLoopWakeUp(scene.Loop());
    });
    while (!over) {
        scene.Run(0.05);
    }
    ender.join();
    EXPECT_EQ(scene.Run(0), kCFRunLoopRunTimedOut);
}

TEST(RunLoopThreads, LoopEndsWithItsThread) {
    CFRunLoopSourceContext context{};
    static std::vector<std::string> calls;
    context.cancel = [](void*, CFRunLoopRef, CFRunLoopMode) { calls.push_back("cancel"); };
    const auto source = CFRunLoopSourceCreate(nullptr, 0, &context);
    std::thread([&] {
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
    }).join();
    EXPECT_THAT(calls, ElementsAre("cancel"));
    EXPECT_TRUE(CFRunLoopSourceIsValid(source));
    EXPECT_EQ(CFGetRetainCount(source), 1);
    CFRelease(source);
}

TEST(RunLoopObjects, LeaveNothingBehind) {
    EXPECT_EQ(platform_testing::LeftOverBy([] {
                  Scene scene;
                  scene.AddTimer(0.1, 0.1, [] {});
                  CFRunLoopSourceSignal(scene.AddSource([] {}));
                  scene.Run(0.5);
              }),
              "");
}

}  // namespace
}  // namespace run_loop_test
