// The verb batch: one connection, one result a line, whatever the lines are.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <sstream>

#include "VEKCommon/MessageCodes.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/Stage.h"
#include "tests/unit/tools/BatchFixture.h"
#include "tests/unit/tools/Carried.h"
#include "tests/unit/tools/FakeDriver.h"
#include "tools/InputLines.h"
#include "tools/Run.h"

namespace krt9ctl {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

TEST_F(BatchVerb, CarriesOutEachLineAndPrintsOneForIt) {
    const FakeDriver driver(Always({1, 0, 0, 0}));
    EXPECT_EQ(Run("value 59\n\n  # nothing\n\tpress  _NS:7 \r\nkeystroke cmd+b\nnumber 5"),
              ExitCode::badReply);
    EXPECT_EQ(out_.str(),
              "1: 1\n"
              "4: bad-reply: 'JBtP': the reply has 4 bytes instead of 0: 01000000\n"
              "5: bad-reply: 'JCPK': the reply has 4 bytes instead of 0: 01000000\n"
              "6: 1\n");
    EXPECT_EQ(err_.str(), "");
}

TEST_F(BatchVerb, TakesWordsWithBlanksInQuotationMarks) {
    const FakeDriver driver(Nothing);
    EXPECT_EQ(Run("window \"a \\\"b\\\" \\\\\"\nwindow a"), ExitCode::noReply);
    EXPECT_THAT(driver.received[0], HasSubstr("6120226222205c00"));
    EXPECT_THAT(driver.received, SizeIs(2));
}

TEST_F(BatchVerb, PrintsOneObjectALineForPrograms) {
    const FakeDriver driver([](const Request& request) {
        return request.code == kJElV ? Always({7, 0, 0, 0})(request) : CFDataRef{nullptr};
    });
    EXPECT_EQ(Run("value 59\nkeystroke b\nnumber 5\njuggle\n", {"--json"}), ExitCode::noReply);
    const auto objects = ObjectsOf(out_.str());
    ASSERT_THAT(objects, SizeIs(4));
    EXPECT_EQ(objects[0], Json::parse(R"({"line": 1, "replies": [{"code": "JElV", "value": 7}]})"));
    EXPECT_EQ(objects[1]["replies"].size(), 2U);
    EXPECT_EQ(objects[2]["error"], "no-reply");
    EXPECT_EQ(objects[3]["error"], "usage");
    EXPECT_THAT(objects[3]["message"], HasSubstr("there is no verb 'juggle'"));
}

TEST_F(BatchVerb, HasTheExitCodeOfTheFirstFailureAndGoesOnUnlessToldToStop) {
    const FakeDriver driver(Always({1, 0, 0, 0}));
    EXPECT_EQ(Run("value 59\njuggle\nmouse end 1,2\nvalue 60\n"), ExitCode::usage);
    EXPECT_THAT(out_.str(), EndsWith("4: 1\n"));
    out_.str("");
    EXPECT_EQ(Run("value 59\njuggle\nvalue 60\n", {"--stop"}), ExitCode::usage);
    EXPECT_EQ(out_.str(), "1: 1\n2: usage: there is no verb 'juggle' (see krt9ctl --help)\n");
}

TEST_F(BatchVerb, RefusesWhatIsNotARequest) {
    const FakeDriver driver(Nothing);
    EXPECT_EQ(Run("tree\nbatch\n--help\nping --help\n--version\nping --json\nwindow \"a\n\"\"\n"),
              ExitCode::usage);
    EXPECT_THAT(driver.received, ElementsAre());
    EXPECT_EQ(out_.str(),
              "1: usage: tree: only verbs that send requests can stand in a batch (see krt9ctl "
              "tree --help)\n"
              "2: usage: batch: only verbs that send requests can stand in a batch (see krt9ctl "
              "batch --help)\n"
              "3: usage: help and version are not for a batch (see krt9ctl --help)\n"
              "4: usage: help and version are not for a batch (see krt9ctl --help)\n"
              "5: usage: help and version are not for a batch (see krt9ctl --help)\n"
              "6: usage: --json stands before or after the verb batch itself (see krt9ctl "
              "--help)\n"
              "7: usage: a quotation mark is not closed (see krt9ctl --help)\n"
              "8: usage: there is no verb '' (see krt9ctl --help)\n");
}

TEST_F(BatchVerb, GivesEveryHostileLineOneHarmlessResult) {
    const FakeDriver driver(Nothing);
    const std::string tooLong(kLongestLine + 1, 'a');
    EXPECT_EQ(Run(tooLong + "\nvalue\xff\n\x1b[31m\nping" + std::string(1, '\0') + "\n[x] {}\n" +
                  std::string(100000, '"') + "\n" + tooLong + tooLong),
              ExitCode::usage);
    const std::string out = out_.str();
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 7);
    EXPECT_THAT(out, HasSubstr("1: usage: the line has more than 1048576 bytes"));
    EXPECT_THAT(out, HasSubstr("2: usage: there is no verb 'value\\xff'"));
    EXPECT_THAT(out, HasSubstr("3: usage: there is no verb '\\x1b[31m'"));
    EXPECT_THAT(out, HasSubstr("4: usage: the line has a zero byte"));
    EXPECT_THAT(out, HasSubstr("7: usage: the line has more than 1048576 bytes"));
    EXPECT_THAT(driver.received, ElementsAre());
}

