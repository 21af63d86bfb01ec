// What the companion gets for each request, byte for byte.

#include <cstring>
#include <utility>
#include <vector>

#include "VEKCommon/MessageCodes.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Variants/Variants.h"
#include "tests/support/LateActivation.h"
#include "tests/unit/protocol/DispatcherTest.h"

namespace {

using Inspector = DriverInspector;
using platform_testing::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using testing::SizeIs;

class Requests : public DispatcherTest {
  protected:
    unsigned long AccessibilityCalls() { return desktop_->AttributesRead(); }

    // A check box's value, and what a text field shows.
    Bytes ValueOf(unsigned int number) { return Ask(kJElV, Integers({number})).value_or(Bytes()); }
    Bytes NumberIn(unsigned int number) { return Ask(kJESI, Integers({number})).value_or(Bytes()); }
};

}  // namespace

// --- Which requests there are --------------------------------------------------------------------

TEST_F(Requests, UnknownCodeIsOneLineInTheSystemLogAndNoReply) {
    EXPECT_EQ(Ask(FourCharacterCode("ABCD"), Integers({1})), std::nullopt);
    EXPECT_THAT(log_.Lines(), ElementsAre(LogLine{LogLine::Log::system, 0,
                                                  "CFDataRef CVEK_UserSpaceDriver::MessageCallback("
                                                  "CFMessagePortRef, SInt32, CFDataRef, void *)"
                                                  " - message not handled\n"}));
}

TEST_F(Requests, UnknownCodeWithoutBodyIsLoggedAlike) {
    EXPECT_EQ(AskWithoutBody(0), std::nullopt);
    EXPECT_EQ(AskWithoutBody(-1), std::nullopt);
    EXPECT_THAT(log_.SystemTexts(), SizeIs(2));
}

TEST_F(Requests, CaseOfACodeMatters) {
    EXPECT_EQ(Ask(FourCharacterCode("JELV"), Integers({59})), std::nullopt);
    EXPECT_THAT(log_.SystemTexts(), SizeIs(1));
}

