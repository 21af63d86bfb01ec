#include <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>

#include "platform/Testing/LiveObjects.h"
#include "platform/Variants/EventFaults.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"

namespace {

using desktop_link::Event;
using desktop_link::Operation;
using desktop_link::Point;
using platform_testing::EventCreation;
using platform_testing::FailEventCreation;
using test_support::ScriptedDesktop;
using OwnedEvent = test_support::OwnedObject<CGEventRef>;
using OwnedSource = test_support::OwnedObject<CGEventSourceRef>;

class QuartzEvents : public testing::Test {
  protected:
    QuartzEvents() { desktop_.Restart(); }
    ~QuartzEvents() override { platform_testing::ForgetEventFaults(); }

    Event Posted(CGEventRef event, CGEventTapLocation tap = kCGHIDEventTap) {
        const std::size_t before = desktop_.Exchanges().size();
        CGEventPost(tap, event);
        EXPECT_EQ(desktop_.Exchanges().size(), before + 1) << "posting is one exchange";
        EXPECT_EQ(desktop_.Exchanges().back().request.operation, Operation::postEvent);
        return desktop_.Exchanges().back().request.event;
    }

    ScriptedDesktop desktop_{R"({"pointer": [100, 200]})"};
};

TEST_F(QuartzEvents, AreMadeWithoutAnyExchange) {
    const OwnedSource source = CGEventSourceCreate(kCGEventSourceStatePrivate);
    const OwnedEvent empty = CGEventCreate(nullptr);
    const OwnedEvent key = CGEventCreateKeyboardEvent(source, 9, true);
    const OwnedEvent mouse =
        CGEventCreateMouseEvent(nullptr, kCGEventMouseMoved, {1, 2}, kCGMouseButtonLeft);
    const OwnedEvent scroll = CGEventCreateScrollWheelEvent(nullptr, kCGScrollEventUnitPixel, 1, 4);
    for (const CGEventRef event : {empty.get(), key.get(), mouse.get(), scroll.get()}) {
        ASSERT_NE(event, nullptr);
        EXPECT_EQ(CFGetTypeID(event), CGEventGetTypeID());
    }
    ASSERT_NE(source.get(), nullptr);
    EXPECT_EQ(CFGetTypeID(source.get()), CGEventSourceGetTypeID());
    EXPECT_TRUE(desktop_.Exchanges().empty());
}

TEST_F(QuartzEvents, KeyboardEventCarriesKeyCodeDirectionAndSource) {
    const OwnedSource source = CGEventSourceCreate(kCGEventSourceStatePrivate);
    const OwnedEvent down = CGEventCreateKeyboardEvent(source, 55, true);
    const OwnedEvent up = CGEventCreateKeyboardEvent(nullptr, 0xFFFF, false);
    EXPECT_EQ(CGEventGetType(down), kCGEventKeyDown);
    EXPECT_EQ(CGEventGetType(up), kCGEventKeyUp);
    EXPECT_EQ(CGEventGetIntegerValueField(down, kCGKeyboardEventKeycode), 55);
    EXPECT_EQ(CGEventGetIntegerValueField(up, kCGKeyboardEventKeycode), 0xFFFF);

    const Event posted = Posted(down);
    EXPECT_EQ(posted.type, 10u);
    EXPECT_EQ(posted.keyCode, 55);
    EXPECT_TRUE(posted.hasSource);
    EXPECT_EQ(posted.sourceState, -1);
    EXPECT_FALSE(Posted(up).hasSource);
}

TEST_F(QuartzEvents, FlagsNeverSetAreToldApartFromFlagsSetToNone) {
    const OwnedEvent event = CGEventCreateKeyboardEvent(nullptr, 1, true);
    EXPECT_EQ(CGEventGetFlags(event), 0u);
    EXPECT_FALSE(Posted(event).flagsWereSet);
    CGEventSetFlags(event, 0);
    EXPECT_TRUE(Posted(event).flagsWereSet);
    EXPECT_EQ(Posted(event).flags, 0u);
    CGEventSetFlags(event, kCGEventFlagMaskCommand | kCGEventFlagMaskShift);
    EXPECT_EQ(Posted(event).flags, 0x00120000u);
    CGEventSetFlags(event, kCGEventFlagMaskControl);
    EXPECT_EQ(CGEventGetFlags(event), 0x00040000u) << "setting replaces all flags";
}

TEST_F(QuartzEvents, MouseEventCarriesTypePositionAndTap) {
    const OwnedEvent event =
        CGEventCreateMouseEvent(nullptr, kCGEventLeftMouseDragged, {-1.5, 900}, kCGMouseButtonLeft);
    EXPECT_EQ(CGEventGetLocation(event).x, -1.5);
    EXPECT_EQ(CGEventGetLocation(event).y, 900);
    const Event posted = Posted(event, kCGSessionEventTap);
    EXPECT_EQ(posted.type, 6u);
    EXPECT_EQ(posted.position, (Point{-1.5, 900}));
    EXPECT_EQ(posted.tap, 1u);
    EXPECT_EQ(Posted(event).tap, 0u);
}

TEST_F(QuartzEvents, ButtonCountsOnlyForTheOtherMouseTypes) {
    const std::pair<CGEventType, int> buttons[] = {
        {kCGEventLeftMouseDown, 0},     {kCGEventMouseMoved, 0},        {kCGEventRightMouseDown, 1},
        {kCGEventRightMouseUp, 1},      {kCGEventOtherMouseDown, 2},    {kCGEventOtherMouseUp, 2},
        {kCGEventRightMouseDragged, 1}, {kCGEventOtherMouseDragged, 2},
    };
    for (const auto& [type, button] : buttons) {
        const OwnedEvent event = CGEventCreateMouseEvent(nullptr, type, {}, kCGMouseButtonCenter);
        EXPECT_EQ(CGEventGetIntegerValueField(event, kCGMouseEventButtonNumber), button)
            << "type " << type;
    }
}

TEST_F(QuartzEvents, MouseEventOfATypeThatIsNoneIsNull) {
    EXPECT_EQ(CGEventCreateMouseEvent(nullptr, kCGEventKeyDown, {}, kCGMouseButtonLeft), nullptr);
    EXPECT_EQ(CGEventCreateMouseEvent(nullptr, kCGEventNull, {}, kCGMouseButtonLeft), nullptr);
}

TEST_F(QuartzEvents, ScrollEventCarriesOneToThreeAxes) {
    const OwnedEvent vertical =
        CGEventCreateScrollWheelEvent(nullptr, kCGScrollEventUnitPixel, 1, -10);
    const OwnedEvent horizontal =
        CGEventCreateScrollWheelEvent(nullptr, kCGScrollEventUnitLine, 2, 0, 7);
    const OwnedEvent all =
        CGEventCreateScrollWheelEvent(nullptr, kCGScrollEventUnitPixel, 3, 1, -2, 3);
    EXPECT_EQ(Posted(vertical).wheels, (std::vector<std::int32_t>{-10}));
    EXPECT_EQ(Posted(vertical).type, 22u);
    EXPECT_EQ(Posted(vertical).scrollUnit, 0u);
    EXPECT_EQ(Posted(horizontal).wheels, (std::vector<std::int32_t>{0, 7}));
    EXPECT_EQ(Posted(horizontal).scrollUnit, 1u);
    EXPECT_EQ(CGEventGetIntegerValueField(all, kCGScrollWheelEventPointDeltaAxis1), 1);
    EXPECT_EQ(CGEventGetIntegerValueField(all, kCGScrollWheelEventPointDeltaAxis2), -2);
    EXPECT_EQ(CGEventGetIntegerValueField(all, kCGScrollWheelEventPointDeltaAxis3), 3);
    EXPECT_EQ(CGEventGetIntegerValueField(vertical, kCGScrollWheelEventPointDeltaAxis2), 0);
}

TEST_F(QuartzEvents, ScrollEventOfNoOrTooManyAxesIsNull) {
    EXPECT_EQ(CGEventCreateScrollWheelEvent(nullptr, kCGScrollEventUnitPixel, 0, 1), nullptr);
    EXPECT_EQ(CGEventCreateScrollWheelEvent(nullptr, kCGScrollEventUnitPixel, 4, 1, 2, 3, 4),
              nullptr);
}

TEST_F(QuartzEvents, EmptyEventIsWhereThePointerIs) {
    const OwnedEvent event = CGEventCreate(nullptr);
    EXPECT_EQ(CGEventGetType(event), kCGEventNull);
    EXPECT_EQ(CGEventGetLocation(event).x, 100);
    EXPECT_EQ(CGEventGetLocation(event).y, 200);
    EXPECT_EQ(desktop_.Exchanges().size(), 1u) << "asked once";
}

TEST_F(QuartzEvents, NullEventIsIgnoredEverywhere) {
    CGEventPost(kCGHIDEventTap, nullptr);
    CGEventSetFlags(nullptr, 1);
    EXPECT_EQ(CGEventGetFlags(nullptr), 0u);
    EXPECT_EQ(CGEventGetType(nullptr), kCGEventNull);
    EXPECT_EQ(CGEventGetLocation(nullptr).x, 0);
    EXPECT_EQ(CGEventGetIntegerValueField(nullptr, kCGKeyboardEventKeycode), 0);
    EXPECT_TRUE(desktop_.Exchanges().empty());
}

TEST_F(QuartzEvents, PostingDoesNotConsumeTheEvent) {
    const OwnedEvent event = CGEventCreateKeyboardEvent(nullptr, 12, true);
    Posted(event);
    EXPECT_EQ(Posted(event).keyCode, 12);
}

TEST_F(QuartzEvents, SourceKeepsItsStateInItsEvents) {
    for (const CGEventSourceStateID state :
         {kCGEventSourceStatePrivate, kCGEventSourceStateCombinedSessionState,
          kCGEventSourceStateHIDSystemState}) {
        const test_support::OwnedObject<CGEventSourceRef> source = CGEventSourceCreate(state);
        ASSERT_NE(source.get(), nullptr) << state;
        const OwnedEvent event = CGEventCreateKeyboardEvent(source, 12, true);
        EXPECT_EQ(Posted(event).sourceState, state);
    }
}

TEST_F(QuartzEvents, StateOfTheSessionTellsWhatIsPressed) {
    constexpr auto kSession = kCGEventSourceStateCombinedSessionState;
    const OwnedEvent key = CGEventCreateKeyboardEvent(nullptr, 58, true);
    const OwnedEvent button =
        CGEventCreateMouseEvent(nullptr, kCGEventRightMouseDown, {1, 2}, kCGMouseButtonRight);
    EXPECT_FALSE(CGEventSourceKeyState(kSession, 58));
    EXPECT_FALSE(CGEventSourceButtonState(kSession, kCGMouseButtonRight));
    CGEventPost(kCGHIDEventTap, key);
    CGEventPost(kCGHIDEventTap, button);
    EXPECT_TRUE(CGEventSourceKeyState(kSession, 58));
    EXPECT_FALSE(CGEventSourceKeyState(kSession, 59));
    EXPECT_TRUE(CGEventSourceButtonState(kSession, kCGMouseButtonRight));
    EXPECT_FALSE(CGEventSourceButtonState(kSession, kCGMouseButtonLeft));
}

TEST_F(QuartzEvents, OtherStatesHoldNothing) {
    const OwnedEvent key = CGEventCreateKeyboardEvent(nullptr, 58, true);
    CGEventPost(kCGHIDEventTap, key);
    EXPECT_FALSE(CGEventSourceKeyState(kCGEventSourceStateHIDSystemState, 58));
    EXPECT_FALSE(CGEventSourceKeyState(kCGEventSourceStatePrivate, 58));
    EXPECT_FALSE(CGEventSourceButtonState(kCGEventSourceStateHIDSystemState, kCGMouseButtonLeft));
}

TEST_F(QuartzEvents, FieldThatIsUnknownIsZero) {
    const OwnedEvent event = CGEventCreateKeyboardEvent(nullptr, 12, true);
    EXPECT_EQ(CGEventGetIntegerValueField(event, kCGKeyboardEventKeycode), 12);
    EXPECT_EQ(CGEventGetIntegerValueField(event, static_cast<CGEventField>(9999)), 0);
}

TEST_F(QuartzEvents, SourceOfAnUnknownStateIsNull) {
    EXPECT_EQ(CGEventSourceCreate(static_cast<CGEventSourceStateID>(2)), nullptr);
    EXPECT_EQ(CGEventSourceCreate(static_cast<CGEventSourceStateID>(-2)), nullptr);
}

TEST_F(QuartzEvents, NthCreationOfAKindCanBeMadeToFail) {
    FailEventCreation(EventCreation::keyboard, 2);
    FailEventCreation(EventCreation::source, 1);
    FailEventCreation(EventCreation::empty, 1);
    FailEventCreation(EventCreation::mouse, 1);
    FailEventCreation(EventCreation::scroll, 1);
    const OwnedEvent first = CGEventCreateKeyboardEvent(nullptr, 1, true);
    const OwnedEvent second = CGEventCreateKeyboardEvent(nullptr, 1, true);
    const OwnedEvent third = CGEventCreateKeyboardEvent(nullptr, 1, true);
    EXPECT_NE(first.get(), nullptr);
    EXPECT_EQ(second.get(), nullptr);
    EXPECT_NE(third.get(), nullptr);
    EXPECT_EQ(CGEventSourceCreate(kCGEventSourceStatePrivate), nullptr);
    EXPECT_EQ(CGEventCreate(nullptr), nullptr);
    EXPECT_EQ(CGEventCreateMouseEvent(nullptr, kCGEventMouseMoved, {}, kCGMouseButtonLeft),
              nullptr);
    EXPECT_EQ(CGEventCreateScrollWheelEvent(nullptr, kCGScrollEventUnitPixel, 1, 1), nullptr);
    const OwnedSource source = CGEventSourceCreate(kCGEventSourceStatePrivate);
    EXPECT_NE(source.get(), nullptr) << "a failure happens once";
}

TEST_F(QuartzEvents, WithoutADesktopEventsAreMadeAndPostedIntoNothing) {
    const test_support::SessionFixture session;
    desktop_link::SetTransport(nullptr);
    const OwnedEvent event = CGEventCreate(nullptr);
    ASSERT_NE(event.get(), nullptr);
    CGEventPost(kCGHIDEventTap, event);
    EXPECT_EQ(CGEventGetLocation(event).x, 0);
    EXPECT_EQ(CGEventGetLocation(event).y, 0);
    EXPECT_FALSE(CGEventSourceKeyState(kCGEventSourceStateCombinedSessionState, 58));
    EXPECT_FALSE(
        CGEventSourceButtonState(kCGEventSourceStateCombinedSessionState, kCGMouseButtonLeft));
    desktop_link::SetTransport(nullptr);
}

TEST_F(QuartzEvents, LeaveNoObjectBehind) {
    EXPECT_EQ(platform_testing::LeftOverBy([] {
                  const OwnedSource source = CGEventSourceCreate(kCGEventSourceStatePrivate);
                  const OwnedEvent key = CGEventCreateKeyboardEvent(source, 1, true);
                  const OwnedEvent empty = CGEventCreate(source);
                  CGEventSetFlags(key, kCGEventFlagMaskCommand);
                  CGEventPost(kCGHIDEventTap, key);
                  CGEventGetLocation(empty);
              }),
              "");
}

}  // namespace
