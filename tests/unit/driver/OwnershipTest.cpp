// What a tick and what each outbound message leave over: nothing.

#include "tests/support/LongForm.h"
#include "tests/unit/driver/TickedDriver.h"

namespace {

using test_support::Bytes;
using testing::ElementsAre;

const int kRepetitions = test_support::Repetitions(200, 10'000);

class DriverOwnership : public TickedDriver {
  protected:
    DriverOwnership() : TickedDriver(SceneWithController()) {}

    // After a first round, in which Foundation fills its caches.
    static std::string LeftOverBy(const std::function<void()>& operation) {
        return platform_testing::LeftOverBy(operation, kRepetitions);
    }

    void Show(const char* element, const char* attribute, const std::string& text) {
        desktop_.Run(std::string(R"({"command": "set", "element": ")") + element +
                     R"(", "attribute": ")" + attribute + R"(", "value": ")" + text + "\"}");
    }

    int round_ = 0;
};

TEST_F(DriverOwnership, LanguageLeavesNothingOver) {
    EXPECT_EQ(LeftOverBy([this] {
                  ASSERT_TRUE(driver_->GetLocale());
                  ASSERT_THAT(Sent(), ElementsAre(kJSLg));
              }),
              "");
}

TEST_F(DriverOwnership, StatusQueryAndItsReplyLeaveNothingOver) {
    companion_->reply = Bytes(28, 1);
    EXPECT_EQ(LeftOverBy([this] {
                  driver_->RequestKRTStatus();
                  ASSERT_THAT(Sent(), ElementsAre(kStus));
              }),
              "");
}

TEST_F(DriverOwnership, NewClipNameLeavesNothingOver) {
    driver_->ObserveFCPXClipSelectionChange();
    RunTicks();
    Sent();
    EXPECT_EQ(LeftOverBy([this] {
                  Show("_NS:100", "AXValue", "Clip " + std::to_string(++round_));
                  RunTicks();
                  ASSERT_THAT(Sent(), testing::Contains(kJFSC));
              }),
              "");
}

TEST_F(DriverOwnership, NewTimecodeLeavesNothingOver) {
    driver_->ObserveFCPXTimelineTimecode();
    RunTicks();
    Sent();
    EXPECT_EQ(LeftOverBy([this] {
                  Show("/0/1/0", "AXValueDescription", "01:00:00:" + std::to_string(++round_));
                  RunTicks();
                  ASSERT_THAT(Sent(), testing::Contains(kJFTC));
              }),
              "");
}

TEST_F(DriverOwnership, TickOverAStillSceneLeavesNothingOver) {
    ObserveBoth();
    RunTicks(2);
    EXPECT_EQ(LeftOverBy([this] { RunTicks(); }), "");
}

TEST_F(DriverOwnership, TickThatFindsAnotherApplicationInFrontLeavesNothingOver) {
    ObserveBoth();
    RunTicks(2);
    EXPECT_EQ(LeftOverBy([this] {
                  Activate("com.example.player");
                  RunTicks();
                  Activate("com.apple.FinalCut");
                  RunTicks();
              }),
              "");
}

}  // namespace
