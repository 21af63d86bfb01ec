// The companion's library and its sample against the real driver and desktop.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "companion/KRT9Companion.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/Paths.h"
#include "tests/support/RunLoop.h"
#include "tests/support/Stage.h"
#include "tests/support/WaitUntil.h"

namespace {

using krt9::Outcome;
using test_support::ChildProcess;
using test_support::Role;
using test_support::Stage;

constexpr krt9::Element kSnapping = 171;
constexpr krt9::Element kScale = 87;          // a text field with 100
constexpr krt9::Element kIndexButtons = 119;  // a radio group of four
constexpr krt9::Element kMissing = 99999;

class CompanionLibrary : public testing::Test {
  protected:
    CompanionLibrary() { stage.StartDesktop("editor-10.4.6.json"); }

    void OpenPort() {
        port = krt9::CompanionPort::Open(
            {.units = 2, .channels = 16},
            [this](const krt9::Message& message) { messages.push_back(message); });
        ASSERT_NE(port, nullptr);
    }

    bool Receives(krt9::MessageKind kind, const std::string& text = "") {
        return test_support::RunLoopUntil(
            [&] {
                return std::any_of(messages.begin(), messages.end(),
                                   [&](const krt9::Message& message) {
                                       return message.kind == kind && message.text == text;
                                   });
            },
            test_support::kPatience);
    }

    bool DesktopSees(const std::string& text) { return stage.Desktop().WaitForOutput(text); }

