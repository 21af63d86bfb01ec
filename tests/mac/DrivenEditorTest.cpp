// The real driver, asked by krt9ctl, beside an application with the controls of an editor.
#include <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <random>
#include <thread>

#include "tests/support/ChildProcess.h"
#include "tests/support/Paths.h"

namespace {

using test_support::ChildProcess;

const std::string kStandIn = KRT9_BINARIES "/StandInEditor.app/Contents/MacOS/StandInEditor";
const std::string kDriver = KRT9_BINARIES "/KRT9Background.app/Contents/MacOS/KRT9Background";
const std::string kControl = KRT9_BINARIES "/krt9ctl";

// What krt9ctl prints, without the end of its line; "status N: ..." unless it ends with status 0.
std::string Ask(const std::vector<std::string>& arguments) {
    const auto [status, output, problem] = test_support::RunProcess(kControl, arguments);
    const std::string text = output + problem;
    const std::string line = text.substr(0, text.find_last_not_of('\n') + 1);
    return status == 0 ? line : "status " + std::to_string(status) + ": " + line;
}

class DrivenEditor : public testing::Test {
  protected:
    void SetUp() override {
        if (!AXIsProcessTrustedWithOptions(nullptr)) {
            GTEST_SKIP() << "needs the accessibility permission: System Settings, Privacy & "
                            "Security, Accessibility, for the application that runs this test";
        }
        if (!std::filesystem::exists(kControl)) {
            GTEST_SKIP() << "needs krt9ctl, which is left out without CLI11";
        }
        if (Ask({"ping"}) == "") {
            GTEST_SKIP() << "a driver runs already: end it first";
        }
        ASSERT_TRUE(standIn_.emplace(kStandIn).WaitForOutput("ready", 20)) << standIn_->Output();
        driver_.emplace(kDriver);
        for (int tries = 0; tries < 50 && Ask({"ping"}) != ""; ++tries) {
        }
        ASSERT_EQ(Ask({"ping"}), "") << driver_->Output();
    }

    ChildProcess& StandIn() { return *standIn_; }
    ChildProcess& Driver() { return *driver_; }

  private:
    std::optional<ChildProcess> standIn_;
    std::optional<ChildProcess> driver_;
};

TEST_F(DrivenEditor, ACheckBoxIsReadAndPressed) {
    EXPECT_EQ(Ask({"value", "159"}), "1");
    EXPECT_EQ(Ask({"press", "159"}), "");
    EXPECT_TRUE(StandIn().WaitForOutput("pressed _NS:159"));
    EXPECT_EQ(Ask({"value", "159"}), "0");
}

TEST_F(DrivenEditor, AButtonIsPressed) {
    EXPECT_EQ(Ask({"press", "160"}), "");
    EXPECT_TRUE(StandIn().WaitForOutput("pressed _NS:160"));
}

TEST_F(DrivenEditor, ARadioGroupSaysWhichButtonIsSelectedAndTakesAnother) {
    EXPECT_EQ(Ask({"selected", "119"}), "0");
    EXPECT_EQ(Ask({"select", "119", "2"}), "");
    EXPECT_TRUE(StandIn().WaitForOutput("pressed _NS:117"));
    EXPECT_EQ(Ask({"selected", "119"}), "2");
}

TEST_F(DrivenEditor, ANumberIsTypedIntoATextField) {
    EXPECT_EQ(Ask({"number", "87"}), "100");
    EXPECT_EQ(Ask({"set", "87", "120"}), "");
    EXPECT_TRUE(StandIn().WaitForOutput("confirmed 120 _NS:87"));
    EXPECT_EQ(Ask({"number", "87"}), "120");
}

TEST_F(DrivenEditor, PositionsCountFromTheTopLeftOfTheMainDisplay) {
    int x = 0;
    int y = 0;
    int parentX = 0;
    int parentY = 0;
    const std::string position = Ask({"position", "160"});
    const std::string parent = Ask({"parent-position", "160"});
    ASSERT_EQ(std::sscanf(position.c_str(), "%d,%d", &x, &y), 2) << position;
    ASSERT_EQ(std::sscanf(parent.c_str(), "%d,%d", &parentX, &parentY), 2) << parent;
    EXPECT_GE(x, parentX);
    EXPECT_GT(y, parentY);
}

TEST_F(DrivenEditor, TheWindowIsFoundByItsTitle) {
    EXPECT_NE(Ask({"window", "Final Cut Pro"}).find(" size 700x"), std::string::npos);
}

TEST_F(DrivenEditor, AControlThatIsNotThereHasNoValue) {
    EXPECT_EQ(Ask({"value", "99999"}).substr(0, 9), "status 4:");
}

TEST_F(DrivenEditor, ClipAndTimecodeAreReported) {
    Driver().Signal(SIGINT);  // a driver looks for its companion once, when it starts
    Driver().WaitForExit();
    ChildProcess companion(kControl, {"watch", "--units", "2", "--channels", "16"});
    ASSERT_TRUE(companion.WaitForOutput("VEK_KRT9")) << companion.Output();
    ChildProcess driver(kDriver);
    ASSERT_TRUE(companion.WaitForOutput("status query")) << driver.Output();
    EXPECT_EQ(Ask({"refresh", "--profile", "--timecode", "--clip"}), "");
    EXPECT_TRUE(companion.WaitForOutput("clip: Harbour Wide")) << companion.Output();
    EXPECT_TRUE(companion.WaitForOutput("timecode: 01:00:00:00")) << companion.Output();
}

// What the driver's signposts, the system's log tool and krt9ctl's reader of it make together.
TEST_F(DrivenEditor, TraceShowsRequestsAndTicks) {
    ChildProcess trace(kControl, {"trace", "--all"});
    if (!trace.WaitForOutput("tracing the driver\n", 20)) {
        GTEST_SKIP() << "needs an administrator, to whom the log tool shows signposts: "
                     << trace.Output();
    }
    EXPECT_TRUE(trace.WaitForOutput(" tick ")) << trace.Output();
    EXPECT_EQ(Ask({"value", "159"}), "1");
    EXPECT_TRUE(trace.WaitForOutput("request JElV _NS:159 replied: 1, ")) << trace.Output();
    trace.Signal(SIGINT);
    EXPECT_EQ(trace.WaitForExit(), 0);
}

// From the first line that it prints on, the handler is there.
TEST(InterruptOnMac, AtAnyMomentEndsTheDriverWithStatusZero) {
    std::mt19937 random(20260101);
    std::uniform_int_distribution<int> milliseconds(0, 400);
    for (int round = 0; round < 20; ++round) {
        ChildProcess driver(kDriver);
        ASSERT_TRUE(driver.WaitForOutput("com.solvanto")) << driver.Output();
        const int delay = milliseconds(random);
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        driver.Signal(SIGINT);
        EXPECT_EQ(driver.WaitForExit(2), 0) << "interrupted after " << delay << " ms";
    }
}

}  // namespace
