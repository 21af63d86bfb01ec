// The driver as a process: how it starts, in which order it does its steps, and how it ends.

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>

#include "tests/support/Files.h"
#include "tests/support/ProcessState.h"
#include "tests/support/Stage.h"

namespace {

using test_support::ContentOf;
using test_support::LinesOf;
using test_support::Role;
using test_support::Stage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// The companion's port, owned by the test: it exists even if it is not served.
class CompanionPort {
  public:
    CompanionPort()
        : port_(CFMessagePortCreateLocal(kCFAllocatorDefault, CFSTR("VEK_KRT9"), Answer, nullptr,
                                         nullptr)) {}
    ~CompanionPort() {
        CFMessagePortInvalidate(port_);
        CFRelease(port_);
    }

  private:
    static CFDataRef Answer(CFMessagePortRef, SInt32, CFDataRef, void*) { return nullptr; }

    CFMessagePortRef port_;
};

TEST(LifeCycle, InterruptEndsTheProcessWithStatusZeroAndLeavesNothingBehind) {
    Stage stage;
    stage.StartDriver();
    EXPECT_EQ(stage.Interrupt(Role::driver), 0) << stage.Driver().StandardError();
    EXPECT_THAT(stage.Session().Files(), testing::IsEmpty());
}

TEST(LifeCycle, TerminateSignalIsNotHandled) {
    Stage stage;
    stage.StartDriver();
    stage.Driver().Signal(SIGTERM);
    EXPECT_EQ(stage.Driver().WaitForExit(), 128 + SIGTERM);
}

TEST(LifeCycle, MainConstructorAndDestructorDoTheirStepsInOrder) {
    Stage stage;
    CompanionPort companion;
    const std::filesystem::path trace = stage.Session().Path() / "trace";
    stage.StartDriver({{"LD_PRELOAD", KRT9_CALL_TRACE_LIBRARY}, {"KRT9_CALL_TRACE", trace}});
    // A request that is answered proves that the run loop runs.
    stage.Control({"pointer"});
    EXPECT_EQ(stage.Interrupt(Role::driver), 0) << stage.Driver().StandardError();
    EXPECT_THAT(
        LinesOf(ContentOf(trace)),
        ElementsAre("signal SIGINT", "create local port", "create element cache",
                    "create empty event", "create event source", "log version",
                    "create last timecode", "add source in common modes", "sign in to MIDI",
                    "create remote port", "ask for trust", "add timer in default mode",
                    "observe front application", "run loop runs", "remove timer from default mode",
                    "release remote port", "release event source", "release element cache",
                    "invalidate local port"));
}

TEST(LifeCycle, RunLoopThatReturnsDestroysTheDriverAndEndsTheProcessWithStatusZero) {
    Stage stage;
    CompanionPort companion;
    const std::filesystem::path trace = stage.Session().Path() / "trace";
    stage.StartDriver({{"LD_PRELOAD", KRT9_CALL_TRACE_LIBRARY},
                       {"KRT9_CALL_TRACE", trace},
                       {"KRT9_RUN_LOOP_RETURNS", "1"}});
    EXPECT_EQ(stage.Driver().WaitForExit(), 0) << stage.Driver().StandardError();
    std::vector<std::string> end = LinesOf(ContentOf(trace));
    ASSERT_THAT(end, testing::Contains("run loop runs"));
    end.erase(end.begin(), std::find(end.begin(), end.end(), "run loop runs"));
    EXPECT_THAT(
        end, ElementsAre("run loop runs", "remove timer from default mode", "release remote port",
                         "release event source", "release element cache", "invalidate local port"));
    std::filesystem::remove(trace);
    EXPECT_THAT(stage.Session().Files(), testing::ElementsAre(HasSubstr("VEK_KRT9")));
}

TEST(LifeCycle, NoSignalButTheInterruptHasAHandler) {
    Stage stage;
    stage.StartDriver();
    EXPECT_TRUE(test_support::HandlesSignal(stage.Driver().pid(), SIGINT));
    for (const int number : {SIGHUP, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGALRM, SIGTSTP, SIGCONT,
                             SIGCHLD, SIGWINCH, SIGVTALRM, SIGPROF}) {
        EXPECT_FALSE(test_support::HandlesSignal(stage.Driver().pid(), number))
            << strsignal(number);
    }
}

TEST(LifeCycle, InterruptWhileTheEditorHangsEndsTheDriverOnceTheCallUnderWayDoes) {
    constexpr double kTimeOut = 0.5;  // seconds, of one call of the impatient driver
    constexpr double kSlack = 1.5;    // seconds, for a machine that has other things to do
    std::string windows = R"({"AXRole": "AXWindow", "misbehaviour": {"read": {"AXTitle": {"then": [
        {"command": "hang", "application": "com.apple.FinalCut"},
        {"command": "plug", "device": {"name": "hangs now"}}]}}}})";
    for (int further = 0; further < 20; ++further) {
        windows += R"(, {"AXRole": "AXWindow"})";
    }
    Stage stage;
    stage.StartDesktop(R"({"front": "com.apple.FinalCut", "applications": [
        {"bundleID": "com.apple.FinalCut", "windows": [)" +
                       windows + "]}]}");
    stage.StartDriver({}, Stage::ImpatientDriverPath());
    // The titles of all windows are still to be read when the first one hangs.
    const auto request = Stage::LaunchControl({"--timeout", "30", "window", "Only"});
    ASSERT_TRUE(stage.Desktop().WaitForOutput("hangs now"));
    const auto interrupted = std::chrono::steady_clock::now();
    EXPECT_EQ(stage.Interrupt(Role::driver), 0) << stage.Driver().StandardError();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - interrupted;
    EXPECT_LT(taken.count(), kTimeOut + kSlack);
    EXPECT_THAT(stage.Session().Files(), Not(testing::Contains(HasSubstr("KRT9Background"))));
}

TEST(LifeCycle, WithoutCompanionTheDriverSaysSoAndKeepsRunning) {
    Stage stage;
    stage.StartDriver();
    EXPECT_THAT(stage.Driver().StandardError(), HasSubstr("remotePort is not valid"));
    EXPECT_EQ(stage.Control({"pointer"}).status, 0);
    EXPECT_EQ(stage.Interrupt(Role::driver), 0);
}

TEST(LifeCycle, WithCompanionTheDriverDoesNotComplain) {
    Stage stage;
    CompanionPort companion;
    stage.StartDriver();
    EXPECT_THAT(stage.Driver().StandardError(), Not(HasSubstr("not valid")));
}

TEST(LifeCycle, LogsItsBundleIdentifierAndVersion) {
    Stage stage;
    stage.StartDriver();
    EXPECT_THAT(stage.Driver().StandardError(),
                HasSubstr("com.solvanto.KRT9Background version 1.0.0"));
}

TEST(LifeCycle, NothingIsAutoreleasedForEver) {
    Stage stage;
    stage.StartDesktop("editor-10.4.6.json");
    stage.StartDriver();
    EXPECT_EQ(stage.Control({"pointer"}).status, 0);
    EXPECT_EQ(stage.Interrupt(Role::driver), 0);  // all of its output is there once it has ended
    EXPECT_THAT(stage.Driver().StandardError(), Not(HasSubstr("autorelease")));
}

}  // namespace
