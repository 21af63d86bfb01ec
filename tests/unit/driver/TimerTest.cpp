// When ticks come, and when they do not.

#include <utility>

#include "tests/support/OwnedObject.h"
#include "tests/unit/driver/TickedDriver.h"

namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const auto kOtherMode = CFSTR("KRT9TestMode");

// There is no language tag, so that every tick asks for it: that is how the ticks are counted.
class Timer : public TickedDriver {
  protected:
    Timer() { LanguageTag::Current().text.reset(); }
    ~Timer() override {
        LanguageTag::Current().whenAsked = nullptr;
        driver_->StopTimeoutCounter();
        if (timer_ != nullptr) {
            CFRelease(timer_);
        }
    }

    void Start() {
        driver_->StartTimeoutCounter();
        timer_ = DriverInspector::TimeoutTimer(*driver_);
        start_ = CFAbsoluteTimeGetCurrent();
    }

    // Seconds after the start.
    std::vector<double> Ticks() const {
        std::vector<double> ticks;
        for (const CFAbsoluteTime time : LanguageTag::Current().asked) {
            ticks.push_back(time - start_);
        }
        return ticks;
    }

    CFRunLoopTimerRef timer_ = nullptr;
    CFAbsoluteTime start_ = 0;
};

auto At(double seconds) {
    return DoubleNear(seconds, 1e-6);
}

TEST_F(Timer, FirstTickComesATenthOfASecondAfterTheStart) {
    Start();
    RunLoopFor(0.099);
    EXPECT_THAT(Ticks(), IsEmpty());
    RunLoopFor(0.002);
    EXPECT_THAT(Ticks(), ElementsAre(At(0.1)));
}

TEST_F(Timer, TicksComeEveryTenthOfASecondOnTheGrid) {
    Start();
    RunLoopFor(60.05);
    ASSERT_THAT(Ticks(), SizeIs(600));
    for (int tick = 0; tick < 600; ++tick) {
        ASSERT_THAT(Ticks()[static_cast<std::size_t>(tick)], At(0.1 * (tick + 1)));
    }
}

TEST_F(Timer, LateTickDoesNotMoveTheGridAndTicksMissedAreNotMadeUpFor) {
    Start();
    RunLoopFor(0.101);
    clock_.Advance(0.349);
    RunLoopFor(0.2);
    EXPECT_THAT(Ticks(), ElementsAre(At(0.1), At(0.45), At(0.5), At(0.6)));
}

TEST_F(Timer, IsInTheDefaultModeOnly) {
    Start();
    EXPECT_TRUE(CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer_, kCFRunLoopDefaultMode));
    EXPECT_FALSE(CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer_, kCFRunLoopCommonModes));
    EXPECT_FALSE(CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer_, kOtherMode));
}

TEST_F(Timer, DoesNotFireWhileTheLoopRunsInAnotherModeEvenACommonOne) {
    Start();
    static int otherFired;
    otherFired = 0;
    CFRunLoopTimerRef other = CFRunLoopTimerCreate(
        kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + 0.05, 0.1, 0, 0,
        [](CFRunLoopTimerRef, void*) { ++otherFired; }, nullptr);
    CFRunLoopAddTimer(CFRunLoopGetCurrent(), other, kOtherMode);
    CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), kOtherMode);
    CFRunLoopRunInMode(kOtherMode, 1, false);
    CFRunLoopTimerInvalidate(other);
    CFRelease(other);
    EXPECT_EQ(otherFired, 10) << "the loop ran in the other mode";
    EXPECT_THAT(Ticks(), IsEmpty());
    RunLoopFor(0.05);
    EXPECT_THAT(Ticks(), SizeIs(1)) << "one late tick once the default mode is back";
}

TEST_F(Timer, RequestsAreAnsweredInACommonModeInWhichNoTickComes) {
    Start();
    CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), kOtherMode);
    const test_support::OwnedObject<CFMessagePortRef> port(
        CFMessagePortCreateRemote(kCFAllocatorDefault, CFSTR("KRT9Background")));
    ASSERT_NE(port.get(), nullptr);
    clock_.Advance(1);  // a tick is due
    test_support::OwnedObject<CFDataRef> reply;
    ASSERT_EQ(CFMessagePortSendRequest(port, kJGlM, nullptr, 10, 10, kOtherMode, reply.Out()),
              kCFMessagePortSuccess);
    ASSERT_NE(reply.get(), nullptr);
    EXPECT_EQ(CFDataGetLength(reply), 8);
    EXPECT_THAT(Ticks(), IsEmpty());
    RunLoopFor(0);
    EXPECT_THAT(Ticks(), SizeIs(1)) << "the default mode has it";
}

TEST_F(Timer, StopEndsTheTicksAndNeitherInvalidatesNorReleasesTheTimer) {
    Start();
    RunLoopFor(0.15);
    driver_->StopTimeoutCounter();
    RunLoopFor(1);
    EXPECT_THAT(Ticks(), SizeIs(1));
    EXPECT_EQ(DriverInspector::TimeoutTimer(*driver_), nullptr);
    EXPECT_TRUE(CFRunLoopTimerIsValid(timer_));
    EXPECT_EQ(CFGetRetainCount(timer_), 1);
    EXPECT_FALSE(CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer_, kCFRunLoopDefaultMode));
}

TEST_F(Timer, StopTwiceIsHarmless) {
    Start();
    driver_->StopTimeoutCounter();
    driver_->StopTimeoutCounter();
    EXPECT_EQ(DriverInspector::TimeoutTimer(*driver_), nullptr);
}

TEST_F(Timer, StopInTheMiddleOfATickLetsThatOneGoOnAndIsItsLast) {
    Start();
    DriverInspector::Profile(*driver_) = 0;
    LanguageTag::Current().whenAsked = [this] { driver_->StopTimeoutCounter(); };
    RunLoopFor(1);
    EXPECT_THAT(Ticks(), ElementsAre(At(0.1)));
    EXPECT_EQ(DriverInspector::Profile(*driver_), 4) << "what comes after the language";
    EXPECT_EQ(DriverInspector::TimeoutTimer(*driver_), nullptr);
    EXPECT_EQ(CFGetRetainCount(timer_), 1);
}

TEST_F(Timer, EntryWithoutADriverDoesNothing) {
    CVEK_UserSpaceDriver* const driver = std::exchange(CVEK_UserSpaceDriver::sSelf, nullptr);
    CVEK_UserSpaceDriver::TimeoutCounterEntry(nullptr, nullptr);
    CVEK_UserSpaceDriver::sSelf = driver;
    EXPECT_THAT(Ticks(), IsEmpty());
}

TEST_F(Timer, RunRunsTheCurrentRunLoop) {
    Start();
    CFRunLoopTimerRef end = CFRunLoopTimerCreate(
        kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + 0.35, 0, 0, 0,
        [](CFRunLoopTimerRef, void*) { CFRunLoopStop(CFRunLoopGetCurrent()); }, nullptr);
    CFRunLoopAddTimer(CFRunLoopGetCurrent(), end, kCFRunLoopDefaultMode);
    driver_->Run();
    CFRelease(end);
    EXPECT_THAT(Ticks(), SizeIs(3));
}

}  // namespace
