// What one tick does, step by step.

#include <utility>

#include "tests/support/FrontApplicationState.h"
#include "tests/unit/driver/TickedDriver.h"

namespace {

using platform_testing::LogCapture;
using test_support::Bytes;
using test_support::SetFrontApplication;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Tick : public TickedDriver {
  protected:
    int& Profile() { return DriverInspector::Profile(*driver_); }
    bool& IndexChanged() { return DriverInspector::TimelineIndexChanged(*driver_); }

    unsigned long ExchangesOfATick() {
        const unsigned long before = desktop_link::ExchangeCount();
        RunTicks();
        return desktop_link::ExchangeCount() - before;
    }
};

class TickWithController : public TickedDriver {
  protected:
    TickWithController() : TickedDriver(SceneWithController()) {}
};

const Bytes kStatus(28, 0);

// --- order ---------------------------------------------------------------------------------------

TEST_F(TickWithController, ReportsTheLanguageThenTheClipThenTheTimecodeThenAsksForTheStatus) {
    ObserveBoth();
    RunTicks();
    EXPECT_THAT(Sent(), ElementsAre(kJSLg, kJFSC, kJFTC, kStus));
}

TEST_F(Tick, FollowsTheVersionBeforeItObserves) {
    // Only the row of 10.4.1 finds this editor's timecode.
    Profile() = 5;
    ObserveBoth();
    RunTicks();
    EXPECT_EQ(Profile(), 4);
    EXPECT_THAT(Sent(), ElementsAre(kJSLg, kJFSC, kJFTC));
}

// --- language ------------------------------------------------------------------------------------

TEST_F(Tick, LanguageIsSentOnce) {
    RunTicks(50);
    EXPECT_THAT(Sent(), ElementsAre(kJSLg));
    EXPECT_THAT(LanguageTag::Current().asked, SizeIs(1));
    EXPECT_TRUE(DriverInspector::LocaleSent(*driver_));
}

TEST_F(Tick, LanguageIsRetriedOnEveryTickWhileItCannotBeHad) {
    LanguageTag::Current().text.reset();
    RunTicks(3);
    LanguageTag::Current().text = std::string(32, 'x');
    RunTicks(3);
    EXPECT_THAT(LanguageTag::Current().asked, SizeIs(6));
    EXPECT_FALSE(DriverInspector::LocaleSent(*driver_));
    EXPECT_THAT(Sent(), IsEmpty());
    LanguageTag::Current().text = "de";
    RunTicks(3);
    EXPECT_THAT(Sent(), ElementsAre(kJSLg));
    EXPECT_STREQ(DriverInspector::Language(*driver_), "de");
}

TEST_F(Tick, LanguageCountsAsSentAlthoughNobodyReceivedIt) {
    companion_.reset();
    RunTicks();
    EXPECT_TRUE(DriverInspector::LocaleSent(*driver_));
    RunTicks();
    EXPECT_THAT(LanguageTag::Current().asked, SizeIs(1));
}

// --- profile -------------------------------------------------------------------------------------

TEST_F(Tick, ProfileFollowsTheVersionOfTheEditor) {
    const std::pair<const char*, int> versions[] = {
        {"10.4.6", 5}, {"10.4.60", 5}, {"10.4.5", 5}, {"10.4.1", 4}, {"10.4.10", 4}, {"10.4", 4},
        {"10.3.4", 3}, {"10.3.40", 3}, {"10.3.2", 2}, {"10.3", 2},   {"10.2", 1},    {"10.2.3", 1},
        {"10.1", 0},   {"10.1.4", 0},  {"10.10", 0},  {"10.0.9", 5}, {"10", 5},      {"10.5", 5},
        {"11.0", 5},   {"", 5},        {" 10.4", 5},  {"110.4", 5},  {"10,4", 5},
    };
    for (const auto& [version, profile] : versions) {
        SetFrontApplication({"com.apple.FinalCut", version, 501});
        Profile() = -7;
        RunTicks();
        EXPECT_EQ(Profile(), profile) << "version " << version;
    }
}

TEST_F(Tick, AnotherApplicationWhoseVersionStartsWith10_2SetsTheProfileTo1) {
    Activate("com.example.player");
    RunTicks();
    EXPECT_EQ(Profile(), 1);
}

TEST_F(Tick, AnotherApplicationNormallySetsTheProfileBackTo5) {
    RunTicks();
    ASSERT_EQ(Profile(), 4);
    SetFrontApplication({"com.example.notes", "2.1", 507});
    RunTicks();
    EXPECT_EQ(Profile(), 5);
}

TEST_F(Tick, ProfileComesBackWithTheEditor) {
    Activate("com.example.player");
    RunTicks();
    Activate("com.apple.FinalCut");
    RunTicks();
    EXPECT_EQ(Profile(), 4);
}

TEST_F(Tick, UnreadableVersionLeavesTheProfileUnchanged) {
    Activate("com.example.unversioned");
    for (const int profile : {0, 3, 5}) {
        Profile() = profile;
        RunTicks();
        EXPECT_EQ(Profile(), profile);
    }
}

TEST_F(Tick, ApplicationWithoutBundleIdentifierLeavesTheProfileAndObservesNothing) {
    RunTicks();
    Activate("pid:506");  // the version of the editor is still known
    ObserveBoth();
    ASSERT_TRUE(DriverInspector::ObserveClipSelection(*driver_)) << "on without identifier, too";
    IndexChanged() = true;
    Profile() = 1;
    Sent();
    EXPECT_EQ(ExchangesOfATick(), 0u);
    EXPECT_EQ(Profile(), 1);
    EXPECT_TRUE(IndexChanged());
    EXPECT_THAT(Sent(), IsEmpty());
}

// --- observation ---------------------------------------------------------------------------------

TEST_F(Tick, ObservesOnlyWhileTheEditorIsInFront) {
    ObserveBoth();
    for (const char* application :
         {"com.apple.FinalCutX", "com.apple.finalcut", "com.example.player", "pid:506"}) {
        Activate(application);
        IndexChanged() = true;
        EXPECT_EQ(ExchangesOfATick(), 0u) << application;
        EXPECT_TRUE(IndexChanged()) << application;
    }
    EXPECT_THAT(Sent(), ElementsAre(kJSLg));
}

TEST_F(Tick, LongerIdentifierAndOneOfAnotherCaseStillSetTheProfile) {
    Activate("com.apple.FinalCutX");
    RunTicks();
    EXPECT_EQ(Profile(), 2);
    Activate("com.apple.finalcut");
    RunTicks();
    EXPECT_EQ(Profile(), 3);
}

TEST_F(Tick, ObservesNothingThatWasNotAskedFor) {
    IndexChanged() = true;
    EXPECT_EQ(ExchangesOfATick(), 0u);
    EXPECT_TRUE(IndexChanged());
    EXPECT_THAT(Sent(), ElementsAre(kJSLg));
}

TEST_F(Tick, ObservesTheClipAlone) {
    driver_->ObserveFCPXClipSelectionChange();
    RunTicks();
    EXPECT_THAT(Sent(), ElementsAre(kJSLg, kJFSC));
}

TEST_F(Tick, ObservesTheTimecodeAlone) {
    driver_->ObserveFCPXTimelineTimecode();
    RunTicks();
    EXPECT_THAT(Sent(), ElementsAre(kJSLg, kJFTC));
}

TEST_F(Tick, ChangeOfTheTimelineIndexIsClearedAfterEitherObservation) {
    driver_->ObserveFCPXClipSelectionChange();
    IndexChanged() = true;
    RunTicks();
    EXPECT_FALSE(IndexChanged());
    DriverInspector::ObserveClipSelection(*driver_) = false;
    driver_->ObserveFCPXTimelineTimecode();
    IndexChanged() = true;
    RunTicks();
    EXPECT_FALSE(IndexChanged());
}

TEST_F(Tick, ObservationStaysOnWhileAnotherApplicationIsInFrontAndGoesOnAfterwards) {
    ObserveBoth();
    Activate("com.example.player");
    RunTicks(5);
    Activate("com.apple.FinalCut");
    RunTicks();
    EXPECT_THAT(Sent(), ElementsAre(kJSLg, kJFSC, kJFTC));
}

// --- status --------------------------------------------------------------------------------------

TEST_F(TickWithController, StatusIsAskedForOnEveryTickUntilItIsThere) {
    ASSERT_TRUE(DriverInspector::Connected(*driver_));
    RunTicks(3);
    EXPECT_THAT(Sent(), ElementsAre(kJSLg, kStus, kStus, kStus));
    companion_->reply = kStatus;
    RunTicks(3);
    EXPECT_THAT(Sent(), ElementsAre(kStus));
    EXPECT_TRUE(DriverInspector::StatusValid(*driver_));
}

TEST_F(TickWithController, StatusReplyThatIsTooShortIsOneLogLineAndAskedForAgainByTheNextTick) {
    companion_->reply = Bytes(27, 1);
    const LogCapture log;
    RunTicks();
    EXPECT_THAT(log.SystemTexts(),
                ElementsAre("controller status ignored: reply of 27 bytes, 28 are needed\n"));
    EXPECT_FALSE(DriverInspector::StatusValid(*driver_));
    companion_->reply = kStatus;
    RunTicks(2);
    EXPECT_THAT(Sent(), ElementsAre(kJSLg, kStus, kStus));
    EXPECT_THAT(log.SystemTexts(), SizeIs(1));
    EXPECT_TRUE(DriverInspector::StatusValid(*driver_));
}

TEST_F(TickWithController, StatusIsAskedForWhateverIsInFront) {
    DriverInspector::LocaleSent(*driver_) = true;
    for (const char* application : {"pid:506", "com.example.unversioned", "com.apple.FinalCutX"}) {
        Activate(application);
        RunTicks();
    }
    EXPECT_THAT(Sent(), ElementsAre(kStus, kStus, kStus));
}

TEST_F(Tick, WithoutControllerTheStatusIsNeverAskedFor) {
    ASSERT_FALSE(DriverInspector::Connected(*driver_));
    companion_->reply = kStatus;
    RunTicks(100);
    EXPECT_THAT(Sent(), ElementsAre(kJSLg));
    EXPECT_FALSE(DriverInspector::StatusValid(*driver_));
}

TEST_F(Tick, ControllerPluggedInLaterIsNotConnected) {
    desktop_.Run(R"({"command": "plug", "device": {"name": "KRT-9 USB", "entities": [
        {"name": "Private", "sources": ["Private"], "destinations": ["Private"]}]}})");
    RunTicks(10);
    EXPECT_FALSE(DriverInspector::Connected(*driver_));
    EXPECT_THAT(Sent(), ElementsAre(kJSLg));
}

// --- what it leaves ------------------------------------------------------------------------------

TEST_F(TickWithController, LeavesNoObjectBehindAndLogsNothing) {
    ObserveBoth();
    RunTicks(2);
    const LogCapture log;
    EXPECT_EQ(platform_testing::LeftOverBy([this] {
                  RunTicks();
                  RunLoopFor(0);
              }),
              "");
    EXPECT_THAT(log.Lines(), IsEmpty());
}

}  // namespace
