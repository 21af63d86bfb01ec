// krt9ctl as a process: output that cannot be written, signals, closed descriptors.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <sstream>

#include "VEKCommon/MessageCodes.h"
#include "VEKCommon/OwnedReference.h"
#include "tests/support/Stage.h"
#include "tools/Interruption.h"
#include "tools/Output.h"

namespace krt9ctl {
namespace {

using test_support::ChildProcess;
using test_support::RunProcess;
using test_support::Stage;
using testing::EndsWith;
using testing::HasSubstr;

const std::string kProgram = Stage::ControlPath();

test_support::ProcessResult Shell(const std::string& script) {
    return RunProcess("/bin/sh", {"-c", script, kProgram});
}

constexpr char kScene[] = R"({"front": "a.b", "pointer": [3, 4], "applications": [
    {"bundleID": "a.b", "pid": 5, "windows": [{"AXRole": "AXWindow", "AXChildren": [
      {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 1}]}]}]})";

TEST(FullDisk, FailsEveryVerbThatPrintsAndSaysWhy) {
    Stage stage;
    stage.StartDesktop(kScene);
    stage.StartDriver();
    for (const char* words : {"--version", "--version --json", "--help", "grammar", "keys",
                              "value 59", "pointer --json", "ping --json", "dump", "dump --json",
                              "desktop state", "desktop log --json"}) {
        const auto result = Shell(std::string("\"$0\" ") + words + " > /dev/full");
        EXPECT_EQ(result.status, 1) << words;
        EXPECT_EQ(result.standardError,
                  "krt9ctl: the output cannot be written: No space left on device\n")
            << words;
    }
    EXPECT_EQ(Shell("\"$0\" press 59 > /dev/full").status, 0) << "which prints nothing";
}

TEST(FullDisk, LeavesTheExitCodeOfAFailureAsItIs) {
    const test_support::SessionFixture session;
    const auto result = Shell("\"$0\" ping --json > /dev/full");
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.standardError, HasSubstr("No space left on device"));
    EXPECT_THAT(result.standardError, HasSubstr("no driver runs"));
}

// A closed descriptor's number must not go to a socket, which would then receive the output.
TEST(ClosedOutput, IsAFailureAndNeverAnotherFile) {
    Stage stage;
    stage.StartDesktop(kScene);
    stage.StartDriver();
    for (const char* words : {"value 59", "desktop state", "dump"}) {
        EXPECT_EQ(Shell(std::string("\"$0\" ") + words + " >&-").status, 1) << words;
    }
    const auto result = Shell("\"$0\" --version >&-");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.standardError, HasSubstr("the output cannot be written"));
    EXPECT_EQ(Shell("\"$0\" --version <&- 2>&-").status, 0);
}

// The reader is gone before the writer begins.
TEST(ClosedPipe, EndsQuietlyWithAPipesUsualStatus) {
    const test_support::SessionFixture session;
    const std::string gate = (session.Path() / "gate").string();
    const auto result =
        Shell("mkfifo " + gate + "; { cat " + gate +
              "; \"$0\" --version; echo \"status $?\" >&2; } | { exec <&-; : > " + gate + "; }");
    EXPECT_EQ(result.standardError, "status 141\n");
}

TEST(ClosedPipe, HidesTheExitCodeOfAnAnswerThatNobodyReads) {
    const test_support::SessionFixture session;
    const std::string gate = (session.Path() / "gate").string();
    const auto result =
        Shell("mkfifo " + gate + "; { cat " + gate +
              "; \"$0\" doctor; echo \"status $?\" >&2; } | { exec <&-; : > " + gate + "; }");
    EXPECT_EQ(result.standardError, "status 141\n");
}

TEST(ClosedPipe, EndsWatchWithoutAnotherMessage) {
    const test_support::SessionFixture session;
    ChildProcess pipeline(
        "/bin/sh", {"-c", "{ \"$0\" watch; echo \"status $?\" >&2; } | head -n 1", kProgram});
    ASSERT_TRUE(pipeline.WaitForOutput("watching")) << pipeline.StandardError();
    const OwnedReference<CFMessagePortRef> port(
        CFMessagePortCreateRemote(kCFAllocatorDefault, CFSTR("VEK_KRT9")));
    const UInt8 clip[] = {'A', 0};
    const OwnedReference<CFDataRef> data(CFDataCreate(kCFAllocatorDefault, clip, sizeof clip));
    EXPECT_EQ(CFMessagePortSendRequest(port.get(), kJFSC, data.get(), 5, 0, nullptr, nullptr), 0);
    EXPECT_EQ(pipeline.WaitForExit(), 0);
    EXPECT_THAT(pipeline.StandardOutput(), HasSubstr("JFSC clip: A\n"));
    EXPECT_THAT(pipeline.StandardError(), EndsWith("status 141\n"));
}

