// When a process counts as hung, and for how long.

#include "accessibility/calls/ApplicationCall.h"
#include "accessibility/calls/ElementAttributes.h"
#include "platform/ApplicationServices/Element.h"
#include "tests/support/CallClock.h"
#include "tests/unit/accessibility/AccessibilityTest.h"

namespace {

using test_support::CallClock;

OwnedReference<AXUIElementRef> ElementOf(pid_t process) {
    return OwnedReference<AXUIElementRef>(AXUIElementCreateApplication(process));
}

class ApplicationCall : public testing::Test {
  protected:
    // A call on an element of the process, with this duration and result; returns whether it was
    // made at all.
    static bool Makes(pid_t process, double seconds, AXError error = kAXErrorCannotComplete) {
        bool made = false;
        const AXError told = CallApplication(ElementOf(process).get(), [&] {
            made = true;
            CallClock::Advance(seconds);
            return error;
        });
        EXPECT_EQ(told, made ? error : kAXErrorCannotComplete);
        return made;
    }

    // Whether the next call on the process is made.
    static bool IsAsked(pid_t process) { return Makes(process, 0, kAXErrorSuccess); }

    CallClock clock_;
};

TEST_F(ApplicationCall, WaitedForToTheEndIsTheLastOnThatProcess) {
    const OneWait wait;
    EXPECT_TRUE(Makes(501, 6));
    EXPECT_FALSE(IsAsked(501));
    EXPECT_FALSE(IsAsked(501));
}

TEST_F(ApplicationCall, WaitedForToTheEndLeavesOtherProcessesAlone) {
    const OneWait wait;
    EXPECT_TRUE(Makes(501, 6));
    EXPECT_TRUE(IsAsked(502));
    EXPECT_TRUE(Makes(502, 6));
    EXPECT_FALSE(IsAsked(501));
    EXPECT_FALSE(IsAsked(502));
    EXPECT_TRUE(IsAsked(503));
}

TEST_F(ApplicationCall, CountsAsWaitedForToTheEndFromNineTenthsOfTheTimeOutOn) {
    const OneWait wait;
    EXPECT_TRUE(Makes(501, 5.39));
    EXPECT_TRUE(IsAsked(501));
    EXPECT_TRUE(Makes(501, 5.41));
    EXPECT_FALSE(IsAsked(501));
}

TEST_F(ApplicationCall, ThatFailsEarlyIsOneOfManyHoweverLongTheyTakeTogether) {
    const OneWait wait;
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(Makes(501, 1)) << i;
    }
}

TEST_F(ApplicationCall, ThatIsAnsweredAtLastIsNoneOfAHungProcess) {
    const OneWait wait;
    for (const AXError error : {kAXErrorSuccess, kAXErrorNoValue, kAXErrorInvalidUIElement}) {
        EXPECT_TRUE(Makes(501, 6, error));
        EXPECT_TRUE(IsAsked(501)) << error;
    }
}

TEST_F(ApplicationCall, IsMeasuredFromItsOwnBeginning) {
    const OneWait wait;
    CallClock::Advance(6);
    EXPECT_TRUE(Makes(501, 0));
    EXPECT_TRUE(IsAsked(501));
}

TEST_F(ApplicationCall, OfTheNextOperationIsMadeAgain) {
    {
        const OneWait wait;
        Makes(501, 6);
    }
    const OneWait wait;
    EXPECT_TRUE(IsAsked(501));
}

TEST_F(ApplicationCall, OfAPartOfAnOperationCountsForTheWhole) {
    const OneWait whole;
    {
        const OneWait part;
        Makes(501, 6);
    }
    EXPECT_FALSE(IsAsked(501));
}

TEST_F(ApplicationCall, OutsideOfAnyOperationIsMadeAndNotRemembered) {
    EXPECT_TRUE(Makes(501, 6));
    EXPECT_TRUE(IsAsked(501));
    const OneWait wait;
    EXPECT_TRUE(IsAsked(501));
}

TEST_F(ApplicationCall, OnNoElementIsMadeAndFailsByItself) {
    const OneWait wait;
    CFTypeRef value = nullptr;
    EXPECT_EQ(CallApplication(
                  nullptr,
                  [&] { return AXUIElementCopyAttributeValue(nullptr, kAXRoleAttribute, &value); }),
              kAXErrorIllegalArgument);
}

// --- The time-out of the process -----------------------------------------------------------------

class ApplicationCallTimeOut : public AccessibilityTest {
  protected:
    ~ApplicationCallTimeOut() override { SetCallTiming(CallTiming()); }

    // Seconds that a call waits for its answer.
    double OfACall() {
        CopyAttribute(element_.get(), kAXRoleAttribute);
        return application_services::TimeoutOf(element_.get());
    }

    OwnedReference<AXUIElementRef> element_ = Object(editor_.Add("AXButton"));
};

TEST_F(ApplicationCallTimeOut, IsSixSecondsWhateverThePlatformsIs) {
    const OwnedReference<AXUIElementRef> systemWide(AXUIElementCreateSystemWide());
    AXUIElementSetMessagingTimeout(systemWide.get(), 120);
    SetCallTiming(CallTiming());
    EXPECT_EQ(application_services::TimeoutOf(element_.get()), 120);
    EXPECT_EQ(OfACall(), 6);
}

TEST_F(ApplicationCallTimeOut, IsSetBeforeTheFirstCallAndByItselfCostsNoExchange) {
    SetCallTiming({.timeout = 2.5F});
    EXPECT_EQ(ExchangesOf([&] { EXPECT_EQ(OfACall(), 2.5); }), 1U);
}

TEST_F(ApplicationCallTimeOut, IsSetOnceAndThenLeftAlone) {
    OfACall();
    const OwnedReference<AXUIElementRef> systemWide(AXUIElementCreateSystemWide());
    AXUIElementSetMessagingTimeout(systemWide.get(), 7);
    EXPECT_EQ(OfACall(), 7);
}

TEST_F(ApplicationCallTimeOut, DecidesHowLongACallLastsThatCountsAsWaitedForToTheEnd) {
    const CallClock clock(0.2F);
    const OneWait wait;
    CallApplication(element_.get(), [] {
        CallClock::Advance(0.17);
        return kAXErrorCannotComplete;
    });
    EXPECT_TRUE(CopyAttribute(element_.get(), kAXRoleAttribute));
    CallApplication(element_.get(), [] {
        CallClock::Advance(0.19);
        return kAXErrorCannotComplete;
    });
    EXPECT_FALSE(CopyAttribute(element_.get(), kAXRoleAttribute));
}

TEST_F(ApplicationCallTimeOut, IsMeasuredByAClockThatNobodySets) {
    EXPECT_EQ(CallTiming().now, &std::chrono::steady_clock::now);
}

}  // namespace