TEST_F(Requests, PthWithAnyBodyDeliberatelyDoesNothingAndIsNotLogged) {
    EXPECT_EQ(AskWithoutBody(kJPth), std::nullopt);
    EXPECT_EQ(Ask(kJPth, Bytes()), std::nullopt);
    EXPECT_EQ(Ask(kJPth, Bytes(5000, 0xFF)), std::nullopt);
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(Requests, WithoutDriverThereIsNoReply) {
    CVEK_UserSpaceDriver* const driver = CVEK_UserSpaceDriver::sSelf;
    CVEK_UserSpaceDriver::sSelf = nullptr;
    EXPECT_EQ(AskWithoutBody(kJGlM), std::nullopt);
    CVEK_UserSpaceDriver::sSelf = driver;
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

// --- Elements ------------------------------------------------------------------------------------

TEST_F(Requests, ValueOfAnElementIsOneInteger) {
    EXPECT_THAT(Ask(kJElV, {0x3B, 0, 0, 0}), Optional(Integers({1})));
}

TEST_F(Requests, ValueRequestWithAbsentBodyAsksNothingAndGetsNoReply) {
    const unsigned long before = AccessibilityCalls();
    EXPECT_EQ(AskWithoutBody(kJElV), std::nullopt);
    EXPECT_EQ(AccessibilityCalls(), before);
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(Requests, ElementThatIsNotThereGetsNoReply) {
    for (const SInt32 code : {kJBtP, kJEPp, kJESI, kJElP, kJElV}) {
        EXPECT_EQ(Ask(code, Integers({1234})), std::nullopt);
    }
    EXPECT_THAT(log_.Lines(), IsEmpty()) << "a failure is not reported";
}

TEST_F(Requests, IdentifierNumbersAreReadInHostOrder) {
    EXPECT_EQ(ValueOf(59), Integers({1}));
    EXPECT_THAT(Ask(kJElV, {0, 0, 0, 0x3B}), Optional(Integers({7}))) << "number 989855744";
}

TEST_F(Requests, ParentPositionRequestTakesItsFirstByteAsTheLowestOfTheNumber) {
    EXPECT_THAT(Ask(kJEPp, {0x3B, 0, 0, 0}),
                Optional(Integers({100, static_cast<unsigned int>(-7)})))
        << "number 59, in the group";
    EXPECT_THAT(Ask(kJEPp, {0, 0, 0, 0x3B}), Optional(Integers({0, 22})))
        << "number 989855744, in the window itself";
}

TEST_F(Requests, LengthOfAReplyIsItsRecordsSerialSize) {
    Translate({{"CB", "Color"}});
    EXPECT_THAT(Ask(kJElV, Integers({59})), Optional(SizeIs(4)));
    EXPECT_THAT(Ask(kJESI, Integers({60})), Optional(SizeIs(4)));
    EXPECT_THAT(Ask(kJGRV, Integers({62})), Optional(SizeIs(4)));
    EXPECT_THAT(Ask(kJElP, Integers({59})), Optional(SizeIs(8)));
    EXPECT_THAT(Ask(kJEPp, Integers({59})), Optional(SizeIs(8)));
    EXPECT_THAT(AskWithoutBody(kJGlM), Optional(SizeIs(8)));
    EXPECT_THAT(Ask(kJWiP, Integers({1}) + Text("Board")), Optional(SizeIs(16)));
    EXPECT_THAT(Ask(kJTWP, Integers({1}) + Text("CB") + Integers({0, 0, 0, 0, 0, 0})),
                Optional(SizeIs(20)));
}

TEST_F(Requests, IdentifierNumberIsZeroExtendedNeverNegative) {
    EXPECT_THAT(Ask(kJElV, {0xFF, 0xFF, 0xFF, 0xFF}), Optional(Integers({8})))
        << "_NS:4294967295, not _NS:-1";
}

TEST_F(Requests, BytesAfterACompleteBodyAreAccepted) {
    EXPECT_THAT(Ask(kJElV, Integers({59, 0xFFFFFFFF}) + Bytes{1}), Optional(Integers({1})));
}

TEST_F(Requests, PressingAButtonGetsNoReply) {
    EXPECT_EQ(Ask(kJBtP, Integers({59})), std::nullopt);
    EXPECT_EQ(ValueOf(59), Integers({0})) << "the check box was pressed";
}

TEST_F(Requests, PositionOfAnElementIsTruncatedTowardZero) {
    EXPECT_THAT(Ask(kJElP, Integers({59})), Optional(Integers({27, static_cast<unsigned int>(-3)})))
        << "(10.75, -20.75), 17 added to each";
}

TEST_F(Requests, PositionOfAnElementsParentIsTruncatedTowardZero) {
    EXPECT_THAT(Ask(kJEPp, Integers({59})),
                Optional(Integers({100, static_cast<unsigned int>(-7)})));
}

TEST_F(Requests, TextOfAnElementAsANumberIsItsLeadingDigits) {
    EXPECT_EQ(NumberIn(60), Integers({12}));
}

TEST_F(Requests, TextOfAnElementWithoutDigitsIsTheNumberZero) {
    EXPECT_EQ(NumberIn(61), Integers({0}));
}

TEST_F(Requests, ElementWithoutTextGetsNoReply) {
    EXPECT_EQ(Ask(kJESI, Integers({59})), std::nullopt) << "its value is a number";
}

TEST_F(Requests, TextBeyondTheIntegerRangeIsItsLimit) {
    EXPECT_EQ(NumberIn(64), Integers({0x7FFFFFFF}));
}

TEST_F(Requests, NumberIsSetAsTextWithoutReply) {
    EXPECT_EQ(Ask(kJSIS, Integers({61, static_cast<unsigned int>(-42)})), std::nullopt);
    EXPECT_EQ(NumberIn(61), Integers({static_cast<unsigned int>(-42)}));
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(Requests, SelectedRadioButtonIsItsIndex) {
    EXPECT_THAT(Ask(kJGRV, Integers({62})), Optional(Integers({1})));
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(Requests, RadioGroupWithoutSelectionIsLoggedAndGetsNoReply) {
    EXPECT_EQ(Ask(kJGRV, Integers({63})), std::nullopt);
    EXPECT_THAT(log_.ConsoleTexts(),
                ElementsAre("  GetValueOfAXRadioGroupWithID (_NS:63) failed!"));
    EXPECT_THAT(log_.SystemTexts(), IsEmpty());
}

TEST_F(Requests, SelectingARadioButtonIsLoggedAndGetsNoReply) {
    EXPECT_EQ(Ask(kJSRV, Integers({62, 2})), std::nullopt);
    EXPECT_THAT(log_.ConsoleTexts(),
                ElementsAre("  SetValueOfAXRadioGroupWithID (_NS:62, 2) succeeded!"));
    EXPECT_THAT(Ask(kJGRV, Integers({62})), Optional(Integers({2})));
}

TEST_F(Requests, RadioButtonThatIsNotThereIsLogged) {
    EXPECT_EQ(Ask(kJSRV, Integers({62, 0xFFFFFFFF})), std::nullopt);
    EXPECT_THAT(log_.ConsoleTexts(),
                ElementsAre("  SetValueOfAXRadioGroupWithID (_NS:62, -1) failed!"));
}

// --- Identifiers beyond the signed range ---------------------------------------------------------

class LargeIdentifiers : public Requests {
  protected:
    LargeIdentifiers() {
        desktop_.Run(R"({"command": "launch", "application": {
            "bundleID": "com.apple.FinalCutTwin", "name": "Twin", "pid": 777, "windows": [
              { "AXRole": "AXWindow", "AXTitle": "Window", "AXChildren": [
                { "AXRole": "AXTextField", "AXIdentifier": "_NS:4294967294", "AXValue": "1" },
                { "AXRole": "AXRadioGroup", "AXIdentifier": "_NS:4294967295", "AXChildren": [
                  { "AXRole": "AXRadioButton", "AXValue": 1 },
                  { "AXRole": "AXRadioButton", "AXValue": 0 } ] } ] } ] }})");
        test_support::AwaitActivations();
        log_.Clear();
    }
};

TEST_F(LargeIdentifiers, NumberIsSetAsTextOfTheElementWithTheZeroExtendedIdentifier) {
    Ask(kJSIS, Integers({0xFFFFFFFE, 42}));
    EXPECT_EQ(NumberIn(0xFFFFFFFE), Integers({42}));
}

TEST_F(LargeIdentifiers, RadioButtonIsSelectedInTheGroupWithTheZeroExtendedIdentifier) {
    Ask(kJSRV, Integers({0xFFFFFFFF, 1}));
    EXPECT_THAT(log_.ConsoleTexts(),
                ElementsAre("  SetValueOfAXRadioGroupWithID (_NS:4294967295, 1) succeeded!"));
    EXPECT_THAT(Ask(kJGRV, Integers({0xFFFFFFFF})), Optional(Integers({1})));
    log_.Clear();
    Ask(kJSRV, Integers({0x80000000, 0xFFFFFFFF}));
    EXPECT_THAT(log_.ConsoleTexts(),
                ElementsAre("  SetValueOfAXRadioGroupWithID (_NS:2147483648, -1) failed!"));
}

// --- Input events --------------------------------------------------------------------------------

TEST_F(Requests, PointerPositionIsAlwaysAnsweredEvenWithAbsentBody) {
    // Counted from the height of the main screen, whichever that is; the first one's is 900.
    using platform_testing::IsOn;
    using platform_testing::Variant;
    const int height = IsOn(Variant::noMainScreen)          ? 0
                       : IsOn(Variant::mainScreenElsewhere) ? 720
                                                            : 900;
    const auto y = static_cast<unsigned int>(static_cast<int>(height - 900 + 200.25));
    EXPECT_THAT(AskWithoutBody(kJGlM), Optional(Integers({100, y})));
    EXPECT_THAT(Ask(kJGlM, Bytes()), Optional(Integers({100, y})));
    EXPECT_THAT(Ask(kJGlM, Bytes(3, 0xFF)), Optional(Integers({100, y})));
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(Requests, KeystrokeIsPosted) {
    EXPECT_EQ(Ask(kJCPK, Integers({0x31, 0, 1})), std::nullopt);
    ASSERT_THAT(desktop_->Events(), SizeIs(testing::Ge(1u)));
    EXPECT_EQ(desktop_->Events().front().keyCode, 0x31);
}

TEST_F(Requests, KeystrokeWithKeyZeroIsDeliberatelyNeverPosted) {
    EXPECT_EQ(Ask(kJCPK, Integers({0, 0x0100, 1})), std::nullopt);
    EXPECT_THAT(desktop_->Events(), IsEmpty());
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(Requests, KeystrokeUsesTheLow16BitsOfAKeyThatIsNotZeroAsAWhole) {
    Ask(kJCPK, Integers({0x10031, 0xFFFF0000, 1}));
    ASSERT_THAT(desktop_->Events(), SizeIs(testing::Ge(1u)));
    EXPECT_EQ(desktop_->Events().front().keyCode, 0x31);
    const std::size_t posted = desktop_->Events().size();
    Ask(kJCPK, Integers({0x10000, 0, 1}));
    ASSERT_EQ(desktop_->Events().size(), 2 * posted) << "all 32 bits decide whether it is zero";
    EXPECT_EQ(desktop_->Events().back().keyCode, 0);
}

TEST_F(Requests, KeystrokeCarriesItsModifiersAndIsAPressWhenItsFlagIsNotZero) {
    Ask(kJCPK, Integers({0x31, 0xFFFF0100, 0x80000000}));
    ASSERT_THAT(desktop_->Events(), SizeIs(1));
    EXPECT_EQ(desktop_->Events()[0].type, kCGEventKeyDown);
    EXPECT_EQ(desktop_->Events()[0].flags, kCGEventFlagMaskCommand) << "of the low 16 bits";
    Ask(kJCPK, Integers({0x31, 0x0100, 0}));
    ASSERT_THAT(desktop_->Events(), SizeIs(2));
    EXPECT_EQ(desktop_->Events()[1].type, kCGEventKeyUp);
}

TEST_F(Requests, MouseGestureCarriesItsModifiersAndClicksWhenItsFlagIsNotZero) {
    const auto typesOf = [this](SInt32 code, unsigned int flag) {
        const std::size_t before = desktop_->Events().size();
        Ask(code, Integers({1, 2, 0xFFFF0100, flag}));
        std::vector<std::uint32_t> types;
        for (std::size_t i = before; i < desktop_->Events().size(); ++i) {
            types.push_back(desktop_->Events()[i].type);
        }
        return types;
    };
    EXPECT_THAT(typesOf(kJPMS, 0x80000000),
                ElementsAre(kCGEventKeyDown, kCGEventMouseMoved, kCGEventLeftMouseDown));
    EXPECT_THAT(typesOf(kJPMS, 0), ElementsAre(kCGEventKeyDown, kCGEventMouseMoved));
    EXPECT_THAT(typesOf(kJPMC, 0), ElementsAre(kCGEventLeftMouseDragged));
    EXPECT_EQ(desktop_->Events().back().flags, kCGEventFlagMaskCommand) << "of the low 16 bits";
    EXPECT_THAT(typesOf(kJPME, 0x80000000), ElementsAre(kCGEventLeftMouseUp, kCGEventKeyUp));
    EXPECT_THAT(typesOf(kJPME, 0), ElementsAre(kCGEventKeyUp));
}

// Under the variant in which events do not inherit the keys that the driver holds down.
TEST_F(Requests, MouseGestureDragsAndEndsWithModifiersOfItsOwn) {
    const platform_testing::UnderVariant alone(platform_testing::Variant::privateModifiers);
    for (const SInt32 code : {kJPMS, kJPMC, kJPME}) {
        Ask(code, Integers({1, 2, 0x0100, 1}));
    }
    std::vector<std::pair<std::uint32_t, std::uint64_t>> events;
    for (const desktop_link::Event& event : desktop_->Events()) {
        events.emplace_back(event.type, event.flags);
    }
    using testing::Pair;
    EXPECT_THAT(events, ElementsAre(Pair(kCGEventKeyDown, kCGEventFlagMaskCommand),
                                    Pair(kCGEventMouseMoved, 0), Pair(kCGEventLeftMouseDown, 0),
                                    Pair(kCGEventLeftMouseDragged, kCGEventFlagMaskCommand),
                                    Pair(kCGEventLeftMouseUp, kCGEventFlagMaskCommand),
                                    Pair(kCGEventKeyUp, 0)));
}

TEST_F(Requests, MouseGestureIsPostedWhereAsked) {
    Ask(kJPMS, Integers({10, 20, 0, 1}));
    Ask(kJPMC, Integers({30, 40, 0, 1}));
    Ask(kJPME, Integers({50, 60, 0, 1}));
    std::vector<std::pair<std::uint32_t, desktop_link::Point>> mouse;
    for (const desktop_link::Event& event : desktop_->Events()) {
        mouse.emplace_back(event.type, event.position);
    }
    using Point = desktop_link::Point;
    using testing::Contains;
    using testing::Pair;
    EXPECT_THAT(mouse, Contains(Pair(kCGEventLeftMouseDown, Point{10, 20})));
    EXPECT_THAT(mouse, Contains(Pair(kCGEventLeftMouseDragged, Point{30, 40})));
    EXPECT_THAT(mouse, Contains(Pair(kCGEventLeftMouseUp, Point{50, 60})));
}

TEST_F(Requests, MouseCoordinatesAreUnsignedSoANegativeOneBecomesLarge) {
    Ask(kJPMC, Integers({static_cast<unsigned int>(-9), 5, 0, 1}));
    ASSERT_THAT(desktop_->Events(), SizeIs(1));
    EXPECT_EQ(desktop_->Events()[0].position, (desktop_link::Point{4294967287.0, 5}));
    Ask(kJPMC, Integers({7, static_cast<unsigned int>(-1), 0, 1}));
    ASSERT_THAT(desktop_->Events(), SizeIs(2));
    EXPECT_EQ(desktop_->Events()[1].position, (desktop_link::Point{7, 4294967295.0}));
}

// --- Windows -------------------------------------------------------------------------------------

TEST_F(Requests, FrameOfANamedWindowIsTruncated) {
    EXPECT_THAT(Ask(kJWiP, Integers({0}) + Text("Final Cut Pro")),
                Optional(Integers({0, 22, 1440, 878})));
    EXPECT_THAT(Ask(kJWiP, Integers({1}) + Text("Board")), Optional(Integers({50, 60, 300, 200})));
}

TEST_F(Requests, WindowNameIsAPartForAnyFlagButZero) {
    for (const unsigned int flag : {2u, 0x100u, 0x80000000u}) {
        EXPECT_THAT(Ask(kJWiP, Integers({flag}) + Text("Board")),
                    Optional(Integers({50, 60, 300, 200})));
    }
    EXPECT_EQ(Ask(kJWiP, Integers({0}) + Text("Board")), std::nullopt);
}

TEST_F(Requests, WindowThatIsNotThereGetsNoReply) {
    EXPECT_EQ(Ask(kJWiP, Integers({0}) + Text("final cut pro")), std::nullopt);
    EXPECT_EQ(Ask(kJWiP, Integers({1}) + Text("")), std::nullopt);
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(Requests, FrameOfTheFirstOpenCandidateComesWithItsIndex) {
    Translate({{"CB", "Color"}, {"TL", "Timeline"}});
    const Bytes rest = Integers({0, 0, 0, 0, 0, 0});
    EXPECT_THAT(Ask(kJTWP, Integers({2}) + Text("TL") + rest + Text("CB") + rest),
                Optional(Integers({1, 50, 60, 300, 200})));
}

TEST_F(Requests, TargetListThatMatchesNothingGetsNoReply) {
    EXPECT_EQ(Ask(kJTWP, Integers({0})), std::nullopt);
    EXPECT_EQ(Ask(kJTWP, Integers({1}) + Text("CB") + Integers({0, 0, 0, 0, 0, 0})), std::nullopt);
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

// --- Front application and observation -----------------------------------------------------------

TEST_F(Requests, AcFOfThreeZerosDoesNothingAtAll) {
    Inspector::Profile(Driver()) = 3;
    Inspector::FrontAppPID(Driver()) = 77;
    const unsigned long before = desktop_link::ExchangeCount();
    EXPECT_EQ(Ask(kJAcF, Integers({0, 0, 0})), std::nullopt);
    EXPECT_EQ(desktop_link::ExchangeCount(), before);
    EXPECT_EQ(Inspector::Profile(Driver()), 3);
    EXPECT_EQ(Inspector::FrontAppPID(Driver()), 77);
    EXPECT_FALSE(Inspector::ObserveClipSelection(Driver()));
    EXPECT_FALSE(Inspector::ObserveTimelineTimecode(Driver()));
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(Requests, AcFWithItsFirstFlagTakesTheFrontApplication) {
    Inspector::Profile(Driver()) = 0;
    EXPECT_EQ(Ask(kJAcF, Integers({1, 0, 0})), std::nullopt);
    EXPECT_EQ(Inspector::FrontAppPID(Driver()), 501);
    EXPECT_EQ(Inspector::Profile(Driver()), 5);
    EXPECT_FALSE(Inspector::ObserveClipSelection(Driver()));
    EXPECT_FALSE(Inspector::ObserveTimelineTimecode(Driver()));
}

TEST_F(Requests, AcFRefreshesForAnyFirstFlagButZero) {
    for (const unsigned int flag : {2u, 0x100u, 0x10000u, 0x80000000u}) {
        Inspector::FrontAppPID(Driver()) = 0;
        Ask(kJAcF, Integers({flag, 0, 0}));
        EXPECT_EQ(Inspector::FrontAppPID(Driver()), 501) << flag;
    }
}

TEST_F(Requests, AcFWithItsSecondFlagObservesTheTimecode) {
    EXPECT_EQ(Ask(kJAcF, Integers({0, 0x80000000, 0})), std::nullopt);
    EXPECT_TRUE(Inspector::ObserveTimelineTimecode(Driver()));
    EXPECT_FALSE(Inspector::ObserveClipSelection(Driver()));
}

TEST_F(Requests, AcFWithItsThirdFlagObservesTheClipSelection) {
    EXPECT_EQ(Ask(kJAcF, Integers({0, 0, 2})), std::nullopt);
    EXPECT_TRUE(Inspector::ObserveClipSelection(Driver()));
    EXPECT_FALSE(Inspector::ObserveTimelineTimecode(Driver()));
}

TEST_F(Requests, ObservationIsSwitchedOnByItsOwnRequests) {
    EXPECT_EQ(AskWithoutBody(kJObE), std::nullopt);
    EXPECT_TRUE(Inspector::ObserveClipSelection(Driver()));
    EXPECT_FALSE(Inspector::ObserveTimelineTimecode(Driver()));
    EXPECT_EQ(AskWithoutBody(kJObT), std::nullopt);
    EXPECT_TRUE(Inspector::ObserveTimelineTimecode(Driver()));
}

TEST_F(Requests, RefreshStopAndResetEmptyTheElementCache) {
    const auto keyedCache = [this] {
        return Inspector::AXUtils(Driver()).CachedElementsForApplication(
            CFSTR("com.apple.FinalCut"));
    };
    const std::pair<SInt32, Bytes> requests[] = {
        {kJAcF, Integers({1, 0, 0})}, {kJStO, Bytes()}, {kJXRs, Bytes()}};
    for (const auto& [code, body] : requests) {
        const CFMutableDictionaryRef cache = keyedCache();
        ASSERT_EQ(CFDictionaryGetCount(cache), 1) << "the application's key";
        Ask(code, body);
        EXPECT_EQ(CFDictionaryGetCount(cache), 0) << "request 0x" << std::hex << code;
    }
    const CFMutableDictionaryRef cache = keyedCache();
    Ask(kJAcF, Integers({0, 1, 1}));
    EXPECT_EQ(CFDictionaryGetCount(cache), 1) << "only the first flag refreshes";
}

TEST_F(Requests, StopClearsBothObservationsAndForgetsTheClipName) {
    AskWithoutBody(kJObE);
    AskWithoutBody(kJObT);
    std::strcpy(Inspector::LastClipName(Driver()), "Sunset");
    EXPECT_EQ(AskWithoutBody(kJStO), std::nullopt);
    EXPECT_FALSE(Inspector::ObserveClipSelection(Driver()));
    EXPECT_FALSE(Inspector::ObserveTimelineTimecode(Driver()));
    EXPECT_STREQ(Inspector::LastClipName(Driver()), "");
}

TEST_F(Requests, ResetForgetsTheClipNameAndGoesOnObserving) {
    AskWithoutBody(kJObE);
    AskWithoutBody(kJObT);
    std::strcpy(Inspector::LastClipName(Driver()), "Sunset");
    EXPECT_EQ(AskWithoutBody(kJXRs), std::nullopt);
    EXPECT_TRUE(Inspector::ObserveClipSelection(Driver()));
    EXPECT_TRUE(Inspector::ObserveTimelineTimecode(Driver()));
    EXPECT_STREQ(Inspector::LastClipName(Driver()), "");
}

TEST_F(Requests, NoOtherRequestEndsAnObservation) {
    AskWithoutBody(kJObE);
    AskWithoutBody(kJObT);
    const std::pair<SInt32, Bytes> requests[] = {
        {kJAcF, Integers({1, 0, 0})},
        {kJAcF, Integers({0, 0, 0})},
        {kJAcF, Integers({1, 1, 1})},
        {kJAcF, Integers({1})},
        {kJBtP, Integers({59})},
        {kJCPK, Integers({0x31, 0, 1})},
        {kJEPp, Integers({59})},
        {kJESI, Integers({60})},
        {kJElP, Integers({59})},
        {kJElV, Integers({1234})},
        {kJGRV, Integers({62})},
        {kJGlM, Bytes()},
        {kJObE, Bytes()},
        {kJObT, Bytes()},
        {kJPMS, Integers({1, 2, 0})},
        {kJPMC, Integers({1, 2, 0, 1})},
        {kJPME, Integers({1, 2, 0})},
        {kJPth, Bytes()},
        {kJSIS, Integers({60, 5})},
        {kJSRV, Integers({62, 2})},
        {kJTWP, Integers({0})},
        {kJWiP, Integers({1}) + Text("Board")},
        {kJXRs, Bytes()},
        {FourCharacterCode("ABCD"), Bytes()},
    };
    for (const auto& [code, body] : requests) {
        Ask(code, body);
        EXPECT_TRUE(Inspector::ObserveClipSelection(Driver())) << "request 0x" << std::hex << code;
        EXPECT_TRUE(Inspector::ObserveTimelineTimecode(Driver())) << "request " << code;
    }
}

TEST_F(Requests, NothingThatHappensToTheEditorEndsAnObservation) {
    AskWithoutBody(kJObE);
    AskWithoutBody(kJObT);
    for (const char* command :
         {R"({"command": "launch", "application": {"bundleID": "com.example.notes"}})",
          R"({"command": "activate", "application": null})",
          R"({"command": "activate", "application": "com.apple.FinalCut"})",
          R"({"command": "hang", "application": "com.apple.FinalCut"})",
          R"({"command": "trust", "trusted": false})",
          R"({"command": "quit", "application": "com.apple.FinalCut"})"}) {
        desktop_.Run(command);
        Driver().TimeoutCounter();
        EXPECT_TRUE(Inspector::ObserveClipSelection(Driver())) << command;
        EXPECT_TRUE(Inspector::ObserveTimelineTimecode(Driver())) << command;
    }
}

// The application in front is the one that the driver has been told of, in all that it does.
TEST_F(Requests, BeforeAnActivationIsAnnouncedTheyConcernTheApplicationBefore) {
    const platform_testing::UnderVariant late(platform_testing::Variant::lateActivation);
    desktop_.Run(R"({"command": "launch", "application": {"bundleID": "com.example.notes"}})");
    EXPECT_THAT(Ask(kJElV, Integers({59})), Optional(Integers({1})));
    EXPECT_THAT(Ask(kJWiP, Integers({1}) + Text("Board")), Optional(SizeIs(16)));
    test_support::AwaitActivations();
    EXPECT_EQ(Ask(kJElV, Integers({59})), std::nullopt);
    EXPECT_EQ(Ask(kJWiP, Integers({1}) + Text("Board")), std::nullopt);
}

TEST_F(Requests, StartingAnObservationWhileAnotherApplicationIsInFrontEndsThatOneAlone) {
    AskWithoutBody(kJObE);
    AskWithoutBody(kJObT);
    desktop_.Run(R"({"command": "launch", "application": {"bundleID": "com.example.notes"}})");
    test_support::AwaitActivations();
    AskWithoutBody(kJObE);
    EXPECT_FALSE(Inspector::ObserveClipSelection(Driver()));
    EXPECT_TRUE(Inspector::ObserveTimelineTimecode(Driver()));
    Ask(kJAcF, Integers({0, 1, 0}));
    EXPECT_FALSE(Inspector::ObserveTimelineTimecode(Driver()));
}