Json LogOf(Stage& stage) {
    return Json::parse(stage.Control({"desktop", "log", "--json"}).standardOutput)["entries"];
}

// The last event of this name; null when there is none.
Json Last(const Json& log, const std::string& name) {
    Json last;
    for (const Json& entry : log) {
        last = entry.value("event", "") == name ? entry : last;
    }
    return last;
}

// Sends the signal in the middle of a long drag with the Option key; its exit status.
int StopDrag(Stage& stage, const std::vector<int>& signals) {
    const auto drag =
        Stage::LaunchControl({"drag", "10,20", "1010,20", "--option", "--steps", "10000"});
    EXPECT_TRUE(stage.Desktop().WaitForOutput("leftMouseDragged"));
    for (const int signal : signals) {
        drag->Signal(signal);
    }
    return drag->WaitForExit();
}

void ExpectLetGo(Stage& stage) {
    const Json log = LogOf(stage);
    const Json up = Last(log, "leftMouseUp");
    ASSERT_TRUE(up.is_object());
    EXPECT_EQ(up["position"], Last(log, "leftMouseDragged")["position"]);
    EXPECT_NE(up["position"], Json::array({1010, 20})) << "the gesture was completed";
    const Json key = Last(log, "keyUp");
    ASSERT_TRUE(key.is_object());
    EXPECT_EQ(key["keyCode"], 58) << "the Option key stays down";
    EXPECT_GT(key["n"], up["n"]);
}

TEST(InterruptedDrag, LetsTheButtonGoWhereThePointerIsAndReleasesTheModifiers) {
    for (const auto& [signal, status] : {std::pair{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}}) {
        Stage stage;
        stage.StartDesktop(kScene);
        stage.StartDriver();
        EXPECT_EQ(StopDrag(stage, {signal}), status);
        ExpectLetGo(stage);
    }
}

// A terminal that closes sends the signal once itself and once through its shell.
TEST(InterruptedDrag, IsNotCutShortByASecondHangUp) {
    Stage stage;
    stage.StartDesktop(kScene);
    stage.StartDriver();
    EXPECT_EQ(StopDrag(stage, {SIGHUP, SIGHUP, SIGHUP}), 129);
    ExpectLetGo(stage);
}

TEST(InterruptedDrag, LetsGoWhenNobodyReadsItsOutputAnyMore) {
    Stage stage;
    stage.StartDesktop(kScene);
    stage.StartDriver();
    const auto result = Shell(
        "{ \"$0\" drag 10,20 1010,20 --option --steps 10000 --json; echo \"status $?\" >&2; } | "
        "head -n 3");
    EXPECT_THAT(result.standardError, EndsWith("status 141\n"));
    ExpectLetGo(stage);
}

TEST(Interruption, NotesTheFirstSignalAndLeavesASecondHangUpAlone) {
    const Interruption interruption;
    EXPECT_EQ(Interruption::Raised(), ExitCode::ok);
    raise(SIGHUP);
    raise(SIGHUP);
    EXPECT_EQ(Interruption::Raised(), ExitCode::hungUp);
}

TEST(Interruption, LeavesAnIgnoredHangUpIgnored) {
    std::signal(SIGHUP, SIG_IGN);
    {
        const Interruption interruption;
        raise(SIGHUP);
        EXPECT_EQ(Interruption::Raised(), ExitCode::ok);
    }
    EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

TEST(InterruptionDeathTest, ASecondInterruptEndsTheProcess) {
    EXPECT_EXIT(
        {
            const Interruption interruption;
            raise(SIGINT);
            raise(SIGINT);
        },
        testing::KilledBySignal(SIGINT), "");
}

}  // namespace
}  // namespace krt9ctl
