// The verb record, with the real processes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "platform/LocalSocket/SocketAddress.h"
#include "tests/support/Files.h"
#include "tests/support/Stage.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WaitUntil.h"
#include "tests/unit/tools/Carried.h"
#include "tools/recording/Recording.h"

namespace krt9ctl {
namespace {

using test_support::ContentOf;
using test_support::ProcessResult;
using test_support::Stage;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Record : public testing::Test {
  protected:
    std::string File() const { return (folder_.Path() / "session.txt").string(); }

    // krt9ctl record, with these command lines, and what the shell does before each.
    static std::string Script(const std::string& input, const std::string& options = "") {
        return "{ " + input + " } | \"$0\" --timeout 10 record \"$1\" " + options;
    }

    ProcessResult Run(const std::string& script) const {
        return test_support::RunProcess("/bin/sh", {"-c", script, Stage::ControlPath(), File()});
    }

    test_support::TemporaryFolder folder_;
    Stage stage_;
};

TEST_F(Record, WritesRequestsRepliesAndMessages) {
    stage_.StartDesktop("editor-10.4.6.json");
    const std::string gate = (folder_.Path() / "gate").string();
    const auto openGate = [&gate] {
        return test_support::RunProcess("/bin/sh", {"-c", ": > " + gate}).status;
    };
    ASSERT_EQ(test_support::RunProcess("/usr/bin/mkfifo", {gate}).status, 0);
    test_support::ChildProcess record(
        "/bin/sh", {"-c",
                    Script("cat " + gate +
                           "; echo press 171 --expect 0; echo refresh --clip --timecode; cat " +
                           gate + "; echo value 171;"),
                    Stage::ControlPath(), File()});
    ASSERT_TRUE(test_support::WaitUntil([this] {
        const auto files = stage_.Session().Files();
        return std::count(files.begin(), files.end(), local_socket::SocketFileName("VEK_KRT9")) > 0;
    }));
    stage_.StartDriver();
    const auto trace = Stage::LaunchControl({"trace", "--all"});
    ASSERT_TRUE(trace->WaitForOutput("tick"));
    EXPECT_EQ(openGate(), 0);
    EXPECT_TRUE(trace->WaitForOutput("message JFSC sent"));
    EXPECT_TRUE(trace->WaitForOutput("message JFTC sent"));
    EXPECT_EQ(openGate(), 0);
    ASSERT_EQ(record.WaitForExit(), 0) << record.Output();
    EXPECT_THAT(record.StandardOutput(), StartsWith("1: ok\n2: ok\n3: 0\n"));

    const std::string text = ContentOf(File());
    // On a busy machine a tick may lie between the two.
    EXPECT_THAT(std::regex_replace(text, std::regex("> tick [0-9]+\n"), ""),
                HasSubstr("> ask JElV 171\n    request JElV ab000000\n"
                          "    reply   01000000 = 1\n> ask JBtP 171\n"));
    EXPECT_THAT(text, HasSubstr("message JSLg 656e00 = \"en\""));
    EXPECT_THAT(text, HasSubstr("message Stus (empty)"));
    EXPECT_THAT(text, HasSubstr("= \"no clip selected\""));
    EXPECT_THAT(text, HasSubstr("= \"01:00:00:00\""));
    EXPECT_THAT(text, Not(HasSubstr("unheard")));
    EXPECT_NO_THROW(recording::ReadRecording(text));
}

TEST_F(Record, SaysThatItDoesNotHearADriverThatWasThereFirst) {
    stage_.StartDesktop("editor-10.4.6.json");
    stage_.StartDriver();
    const ProcessResult result = Run(Script("echo value 171; sleep 0.3; echo value 99999;"));
    EXPECT_EQ(result.status, 4) << "that of the first failure";
    EXPECT_THAT(result.standardError, HasSubstr("the driver was there first"));
    EXPECT_THAT(result.standardOutput, HasSubstr("session.txt: 2 requests and 0 messages\n"));
    EXPECT_THAT(ContentOf(File()), HasSubstr("> unheard\n> ask JElV 171\n"));
    EXPECT_THAT(ContentOf(File()), HasSubstr("reply   (none)"));
    EXPECT_THAT(ContentOf(File()), Not(HasSubstr("> tick"))) << "nothing is awaited";
}

TEST_F(Record, SaysThatAnotherCompanionHearsTheDriver) {
    stage_.StartDesktop("editor-10.4.6.json");
    stage_.StartCompanion();
    stage_.StartDriver();
    const ProcessResult result = Run(Script("echo ping;"));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.standardError, HasSubstr("another process has the companion's port"));
    EXPECT_THAT(ContentOf(File()), HasSubstr("> unheard\n> ask JPth\n    request JPth (none)\n"));
}

TEST_F(Record, RecordsThatARequestWasNotDelivered) {
    const ProcessResult result = Run(Script("echo value 171;"));
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(ContentOf(File()), HasSubstr("failed  no-driver"));
}

TEST_F(Record, FailsBeforeTheSessionWhereItCannotWrite) {
    stage_.StartDesktop("editor-10.4.6.json");
    stage_.StartDriver();
    const auto fails = [](const std::string& path) {
        return test_support::RunProcess(
            "/bin/sh", {"-c", "echo press 171 | \"$0\" record \"$1\"", Stage::ControlPath(), path});
    };
    const ProcessResult missing = fails((folder_.Path() / "missing" / "file").string());
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.standardError, HasSubstr("cannot be written: No such file or directory"));
    EXPECT_THAT(Stage::Control({"value", "171"}).standardOutput, "1\n") << "it was pressed";
    const ProcessResult full = fails("/dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.standardError, HasSubstr("cannot be written: No space left on device"));
}

TEST_F(Record, PrintsObjectsForPrograms) {
    stage_.StartDesktop("editor-10.4.6.json");
    stage_.StartDriver();
    const ProcessResult result = Run(Script("echo value 171;", "--json"));
    const auto objects = ObjectsOf(result.standardOutput);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[1]["recording"], File());
    EXPECT_EQ(objects[1]["requests"], 1);
}

}  // namespace
}  // namespace krt9ctl
