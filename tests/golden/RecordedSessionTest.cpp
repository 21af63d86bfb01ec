// What krt9ctl records of the real processes is a golden stream: performed in this process, with
// the clock of the test, its steps come to the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

#include "platform/LocalSocket/SocketAddress.h"
#include "tests/golden/Session.h"
#include "tests/support/Files.h"
#include "tests/support/Stage.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WaitUntil.h"

namespace {

using recording::Outcome;
using recording::Step;
using test_support::Stage;

constexpr char kScene[] = "editor-10.4.6.json";
constexpr char kLines[] =
    "echo value 159; echo press 171 --expect 0; echo number 87; echo selected 104; "
    "echo set 87 120 --expect; echo position 128; echo value 99999; "
    "echo request ABCD 0102; echo 'window \"Background Tasks\"';";

// Requests and replies in their order, then the messages; the driver repeats a status query until
// it is answered in time.
std::vector<std::string> Essence(const std::vector<Step>& steps) {
    std::vector<std::string> exchanges;
    std::vector<std::string> messages;
    for (const Step& step : steps) {
        for (const Outcome& outcome : step.outcomes) {
            if (outcome.what == "request" || outcome.what == "reply") {
                exchanges.push_back(outcome.what + " " + outcome.text);
            } else if (outcome.what == "message" && !outcome.text.starts_with("Stus")) {
                messages.push_back(outcome.text);
            }
        }
    }
    std::sort(messages.begin(), messages.end());
    exchanges.insert(exchanges.end(), messages.begin(), messages.end());
    return exchanges;
}

// Of the real processes: requests, then what is observed, until it has arrived.
std::string RecordSession() {
    const test_support::TemporaryFolder folder;
    const std::string file = (folder.Path() / "session.txt").string();
    const std::string gate = (folder.Path() / "gate").string();
    Stage stage;
    stage.StartDesktop(kScene);
    EXPECT_EQ(test_support::RunProcess("/usr/bin/mkfifo", {gate}).status, 0);
    const auto openGate = [&gate] { test_support::RunProcess("/bin/sh", {"-c", ": > " + gate}); };
    test_support::ChildProcess record(
        "/bin/sh", {"-c",
                    "{ cat " + gate + "; " + kLines + " echo refresh --clip --timecode; cat " +
                        gate + "; } | \"$0\" --timeout 10 record \"$1\"",
                    Stage::ControlPath(), file});
    EXPECT_TRUE(test_support::WaitUntil([&stage] {
        const auto files = stage.Session().Files();
        return std::count(files.begin(), files.end(), local_socket::SocketFileName("VEK_KRT9")) > 0;
    }));
    stage.StartDriver();
    const auto trace = Stage::LaunchControl({"trace", "--all"});
    EXPECT_TRUE(trace->WaitForOutput("tick"));
    openGate();
    EXPECT_TRUE(trace->WaitForOutput("message JFSC sent"));
    EXPECT_TRUE(trace->WaitForOutput("message JFTC sent"));
    openGate();
    EXPECT_EQ(record.WaitForExit(), 4) << "the exit code of the first request that fails";
    return test_support::ContentOf(file);
}

// As Session performs them, with the scene, which the tool does not know.
std::vector<Step> Perform(const std::vector<Step>& steps) {
    golden::Session session;
    session.Perform(std::string("scene ") + kScene);
    std::string text;
    for (const Step& step : steps) {
        text += recording::StepLine(step.text) + "\n";
        for (const std::string& line : session.Perform(step.text)) {
            text += line + "\n";
        }
        if (step.Verb() == "start") {
            session.Perform("status 1 8");
        }
    }
    return recording::ReadRecording(text);
}

TEST(RecordedSession, IsAGoldenStream) {
    const std::vector<Step> recorded = recording::ReadRecording(RecordSession());
    ASSERT_GE(recorded.size(), 12U);
    EXPECT_EQ(Essence(Perform(recorded)), Essence(recorded));
}

}  // namespace
