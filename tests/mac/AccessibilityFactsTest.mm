// Accessibility, events and activation on macOS, where their documentation leaves room. The other
// application is the stand-in for the editor.
#import <AppKit/AppKit.h>

#include <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <optional>
#include <thread>

#include "tests/mac/Finding.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/Paths.h"
#include "tests/support/RunLoop.h"

using mac_test::ExpectAsInLayer;
using test_support::ChildProcess;
using test_support::OwnedObject;

namespace {

const std::string kStandIn = KRT9_BINARIES "/StandInEditor.app/Contents/MacOS/StandInEditor";

double SecondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class EditorOnMac : public testing::Test {
  protected:
    void SetUp() override {
        if (!AXIsProcessTrustedWithOptions(nullptr)) {
            GTEST_SKIP() << "needs the accessibility permission: System Settings, Privacy & "
                            "Security, Accessibility, for the application that runs this test";
        }
        ASSERT_TRUE(standIn_.emplace(kStandIn).WaitForOutput("ready", 20)) << standIn_->Output();
    }

    OwnedObject<AXUIElementRef> Application() {
        return AXUIElementCreateApplication(standIn_->pid());
    }
    ChildProcess& StandIn() { return *standIn_; }

  private:
    std::optional<ChildProcess> standIn_;
};

struct HungCall {
    AXError error;
    double seconds;
};

// One call to a stopped application. A time-out of 0 keeps the system's own.
HungCall CallHung(ChildProcess& program, AXUIElementRef application, float timeout) {
    AXUIElementSetMessagingTimeout(application, timeout);
    program.Signal(SIGSTOP);
    HungCall call = {};
    call.seconds = SecondsOf([&] {
        OwnedObject<CFTypeRef> value;
        call.error = AXUIElementCopyAttributeValue(application, kAXWindowsAttribute, value.Out());
    });
    program.Signal(SIGCONT);
    return call;
}

}  // namespace

TEST_F(EditorOnMac, MissingAttributesOfAMultipleRead) {
    const void* names[] = {kAXRoleAttribute, CFSTR("AXNoSuchAttribute")};
    const OwnedObject<CFArrayRef> attributes(
        CFArrayCreate(nullptr, names, 2, &kCFTypeArrayCallBacks));
    OwnedObject<CFArrayRef> values;
    const OwnedObject<AXUIElementRef> application = Application();
    ASSERT_EQ(
        AXUIElementCopyMultipleAttributeValues(
            application, attributes, static_cast<AXCopyMultipleAttributeOptions>(0), values.Out()),
        kAXErrorSuccess);
    ASSERT_EQ(CFArrayGetCount(values), 2);
    const CFTypeRef missing = CFArrayGetValueAtIndex(values, 1);
    const OwnedObject<CFStringRef> description(CFCopyDescription(missing));
    mac_test::Report("what stands in the place of a missing attribute",
                     [(NSString*)description.get() UTF8String]);
    ExpectAsInLayer("is it an AXValue of an error",
                    CFGetTypeID(missing) == AXValueGetTypeID() &&
                        AXValueGetType(static_cast<AXValueRef>(missing)) == kAXValueTypeAXError,
                    true);
}

TEST_F(EditorOnMac, HungApplicationCostsOneTimeOut) {
    const OwnedObject<AXUIElementRef> application = Application();
    const HungCall systems = CallHung(StandIn(), application, 0);
    mac_test::Report(
        "a call to a hung application, with the system's own time-out",
        std::to_string(systems.error) + " after " + std::to_string(systems.seconds) + " seconds");
    EXPECT_EQ(systems.error, kAXErrorCannotComplete);
    const HungCall drivers = CallHung(StandIn(), application, 6);
    EXPECT_EQ(drivers.error, kAXErrorCannotComplete);
    EXPECT_NEAR(drivers.seconds, 6, 0.5) << "the time-out that the driver sets";
}

TEST_F(EditorOnMac, ATimeOutOfOurOwnHoldsForTheApplicationsElement) {
    const OwnedObject<AXUIElementRef> application = Application();
    const HungCall call = CallHung(StandIn(), application, 0.5F);
    EXPECT_EQ(call.error, kAXErrorCannotComplete);
    ExpectAsInLayer("does a time-out of half a second last about that",
                    call.seconds > 0.3 && call.seconds < 1.5, true);
}

using EventsOnMac = EditorOnMac;

TEST_F(EventsOnMac, ReportsWhetherPrivateKeysAreInherited) {
    constexpr CGKeyCode kShift = 56;
    const auto sessionFlags = [] {
        return CGEventSourceFlagsState(kCGEventSourceStateCombinedSessionState) &
               kCGEventFlagMaskShift;
    };
    if (sessionFlags() != 0) {
        GTEST_SKIP() << "needs a keyboard on which nobody holds Shift";
    }
    const OwnedObject<CGEventSourceRef> source(CGEventSourceCreate(kCGEventSourceStatePrivate));
    const auto post = [&source](bool down) {
        const OwnedObject<CGEventRef> event(CGEventCreateKeyboardEvent(source, kShift, down));
        CGEventSetFlags(event, down ? kCGEventFlagMaskShift : static_cast<CGEventFlags>(0));
        CGEventPost(kCGHIDEventTap, event);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    };
    post(true);
    const bool inherited = sessionFlags() != 0;
    const bool isTold = CGEventSourceKeyState(kCGEventSourceStateCombinedSessionState, kShift);
    post(false);
    mac_test::Report("does the session's state tell that a key of a private source is down",
                     isTold ? "yes, as in the layer" : "no");
    mac_test::Report("do keys of a private source count as held for later events",
                     inherited ? "yes, as in the layer" : "no");
}

TEST_F(EditorOnMac, FollowsAnActivation) {
    @autoreleasepool {
        NSWorkspace* workspace = [NSWorkspace sharedWorkspace];
        const pid_t before = [[workspace frontmostApplication] processIdentifier];
        ChildProcess other(kStandIn);
        ASSERT_TRUE(other.WaitForOutput("ready", 20));
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const bool changed = [[workspace frontmostApplication] processIdentifier] != before;
        const double seconds = SecondsOf([&] {
            test_support::RunLoopUntil(
                [&] { return [[workspace frontmostApplication] processIdentifier] == other.pid(); },
                5);
        });
        mac_test::Report("seconds of the run loop until another activation is seen",
                         std::to_string(seconds));
        ExpectAsInLayer("does frontmostApplication change while the run loop does not run", changed,
                        false);
        EXPECT_EQ([[workspace frontmostApplication] processIdentifier], other.pid());
    }
}