TEST_F(BatchVerb, TakesTheLongestLineWhole) {
    const FakeDriver driver(Nothing);
    const std::string start = "request ABCD ";
    EXPECT_EQ(Run(start + std::string(kLongestLine - start.size() - 1, 'a') + " \n"), ExitCode::ok);
    EXPECT_EQ(driver.received[0].size(), 5 + kLongestLine - start.size() - 1);
}

TEST_F(BatchVerb, GivesALineItsOwnTimeout) {
    const FakeDriver driver(Nothing, CFSTR("idle"));
    EXPECT_EQ(Run("ping --timeout 0.01\n"), ExitCode::timeOut);
    EXPECT_THAT(out_.str(), HasSubstr("1: time-out: "));
}

TEST_F(BatchVerb, FindsADriverThatWasStartedMeanwhile) {
    EXPECT_EQ(Run("ping\n"), ExitCode::noDriver);
    EXPECT_THAT(out_.str(), HasSubstr("1: no-driver: "));
    FakeDriver* running = nullptr;
    FakeDriver first([&running](const Request&) {
        running->End();
        return nullptr;
    });
    running = &first;
    out_.str("");
    EXPECT_EQ(Run("ping\nping\n"), ExitCode::transport);
    EXPECT_THAT(out_.str(), HasSubstr("2: no-driver: ")) << "the port is looked up again";
}

TEST_F(BatchVerb, SaysThatItsInputCannotBeRead) {
    std::ostringstream out, err;
    const int folder = open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    EXPECT_EQ(RunCommandLine({"batch"}, {out, err, -1, -1, folder}), ExitCode::failure);
    EXPECT_EQ(err.str(), "krt9ctl: batch: the input cannot be read: Is a directory\n");
    close(folder);
}

constexpr char kScene[] = R"({"front": "a.b", "applications": [
    {"bundleID": "a.b", "pid": 5, "windows": [{"AXRole": "AXWindow", "AXChildren": [
      {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 1},
      {"AXRole": "AXTextField", "AXIdentifier": "_NS:87", "AXValue": "100"}]}]}]})";

TEST(Batch, DrivesTheRealDriver) {
    test_support::Stage stage;
    stage.StartDesktop(kScene);
    stage.StartDriver();
    const auto result = test_support::RunProcess(
        "/bin/sh", {"-c",
                    "printf 'value 59\\npress 59 --expect 0\\nset 87 120 --expect\\nnumber 87\\n"
                    "press 4711 --expect 1 --within 0.01\\nwait value 59 0\\n' | \"$0\" batch",
                    test_support::Stage::ControlPath()});
    EXPECT_EQ(result.status, 14);
    EXPECT_EQ(result.standardOutput,
              "1: 1\n2: ok\n3: ok\n4: 120\n"
              "5: unmet: 'JElV': the driver gave no value of _NS:4711 in 0.01 s; see krt9ctl why "
              "4711\n6: ok\n");
}

TEST(Batch, PrintsEachResultBeforeTheNextLineComesAndEndsWithASignal) {
    test_support::Stage stage;
    stage.StartDesktop(kScene);
    stage.StartDriver();
    const std::string pipe = (stage.Session().Path() / "pipe").string();
    // The shell keeps the pipe open, so that the input does not end.
    test_support::ChildProcess batch(
        "/bin/sh", {"-c", "mkfifo \"$1\"; exec 3<>\"$1\"; echo value 59 >&3; exec \"$0\" batch <&3",
                    test_support::Stage::ControlPath(), pipe});
    ASSERT_TRUE(batch.WaitForOutput("1: 1\n")) << batch.Output();
    batch.Signal(SIGINT);
    EXPECT_EQ(batch.WaitForExit(), 130);
    EXPECT_EQ(batch.StandardError(), "krt9ctl: stopped by SIGINT\n");
}

}  // namespace
}  // namespace krt9ctl
