// What the poster puts into the input stream, event by event, as the desktop's event tap sees it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "events/VEK_EventPoster.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "platform/Variants/EventFaults.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/unit/events/QuartzCalls.h"

namespace {

using desktop_link::Event;
using platform_testing::EventCreation;
using platform_testing::FailEventCreation;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class EventPoster : public testing::Test {
  protected:
    EventPoster() {
        desktop_.onRequest = [this](const desktop_link::Request& request) {
            if (request.operation == desktop_link::Operation::postEvent) {
                events.push_back(request.event);
            }
        };
    }
    ~EventPoster() override { platform_testing::ForgetEventFaults(); }

    std::vector<Event> events;  // as they were posted

  private:
    test_support::ScriptedDesktop desktop_;
};

MATCHER_P3(IsKey, type, keyCode, flags, "") {
    return arg.type == static_cast<std::uint32_t>(type) && arg.keyCode == keyCode &&
           arg.flags == static_cast<std::uint64_t>(flags) && arg.flagsWereSet && arg.hasSource &&
           arg.sourceState == kCGEventSourceStatePrivate && arg.tap == kCGHIDEventTap;
}

MATCHER_P3(IsMouse, type, x, y, "") {
    return arg.type == static_cast<std::uint32_t>(type) && arg.position.x == x &&
           arg.position.y == y && arg.button == 0 && !arg.hasSource && arg.tap == kCGHIDEventTap;
}

MATCHER_P(IsScrollInPixels, wheels, "") {
    return arg.type == static_cast<std::uint32_t>(kCGEventScrollWheel) &&
           testing::Matches(testing::ElementsAreArray(wheels))(arg.wheels) &&
           arg.scrollUnit == static_cast<std::uint32_t>(kCGScrollEventUnitPixel) &&
           !arg.hasSource && !arg.flagsWereSet && arg.tap == kCGHIDEventTap;
}

MATCHER_P(HasFlags, flags, "") {
    return arg.flagsWereSet && arg.flags == static_cast<std::uint64_t>(flags);
}
MATCHER(HasNoFlagsOfItsOwn, "") {
    return !arg.flagsWereSet;
}

TEST_F(EventPoster, FlagsOfEachModifierBit) {
    VEK_EventPoster poster;
    EXPECT_EQ(poster.MakeEventFlags(0x0000), 0u);
    EXPECT_EQ(poster.MakeEventFlags(0x0100), 0x00100000u);
    EXPECT_EQ(poster.MakeEventFlags(0x0200), 0x00020000u);
    EXPECT_EQ(poster.MakeEventFlags(0x0800), 0x00080000u);
    EXPECT_EQ(poster.MakeEventFlags(0x1000), 0x00040000u);
    EXPECT_EQ(poster.MakeEventFlags(0x1B00), 0x001E0000u);
}

TEST_F(EventPoster, CapsLockAlonePressesNoKeyAndYieldsFlagsZero) {
    VEK_EventPoster poster;
    poster.PostModifiers(0x0400, true);
    EXPECT_THAT(events, IsEmpty());
    EXPECT_EQ(poster.MakeEventFlags(0x0400), 0u);
}

TEST_F(EventPoster, AllModifiersPressedYieldFourKeyDownsEachWithItsOwnFlagOnly) {
    VEK_EventPoster poster;
    poster.PostModifiers(0x1B00, true);
    EXPECT_THAT(events, ElementsAre(IsKey(kCGEventKeyDown, 55, 0x00100000),
                                    IsKey(kCGEventKeyDown, 56, 0x00020000),
                                    IsKey(kCGEventKeyDown, 58, 0x00080000),
                                    IsKey(kCGEventKeyDown, 59, 0x00040000)));
}

TEST_F(EventPoster, AllModifiersReleasedGoUpInTheSameOrderWithFlagsZero) {
    VEK_EventPoster poster;
    poster.PostModifiers(0x1B00, false);
    EXPECT_THAT(events, ElementsAre(IsKey(kCGEventKeyUp, 55, 0), IsKey(kCGEventKeyUp, 56, 0),
                                    IsKey(kCGEventKeyUp, 58, 0), IsKey(kCGEventKeyUp, 59, 0)));
}

TEST_F(EventPoster, WordWithOnlyLowBitsPressesNothing) {
    VEK_EventPoster poster;
    poster.PostModifiers(0x00FF, true);
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(EventPoster, BitsAboveControlPressNothing) {
    VEK_EventPoster poster;
    poster.PostModifiers(0xE400, true);
    EXPECT_THAT(events, IsEmpty());
    EXPECT_EQ(poster.MakeEventFlags(0xE4FF), 0u);
}

TEST_F(EventPoster, KeystrokeCarriesItsModifiersAsFlagsOfTheKeyDownOnly) {
    VEK_EventPoster poster;
    poster.PostKeystroke(49, 0x0100, true);
    poster.PostKeystroke(49, 0x0100, false);
    EXPECT_THAT(events,
                ElementsAre(IsKey(kCGEventKeyDown, 49, 0x00100000), IsKey(kCGEventKeyUp, 49, 0)));
}

TEST_F(EventPoster, KeystrokeWithoutModifiersSetsFlagsZeroOnTheKeyDown) {
    VEK_EventPoster poster;
    poster.PostKeystroke(12, 0, true);
    EXPECT_THAT(events, ElementsAre(IsKey(kCGEventKeyDown, 12, 0)));
}

TEST_F(EventPoster, KeyCodesOfAll16BitsArePosted) {
    VEK_EventPoster poster;
    poster.PostKeystroke(0xFFFE, 0, true);
    poster.PostKeystroke(0x0101, 0, false);
    EXPECT_THAT(events,
                ElementsAre(IsKey(kCGEventKeyDown, 0xFFFE, 0), IsKey(kCGEventKeyUp, 0x0101, 0)));
}

TEST_F(EventPoster, GestureStartPressesModifiersThenMovesThenClicksWithoutFlagsOfItsOwn) {
    VEK_EventPoster poster;
    poster.PostMouseStartEvent({100, 200}, 0x0800, true);
    EXPECT_THAT(
        events,
        ElementsAre(
            IsKey(kCGEventKeyDown, 58, 0x00080000),
            testing::AllOf(IsMouse(kCGEventMouseMoved, 100, 200), HasNoFlagsOfItsOwn()),
            testing::AllOf(IsMouse(kCGEventLeftMouseDown, 100, 200), HasNoFlagsOfItsOwn())));
}

TEST_F(EventPoster, GestureStartWithoutClickOnlyMoves) {
    VEK_EventPoster poster;
    poster.PostMouseStartEvent({1.5, 2.25}, 0, false);
    EXPECT_THAT(events, ElementsAre(IsMouse(kCGEventMouseMoved, 1.5, 2.25)));
}

TEST_F(EventPoster, ContinueWithoutClickStillPostsALeftMouseDragged) {
    VEK_EventPoster poster;
    poster.PostMouseContinueEvent({3, 4}, 0x0200, false);
    EXPECT_THAT(events, ElementsAre(testing::AllOf(IsMouse(kCGEventLeftMouseDragged, 3, 4),
                                                   HasFlags(0x00020000))));
}

TEST_F(EventPoster, EndWithClickReleasesTheButtonThenTheModifiers) {
    VEK_EventPoster poster;
    poster.PostMouseEndEvent({3, 4}, 0x1100, true);
    EXPECT_THAT(events, ElementsAre(testing::AllOf(IsMouse(kCGEventLeftMouseUp, 3, 4),
                                                   HasFlags(0x00140000)),
                                    IsKey(kCGEventKeyUp, 55, 0), IsKey(kCGEventKeyUp, 59, 0)));
}

TEST_F(EventPoster, EndWithoutClickPostsNoMouseEventAndOnlyReleasesTheModifiers) {
    VEK_EventPoster poster;
    poster.PostMouseEndEvent({3, 4}, 0x0100, false);
    EXPECT_THAT(events, ElementsAre(IsKey(kCGEventKeyUp, 55, 0)));
}

TEST_F(EventPoster, HorizontalScrollIsTheSecondOfTwoWheelsInPixels) {
    VEK_EventPoster poster;
    poster.PostHorizontalScrollWheelContinueEvent(-7);
    EXPECT_THAT(events, ElementsAre(IsScrollInPixels(std::vector{0, -7})));
}

TEST_F(EventPoster, VerticalScrollIsTheOnlyWheelInPixels) {
    VEK_EventPoster poster;
    poster.PostVerticalScrollWheelContinueEvent(12);
    EXPECT_THAT(events, ElementsAre(IsScrollInPixels(std::vector{12})));
}

TEST_F(EventPoster, ScrollStepsAreOfAnySize) {
    VEK_EventPoster poster;
    poster.PostVerticalScrollWheelContinueEvent(INT_MIN);
    poster.PostHorizontalScrollWheelContinueEvent(INT_MAX);
    EXPECT_THAT(events, ElementsAre(IsScrollInPixels(std::vector{INT_MIN}),
                                    IsScrollInPixels(std::vector{0, INT_MAX})));
}

TEST_F(EventPoster, MakesAnEmptyEventThenItsPrivateSource) {
    QuartzCalls().clear();
    const VEK_EventPoster poster;
    EXPECT_THAT(QuartzCalls(), ElementsAre("CGEventCreate(null)", "CGEventSourceCreate(-1)"));
    EXPECT_THAT(events, IsEmpty()) << "the empty event is not posted";
}

TEST_F(EventPoster, EveryMouseEventIsOfTheLeftButtonAndWithoutSource) {
    VEK_EventPoster poster;
    QuartzCalls().clear();
    poster.PostMouseStartEvent({1, 2}, 0, true);
    poster.PostMouseContinueEvent({1, 2}, 0, true);
    poster.PostMouseEndEvent({1, 2}, 0, true);
    EXPECT_THAT(
        QuartzCalls(),
        ElementsAre("CGEventCreateMouseEvent(null, 5, 0)", "CGEventCreateMouseEvent(null, 1, 0)",
                    "CGEventCreateMouseEvent(null, 6, 0)", "CGEventCreateMouseEvent(null, 2, 0)"));
}

// --- what happens when an event cannot be made ---------------------------------------------------

TEST_F(EventPoster, WithoutEventSourceNoModifierIsPressed) {
    FailEventCreation(EventCreation::source, 1);
    const platform_testing::LogCapture log;
    VEK_EventPoster poster;
    poster.PostModifiers(0x1B00, true);
    poster.PostModifiers(0x1B00, false);
    EXPECT_THAT(events, IsEmpty());
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(EventPoster, WithoutEventSourceAKeystrokeIsPostedAllTheSame) {
    FailEventCreation(EventCreation::source, 1);
    VEK_EventPoster poster;
    poster.PostKeystroke(49, 0x0100, true);
    poster.PostKeystroke(49, 0x0100, false);
    ASSERT_THAT(events, SizeIs(2));
    EXPECT_FALSE(events[0].hasSource);
    EXPECT_THAT(events[0], HasFlags(0x00100000));
    EXPECT_FALSE(events[1].hasSource);
    EXPECT_THAT(events[1], HasFlags(0));
}

TEST_F(EventPoster, FailedWakeUpEventIsHarmless) {
    FailEventCreation(EventCreation::empty, 1);
    VEK_EventPoster poster;
    poster.PostKeystroke(49, 0, true);
    EXPECT_THAT(events, SizeIs(1));
}

TEST_F(EventPoster, ModifierKeyThatCannotBeMadeIsSkippedSilently) {
    VEK_EventPoster poster;
    platform_testing::LogCapture log;
    FailEventCreation(EventCreation::keyboard, 2);
    poster.PostModifiers(0x1B00, true);
    EXPECT_THAT(events, ElementsAre(IsKey(kCGEventKeyDown, 55, 0x00100000),
                                    IsKey(kCGEventKeyDown, 58, 0x00080000),
                                    IsKey(kCGEventKeyDown, 59, 0x00040000)));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(EventPoster, KeypressThatCannotBeMadeIsLoggedAtPriorityZero) {
    VEK_EventPoster poster;
    platform_testing::LogCapture log;
    FailEventCreation(EventCreation::keyboard, 1);
    poster.PostKeystroke(49, 0, true);
    EXPECT_THAT(events, IsEmpty());
    EXPECT_THAT(log.SystemTexts(), ElementsAre("  couldn't make keypress event\n"));
    EXPECT_EQ(log.Lines()[0].priority, 0);
}

TEST_F(EventPoster, KeyReleaseThatCannotBeMadeIsLoggedAtPriorityZero) {
    VEK_EventPoster poster;
    platform_testing::LogCapture log;
    FailEventCreation(EventCreation::keyboard, 1);
    poster.PostKeystroke(49, 0, false);
    EXPECT_THAT(events, IsEmpty());
    EXPECT_THAT(log.SystemTexts(), ElementsAre("  couldn't make key release event\n"));
    EXPECT_EQ(log.Lines()[0].priority, 0);
}

TEST_F(EventPoster, FailedMoveSuppressesTheMouseDownAndLeavesTheModifiersDown) {
    VEK_EventPoster poster;
    FailEventCreation(EventCreation::mouse, 1);
    poster.PostMouseStartEvent({1, 2}, 0x0100, true);
    EXPECT_THAT(events, ElementsAre(IsKey(kCGEventKeyDown, 55, 0x00100000)));
}

TEST_F(EventPoster, FailedMouseDownIsDroppedSilently) {
    VEK_EventPoster poster;
    FailEventCreation(EventCreation::mouse, 2);
    poster.PostMouseStartEvent({1, 2}, 0, true);
    EXPECT_THAT(events, ElementsAre(IsMouse(kCGEventMouseMoved, 1, 2)));
}

TEST_F(EventPoster, FailedDragIsDroppedSilently) {
    VEK_EventPoster poster;
    FailEventCreation(EventCreation::mouse, 1);
    poster.PostMouseContinueEvent({1, 2}, 0, true);
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(EventPoster, FailedMouseUpDeliberatelyLeavesTheModifiersDown) {
    VEK_EventPoster poster;
    FailEventCreation(EventCreation::mouse, 1);
    poster.PostMouseEndEvent({1, 2}, 0x0100, true);
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(EventPoster, EveryEventButAKeystrokesIsDroppedWithoutAWord) {
    VEK_EventPoster poster;
    const platform_testing::LogCapture log;
    for (const EventCreation kind : {EventCreation::mouse, EventCreation::scroll}) {
        for (unsigned long nth = 1; nth <= 10; ++nth) {
            FailEventCreation(kind, nth);
        }
    }
    poster.PostMouseStartEvent({1, 2}, 0, true);
    poster.PostMouseContinueEvent({1, 2}, 0, true);
    poster.PostMouseEndEvent({1, 2}, 0, true);
    poster.PostVerticalScrollWheelContinueEvent(1);
    poster.PostHorizontalScrollWheelContinueEvent(1);
    EXPECT_THAT(events, IsEmpty());
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(EventPoster, FailedScrollPostsNothing) {
    VEK_EventPoster poster;
    FailEventCreation(EventCreation::scroll, 1);
    poster.PostVerticalScrollWheelContinueEvent(1);
    FailEventCreation(EventCreation::scroll, 1);
    poster.PostHorizontalScrollWheelContinueEvent(1);
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(EventPoster, NoOperationLeavesAnObjectBehind) {
    EXPECT_EQ(platform_testing::LeftOverBy([] {
                  VEK_EventPoster poster;
                  poster.PostKeystroke(49, 0x1B00, true);
                  poster.PostKeystroke(49, 0x1B00, false);
                  poster.PostMouseStartEvent({1, 2}, 0x1B00, true);
                  poster.PostMouseContinueEvent({1, 2}, 0x1B00, true);
                  poster.PostMouseEndEvent({1, 2}, 0x1B00, true);
                  poster.PostVerticalScrollWheelContinueEvent(1);
                  poster.PostHorizontalScrollWheelContinueEvent(1);
              }),
              "");
}

}  // namespace
