#include "tests/unit/accessibility/ObservationTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

SentMessage Timecode(const std::string& text) {
    return TextMessage(kJFTC, text);
}

class TimecodeObservation : public ObservationTest {
  protected:
    TimecodeObservation() { driver_->ObserveFCPXTimelineTimecode(); }

    ElementReference ShowPlayhead(const Value& text, const std::string& area = "_NS:393") {
        ElementReference playhead = editor_.Add("AXValueIndicator");
        editor_.Set(playhead, "AXDescription", Text("Playhead"));
        editor_.Set(playhead, "AXValueDescription", text);
        ElementReference skimmer = editor_.Add("AXValueIndicator");
        editor_.Set(skimmer, "AXDescription", Text("Skimmer"));
        editor_.Set(skimmer, "AXValueDescription", Text("of the skimmer"));
        editor_.ShowWindow({editor_.Add("AXSplitGroup", "",
                                        {editor_.Add("AXLayoutArea", area, {skimmer, playhead})})});
        return playhead;
    }
    std::vector<SentMessage> Tick() {
        driver_->ObserveFCPXTimelineTimecodeTask();
        return Sent();
    }
    std::string LastTimecode() { return TextOf(DriverInspector::LastTimecode(*driver_)); }
    bool& IsOn() { return DriverInspector::ObserveTimelineTimecode(*driver_); }
};

TEST_F(TimecodeObservation, SendsTheTimecodeWhenItChanges) {
    auto playhead = ShowPlayhead(Text("01:00:00:00"));
    EXPECT_THAT(Tick(), ElementsAre(Timecode("01:00:00:00")));
    EXPECT_THAT(Tick(), IsEmpty());
    editor_.Set(playhead, "AXValueDescription", Text("01:00:00:01"));
    EXPECT_THAT(Tick(), ElementsAre(Timecode("01:00:00:01")));
}

TEST_F(TimecodeObservation, StartingAgainSendsTheFirstReadableTimecodeAlways) {
    ShowPlayhead(Text("01:00:00:00"));
    Tick();
    driver_->ObserveFCPXTimelineTimecode();
    EXPECT_EQ(LastTimecode(), "");
    EXPECT_THAT(Tick(), ElementsAre(Timecode("01:00:00:00")));
}

TEST_F(TimecodeObservation, IsOnOnlyWhileTheEditorOrAnApplicationWithoutIdentifierIsInFront) {
    EXPECT_TRUE(IsOn());
    test_support::SetFrontApplication({"com.apple.Finder", "10.4.6", 7});
    driver_->ObserveFCPXTimelineTimecode();
    EXPECT_FALSE(IsOn());
    test_support::SetFrontApplication({nullptr, nullptr, 7});
    driver_->ObserveFCPXTimelineTimecode();
    EXPECT_TRUE(IsOn());
}

TEST_F(TimecodeObservation, WhileOffNothingIsAsked) {
    ShowPlayhead(Text("01:00:00:00"));
    IsOn() = false;
    EXPECT_EQ(ExchangesOf([&] { driver_->ObserveFCPXTimelineTimecodeTask(); }), 0U);
}

TEST_F(TimecodeObservation, EachProfileHasItsOwnLayoutArea) {
    const char* areas[] = {"_NS:99", "_NS:99", "_NS:16", "_NS:363", "_NS:352", "_NS:393"};
    for (int row = 0; row < 6; ++row) {
        Profile() = row;
        driver_->ObserveFCPXTimelineTimecode();
        ShowPlayhead(Text("01:00"), areas[row]);
        EXPECT_THAT(Tick(), ElementsAre(Timecode("01:00"))) << "row " << row;
    }
}

TEST_F(TimecodeObservation, AMissingAreaOrPlayheadSendsNothing) {
    editor_.ShowWindow({});
    EXPECT_THAT(Tick(), IsEmpty());
    editor_.ShowWindow({editor_.Add("AXLayoutArea", "_NS:393")});
    EXPECT_THAT(Tick(), IsEmpty());
    editor_.ShowWindow({editor_.Add("AXLayoutArea", "_NS:393", {editor_.Add("AXValueIndicator")})});
    EXPECT_THAT(Tick(), IsEmpty());
    EXPECT_EQ(LastTimecode(), "");
}

TEST_F(TimecodeObservation, ATextThatCannotBeReadSendsNothing) {
    auto playhead = ShowPlayhead(Text("01:00"));
    Tick();
    for (const Value& text : {Number(5), Null(), Failing(-25212), List({})}) {
        editor_.Set(playhead, "AXValueDescription", text);
        EXPECT_THAT(Tick(), IsEmpty());
    }
    EXPECT_EQ(LastTimecode(), "01:00");
}

TEST_F(TimecodeObservation, AnEmptyTimecodeIsSentWhenItReplacesAnother) {
    auto playhead = ShowPlayhead(Text(""));
    EXPECT_THAT(Tick(), IsEmpty()) << "it equals the empty text that observation starts with";
    editor_.Set(playhead, "AXValueDescription", Text("01:00"));
    Tick();
    editor_.Set(playhead, "AXValueDescription", Text(""));
    EXPECT_THAT(Tick(), ElementsAre(Timecode("")));
}

TEST_F(TimecodeObservation, ATimecodeThatCannotBeConvertedIsRememberedAndNotRetried) {
    auto playhead = ShowPlayhead(Text("01:00"));
    Tick();
    editor_.Set(playhead, "AXValueDescription", Text("\xE6\x97\xA5"));
    EXPECT_THAT(Tick(), IsEmpty());
    EXPECT_EQ(LastTimecode(), "\xE6\x97\xA5");
    editor_.Set(playhead, "AXValueDescription", Text("01:00"));
    EXPECT_THAT(Tick(), ElementsAre(Timecode("01:00")));
}

TEST_F(TimecodeObservation, ATimecodeOf63BytesIsSentAndALongerOneRememberedOnly) {
    auto playhead = ShowPlayhead(Text(std::string(63, '7')));
    EXPECT_THAT(Tick(), ElementsAre(Timecode(std::string(63, '7'))));
    std::string tooLong(100'000, '7');
    editor_.Set(playhead, "AXValueDescription", Text(tooLong));
    EXPECT_THAT(Tick(), IsEmpty());
    EXPECT_EQ(LastTimecode(), tooLong);
}

TEST_F(TimecodeObservation, IsRememberedThoughNobodyListens) {
    StopCompanion();
    ShowPlayhead(Text("01:00"));
    driver_->ObserveFCPXTimelineTimecodeTask();
    EXPECT_EQ(LastTimecode(), "01:00");
}

}  // namespace
