// What the destructor takes away and what it deliberately leaves.

#include <algorithm>
#include <csignal>
#include <memory>

#include "tests/support/LeakAllowance.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/VirtualSlot.h"
#include "tests/unit/driver/DriverTest.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

bool destroyed;

// Destroyed only by a destructor that is virtual.
class DerivedDriver : public CVEK_UserSpaceDriver {
  public:
    ~DerivedDriver() override { destroyed = true; }
};

class Destruction : public testing::Test {
  protected:
    Destruction() { destroyed = false; }
    ~Destruction() override { CVEK_UserSpaceDriver::sSelf = nullptr; }

    platform_testing::AutoreleasePool pool_;
    test_support::InProcessDesktop desktop_{SceneWithController()};
    test_support::Companion companion_;
    CVEK_UserSpaceDriver* driver_ = new DerivedDriver;
    test_support::OwnedObject<CFMutableStringRef> lastTimecode_ =
        DriverInspector::LastTimecode(*driver_);
    test_support::OwnedObject<CFRunLoopTimerRef> timer_ = DriverInspector::TimeoutTimer(*driver_);
};

TEST_F(Destruction, LeavesTheStaticPointerOnPurpose) {
    const void* const address = driver_;
    delete driver_;
    EXPECT_EQ(static_cast<const void*>(CVEK_UserSpaceDriver::sSelf), address);
}

TEST_F(Destruction, LeavesTheLastTimecodeOnPurpose) {
    CFStringReplaceAll(lastTimecode_, CFSTR("01:00:00:00"));
    delete driver_;
    EXPECT_EQ(CFGetRetainCount(lastTimecode_), 1);
    EXPECT_TRUE(CFEqual(lastTimecode_, CFSTR("01:00:00:00")));
}

TEST_F(Destruction, StopsTheTimerAndNeitherInvalidatesNorReleasesIt) {
    EXPECT_TRUE(CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer_, kCFRunLoopDefaultMode));
    delete driver_;
    EXPECT_FALSE(CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer_, kCFRunLoopDefaultMode));
    EXPECT_TRUE(CFRunLoopTimerIsValid(timer_));
    EXPECT_EQ(CFGetRetainCount(timer_), 1);
}

TEST_F(Destruction, FreesTheNameOfTheLocalPort) {
    EXPECT_THAT(desktop_.Session().Files(), Contains(HasSubstr("KRT9Background")));
    delete driver_;
    EXPECT_THAT(desktop_.Session().Files(), Not(Contains(HasSubstr("KRT9Background"))));
}

TEST_F(Destruction, TakesTheSourceOfTheLocalPortOutOfTheRunLoop) {
    const test_support::OwnedObject<CFRunLoopSourceRef> source(static_cast<CFRunLoopSourceRef>(
        const_cast<void*>(CFRetain(DriverInspector::RunLoopSource(*driver_)))));
    delete driver_;
    EXPECT_FALSE(CFRunLoopSourceIsValid(source));
    EXPECT_FALSE(CFRunLoopContainsSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode));
}

TEST_F(Destruction, WithoutRemotePortIsHarmless) {
    delete DriverInspector::RemotePort(*driver_);
    DriverInspector::RemotePort(*driver_) = nullptr;
    delete driver_;
    EXPECT_TRUE(destroyed);
}

TEST_F(Destruction, IsVirtual) {
    delete driver_;
    EXPECT_TRUE(destroyed);
}

TEST(DriverTable, HoldsTheTitleComparisonAndTheSignatureBehindTheTwoDestructors) {
    if (!test_support::VirtualSlot(&CVEK_UserSpaceDriver::MatchWindowTitle)) {
        GTEST_SKIP() << "slots are read out of member pointers as x86-64 lays them out";
    }
    EXPECT_EQ(test_support::VirtualSlot(&CVEK_UserSpaceDriver::MatchWindowTitle), 2);
    EXPECT_EQ(test_support::VirtualSlot(&CVEK_UserSpaceDriver::GetSigFromPSN), 3);
}

class InterruptDeathTest : public testing::Test {
  protected:
    static void InterruptADriver(int signalNumber) {
        const test_support::LeakAllowance processEnds;
        new CVEK_UserSpaceDriver;
        CVEK_UserSpaceDriver::SignalHandler(signalNumber);
    }

    test_support::SessionFixture session_;
};

TEST_F(InterruptDeathTest, DeletesTheDriverAndExitsWithStatusZeroWhateverTheSignal) {
    for (const int signalNumber : {SIGINT, SIGTERM, 0, -1}) {
        EXPECT_EXIT(InterruptADriver(signalNumber), testing::ExitedWithCode(0), "");
        EXPECT_TRUE(session_.Files().empty()) << "the port's name is gone with the driver";
    }
}

TEST_F(InterruptDeathTest, WithoutADriverExitsWithStatusZero) {
    ASSERT_EQ(CVEK_UserSpaceDriver::sSelf, nullptr);
    EXPECT_EXIT(CVEK_UserSpaceDriver::SignalHandler(SIGINT), testing::ExitedWithCode(0), "");
}

TEST(MessageCallbackWithoutDriver, AnswersNothing) {
    ASSERT_EQ(CVEK_UserSpaceDriver::sSelf, nullptr);
    EXPECT_EQ(CVEK_UserSpaceDriver::MessageCallbackEntry(nullptr, kJGlM, nullptr, nullptr),
              nullptr);
}

}  // namespace
