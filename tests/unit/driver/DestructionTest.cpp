// What the destructor cleans up and what it deliberately leaves.

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/LeakAllowance.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/VirtualSlot.h"
#include "tests/unit/driver/ReleaseWatch.h"
#include "tests/unit/driver/TickedDriver.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
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
    test_support::SessionFixture session_;
    test_support::ScriptedDesktop desktop_{SceneWithController()};
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
    EXPECT_THAT(session_.Files(), Contains(HasSubstr("KRT9Background")));
    delete driver_;
    EXPECT_THAT(session_.Files(), Not(Contains(HasSubstr("KRT9Background"))));
}

TEST_F(Destruction, TakesTheSourceOfTheLocalPortOutOfTheRunLoop) {
    const test_support::OwnedObject<CFRunLoopSourceRef> source(static_cast<CFRunLoopSourceRef>(
        const_cast<void*>(CFRetain(DriverInspector::RunLoopSource(*driver_)))));
    delete driver_;
    EXPECT_FALSE(CFRunLoopSourceIsValid(source));
    EXPECT_FALSE(CFRunLoopContainsSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode));
}

// Reads the driver's fields whenever an object that it owns is released, which is before the fields
// themselves are gone.
TEST_F(Destruction, SignsOutOfMIDIAfterTheRemotePortIsGoneAndBeforeTheEventSourceIs) {
    MIDIObjectRef(&spare)[2] = DriverInspector::SpareMIDIReferences(*driver_);
    spare[0] = spare[1] = 7;
    ASSERT_NE(DriverInspector::MIDIClient(*driver_), 0u);
    ASSERT_TRUE(DriverInspector::Connected(*driver_));

    std::vector<std::string> steps;
    const ReleaseWatch watch([&](CFTypeRef object) {
        const CFTypeID type = CFGetTypeID(object);
        std::string step;
        if (type == CFMessagePortGetTypeID()) {
            step = "port";
        } else if (type == CGEventSourceGetTypeID()) {
            step = "event source";
        } else if (type == CFDictionaryGetTypeID()) {
            step = "element cache";
        } else {
            return;
        }
        const bool ticks = DriverInspector::TimeoutTimer(*driver_) != nullptr;
        const bool signedIn = DriverInspector::MIDIClient(*driver_) != 0 && spare[0] == 7 &&
                              spare[1] == 7 && DriverInspector::Connected(*driver_);
        const bool signedOut = DriverInspector::MIDIClient(*driver_) == 0 && spare[0] == 0 &&
                               spare[1] == 0 && !DriverInspector::Connected(*driver_);
        steps.push_back(step + (ticks ? ", ticking" : "") + (signedIn ? ", signed in" : "") +
                        (signedOut ? ", signed out" : ""));
    });
    delete driver_;
    EXPECT_THAT(steps, ElementsAre("port, signed in", "event source, signed out",
                                   "element cache, signed out", "port, signed out"));
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
        new DerivedDriver;
        destroyed = false;
        Interrupt(signalNumber);
    }

    // What is registered with atexit is run by exit, not by _exit.
    static void Interrupt(int signalNumber) {
        std::atexit([] { std::fputs(destroyed ? "destroyed, then exit" : "exit", stderr); });
        CVEK_UserSpaceDriver::SignalHandler(signalNumber);
    }

    test_support::SessionFixture session_;
};

TEST_F(InterruptDeathTest, DeletesTheDriverAndExitsWithStatusZeroWhateverTheSignal) {
    for (const int signalNumber : {SIGINT, SIGTERM, 0, -1}) {
        EXPECT_EXIT(InterruptADriver(signalNumber), testing::ExitedWithCode(0),
                    "destroyed, then exit");
        EXPECT_TRUE(session_.Files().empty()) << "the port's name is gone with the driver";
    }
}

TEST_F(InterruptDeathTest, WithoutADriverExitsWithStatusZero) {
    ASSERT_EQ(CVEK_UserSpaceDriver::sSelf, nullptr);
    destroyed = false;
    EXPECT_EXIT(Interrupt(SIGINT), testing::ExitedWithCode(0), "^exit");
}

TEST(MessageCallbackWithoutDriver, AnswersNothing) {
    ASSERT_EQ(CVEK_UserSpaceDriver::sSelf, nullptr);
    EXPECT_EQ(CVEK_UserSpaceDriver::MessageCallbackEntry(nullptr, kJGlM, nullptr, nullptr),
              nullptr);
}

}  // namespace