    test_support::HomeFolder home;
    Stage stage;
    krt9::Driver driver{test_support::kPatience};
    std::unique_ptr<krt9::CompanionPort> port;
    std::vector<krt9::Message> messages;
};

TEST_F(CompanionLibrary, ReadsControls) {
    stage.StartDriver();
    EXPECT_EQ(driver.Value(kSnapping).value, 1);
    EXPECT_EQ(driver.TextAsNumber(kScale).value, 100);
    EXPECT_EQ(driver.Position(159).value, (krt9::Point{27, 515}));
    EXPECT_EQ(driver.ParentPosition(159).value, (krt9::Point{0, 492}));
    EXPECT_EQ(driver.SelectedButton(kIndexButtons).value, 0U);
    const auto missing = driver.Value(kMissing);
    EXPECT_EQ(missing.outcome, Outcome::delivered);
    EXPECT_FALSE(missing);
}

TEST_F(CompanionLibrary, ChangesControls) {
    stage.StartDriver();
    EXPECT_EQ(driver.Press(kSnapping), Outcome::delivered);
    EXPECT_EQ(driver.Value(kSnapping).value, 0);
    EXPECT_EQ(driver.SetNumber(kScale, -10), Outcome::delivered);
    EXPECT_EQ(driver.TextAsNumber(kScale).value, -10);
    EXPECT_EQ(driver.SelectButton(kIndexButtons, 2), Outcome::delivered);
    EXPECT_EQ(driver.SelectedButton(kIndexButtons).value, 2U);
    EXPECT_EQ(driver.Press(kMissing), Outcome::delivered) << "and nothing came of it";
}

TEST_F(CompanionLibrary, PostsKeysAndGestures) {
    stage.StartDriver();
    EXPECT_EQ(driver.PostKey({.code = 0x0B, .modifiers = krt9::kCommand}, true),
              Outcome::delivered);
    EXPECT_TRUE(DesktopSees(R"("event":"keyDown","type":10,"keyCode":11,"flags":1048576)"));
    EXPECT_EQ(driver.PostKey({.code = 0x0B, .modifiers = krt9::kCommand}, false),
              Outcome::delivered);
    EXPECT_TRUE(DesktopSees(R"("event":"keyUp","type":11,"keyCode":11)"));
    krt9::GestureStep step{.x = 300, .y = 600, .modifiers = krt9::kOption};
    EXPECT_EQ(driver.StartGesture(step), Outcome::delivered);
    EXPECT_TRUE(DesktopSees(R"("event":"leftMouseDown","type":1,"position":[300,600])"));
    step.x = 420;
    EXPECT_EQ(driver.ContinueGesture(step), Outcome::delivered);
    EXPECT_EQ(driver.EndGesture(step), Outcome::delivered);
    EXPECT_TRUE(DesktopSees(R"("event":"leftMouseUp","type":2,"position":[420,600])"));
    EXPECT_EQ(driver.PointerPosition().value, (krt9::Point{420, 600}));
}

TEST_F(CompanionLibrary, FindsWindows) {
    OpenPort();
    stage.StartDriver();
    ASSERT_TRUE(Receives(krt9::MessageKind::language, "en"));
    const krt9::Frame frame{{400, 200}, 600, 300};
    EXPECT_EQ(driver.FindWindow("Background Tasks", false).value, frame);
    EXPECT_EQ(driver.FindWindow("Tasks", true).value, frame);
    EXPECT_FALSE(driver.FindWindow("Tasks", false));
    // Without a file of translations each key is its own translation.
    const std::vector<krt9::Candidate> candidates = {{"Viewer", {}}, {"Background Tasks", {}}};
    EXPECT_EQ(driver.FindTarget(candidates).value, (krt9::TargetFrame{1, frame}));
    const std::vector<krt9::Candidate> second = {{"Final Cut Pro", "Background Tasks"}};
    EXPECT_EQ(driver.FindTarget(second).value, (krt9::TargetFrame{0, frame}));
    const std::vector<krt9::Candidate> unencodable = {{"\xE6\xB8\xAF", {}}};
    EXPECT_EQ(driver.FindTarget(unencodable).outcome, Outcome::unencodable);
}

TEST_F(CompanionLibrary, ReceivesTheFourMessages) {
    OpenPort();
    stage.StartDriver();
    EXPECT_TRUE(Receives(krt9::MessageKind::language, "en"));
    EXPECT_TRUE(Receives(krt9::MessageKind::statusQuery));
    EXPECT_EQ(driver.RefreshAndObserve({.frontApplication = true, .timecode = true, .clip = true}),
              Outcome::delivered);
    EXPECT_TRUE(Receives(krt9::MessageKind::clip, krt9::kNoClipSelected));
    EXPECT_TRUE(Receives(krt9::MessageKind::timecode, "01:00:00:00"));
    messages.clear();
    EXPECT_EQ(driver.ForgetLast(), Outcome::delivered);
    EXPECT_TRUE(Receives(krt9::MessageKind::clip, krt9::kNoClipSelected));
    messages.clear();
    EXPECT_EQ(driver.ObserveClip(), Outcome::delivered);
    EXPECT_EQ(driver.ObserveTimecode(), Outcome::delivered);
    EXPECT_TRUE(Receives(krt9::MessageKind::clip, krt9::kNoClipSelected));
    EXPECT_TRUE(Receives(krt9::MessageKind::timecode, "01:00:00:00"));
    EXPECT_EQ(driver.StopObserving(), Outcome::delivered);
}

TEST_F(CompanionLibrary, FindsADriverThatWasStartedAnew) {
    EXPECT_EQ(driver.Ping(), Outcome::noDriver);
    EXPECT_FALSE(driver.IsConnected());
    stage.StartDriver();
    EXPECT_EQ(driver.Ping(), Outcome::delivered);
    EXPECT_EQ(stage.Interrupt(Role::driver), 0);
    stage.Restart(Role::driver);
    EXPECT_TRUE(test_support::WaitUntil([this] { return driver.Ping() == Outcome::delivered; }));
    EXPECT_TRUE(driver.IsConnected());
}

TEST_F(CompanionLibrary, LeavesANameThatIsTaken) {
    stage.StartCompanion();
    EXPECT_EQ(krt9::CompanionPort::Open({}, [](const krt9::Message&) {}), nullptr);
}

TEST_F(CompanionLibrary, SampleFollowsTheEditor) {
    ASSERT_EQ(Stage::Control({"desktop", "set", "_NS:171", "AXValue", "0"}).status, 0);
    ChildProcess sample(KRT9_BINARIES "/krt9-follow-editor");
    ASSERT_TRUE(sample.WaitForOutput("start the driver now"));
    stage.StartDriver();
    EXPECT_TRUE(sample.WaitForOutput("language: en\nsnapping is switched on: 1\n"));
    EXPECT_TRUE(sample.WaitForOutput("clip: no clip selected\n"));
    EXPECT_TRUE(sample.WaitForOutput("timecode: 01:00:00:00\n"));
    ASSERT_EQ(Stage::Control({"desktop", "select-clip", "Gulls"}).status, 0);
    EXPECT_TRUE(sample.WaitForOutput("clip: Gulls\n"));
}

}  // namespace
