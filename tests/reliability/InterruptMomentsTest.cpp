// An interrupt at each of the moments at which something is in progress: the driver interrupts
// itself there, by a variant of the platform layer. It finishes what it is doing, ends with status
// 0, and leaves nothing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/support/Stage.h"

namespace {

using test_support::Stage;
using Clock = std::chrono::steady_clock;

constexpr char kScene[] = R"({
    "front": "com.apple.FinalCut", "applications": [
      {"bundleID": "com.apple.FinalCut", "windows": [
        {"AXRole": "AXWindow", "AXTitle": "Only", "AXChildren": [
          {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 3}]}]}]})";

class InterruptMoments : public testing::Test {
  protected:
    void Begin(const std::string& scene, const char* variant) {
        stage.StartDesktop(scene);
        filesBefore = stage.Session().Files();
        stage.StartDriver({{"KRT9_PLATFORM_VARIANT", variant}});
    }

    void ExpectAGoodEnd() {
        EXPECT_EQ(stage.Driver().WaitForExit(), 0) << stage.Driver().StandardError();
        EXPECT_THAT(stage.Session().Files(), testing::UnorderedElementsAreArray(filesBefore));
    }

    Stage stage;
    std::vector<std::string> filesBefore;
};

TEST_F(InterruptMoments, InAnAccessibilityCallTheRequestIsAnsweredFirst) {
    Begin(kScene, "interrupt-in-call");
    const auto value = stage.Control({"value", "59"});
    EXPECT_EQ(value.status, 0) << value.standardError;
    EXPECT_EQ(value.standardOutput, "3\n");
    ExpectAGoodEnd();
}

TEST_F(InterruptMoments, InAnAccessibilityCallTheTickIsFinishedFirst) {
    stage.StartCompanion();
    Begin("editor-10.4.6.json", "interrupt-in-call");
    EXPECT_EQ(stage.Control({"observe", "timecode"}).status, 0);
    EXPECT_TRUE(stage.Companion().WaitForOutput("JFTC timecode: "))
        << stage.Companion().StandardOutput();
    ExpectAGoodEnd();
}

// What the first tick does always: it tells the companion the language.
TEST_F(InterruptMoments, InTheTimersCallbackTheTickIsDoneFirst) {
    stage.StartCompanion();
    Begin(kScene, "interrupt-in-tick");
    EXPECT_TRUE(stage.Companion().WaitForOutput("JSLg")) << stage.Companion().StandardOutput();
    ExpectAGoodEnd();
}

// Stage waits for the last line that the constructor logs.
TEST_F(InterruptMoments, OnceThePortIsMadeTheDriverIsConstructedFirst) {
    Begin(kScene, "interrupt-after-port");
    ExpectAGoodEnd();
}

// The signal is delivered when the call to the application ends: here, after a second.
TEST_F(InterruptMoments, WhileAnApplicationHangsTheCallToItEndsFirst) {
    Begin(kScene, "interrupt-in-call,hang-for-a-second");
    EXPECT_EQ(stage.Control({"desktop", "hang", "com.apple.FinalCut"}).status, 0);
    const auto asked = Clock::now();
    EXPECT_EQ(stage.Control({"value", "59"}).status, 4) << "the request is answered, with nothing";
    ExpectAGoodEnd();
    EXPECT_GE(Clock::now() - asked, std::chrono::milliseconds(900)) << "the call was cut in half";
}

TEST(Variants, NameThatIsNoneEndsAProgramWithOneLine) {
    const auto result = test_support::RunProcess(
        Stage::ControlPath(), {"--help"}, {{"KRT9_PLATFORM_VARIANT", "missing-is-null,no-such"}});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(result.standardError, "KRT9_PLATFORM_VARIANT: no variant is named \"no-such\"\n");
}

}  // namespace
