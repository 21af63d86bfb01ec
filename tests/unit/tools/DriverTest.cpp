// Requests over the real ports, to a driver of the test's own process.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <vector>

#include "tests/support/SessionFixture.h"
#include "tests/support/Stage.h"
#include "tests/unit/tools/FakeDriver.h"
#include "tools/Run.h"

namespace krt9ctl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Driver : public testing::Test {
  protected:
    ExitCode Tell(const std::vector<std::string>& words) {
        return RunCommandLine(words, {out_, err_});
    }

    test_support::SessionFixture session_;
    std::ostringstream out_, err_;
};

TEST_F(Driver, ThatDoesNotRunIsAnExitCodeOfItsOwn) {
    EXPECT_EQ(Tell({"ping"}), ExitCode::noDriver);
    EXPECT_EQ(err_.str(), "krt9ctl: 'JPth': no driver runs in the session " +
                              session_.Path().string() + "; start it with " +
                              test_support::Stage::DriverPath() + "\n");
}

TEST_F(Driver, OfASessionThatOthersMayEnterIsNotAsked) {
    std::filesystem::permissions(session_.Path(), std::filesystem::perms(0755));
    EXPECT_EQ(Tell({"ping", "--json"}), ExitCode::failure);
    EXPECT_THAT(out_.str(), HasSubstr(R"({"error":"failure","message":"ping: )"));
}

TEST_F(Driver, GetsTheRequestAndItsReplyIsPrinted) {
    const FakeDriver driver(Always({0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Tell({"value", "59"}), ExitCode::ok);
    EXPECT_THAT(driver.received, ElementsAre("JElV 3b000000"));
    EXPECT_EQ(out_.str(), "-2\n");
}

TEST_F(Driver, GetsBothHalvesOfAKeystrokeInOrder) {
    const FakeDriver driver(Nothing);
    EXPECT_EQ(Tell({"keystroke", "0x31", "--command"}), ExitCode::ok);
    EXPECT_THAT(driver.received,
                ElementsAre("JCPK 310000000001000001000000", "JCPK 310000000001000000000000"));
}

TEST_F(Driver, GetsAsManyPingsAsAreCounted) {
    const FakeDriver driver(Nothing);
    EXPECT_EQ(Tell({"ping", "--count", "3", "--json"}), ExitCode::ok);
    EXPECT_THAT(driver.received, ElementsAre("JPth ", "JPth ", "JPth "));
    EXPECT_THAT(out_.str(), HasSubstr(R"({"code":"JPth","count":3,"milliseconds":{"min":)"));
}

TEST_F(Driver, GetsAnAbsentBodyAsAnEmptyOne) {
    const FakeDriver driver(Always(Bytes(8)));
    EXPECT_EQ(Tell({"pointer", "--json"}), ExitCode::ok);
    EXPECT_THAT(driver.received, ElementsAre("JGlM "));
    EXPECT_EQ(out_.str(), "{\"code\":\"JGlM\",\"x\":0,\"y\":0}\n");
}

TEST_F(Driver, ThatAnswersWithNothingToAQuestionIsNoReply) {
    const FakeDriver driver(Nothing);
    EXPECT_EQ(Tell({"value", "59"}), ExitCode::noReply);
    EXPECT_EQ(Tell({"press", "59"}), ExitCode::ok);
}

TEST_F(Driver, ThatDoesNotAnswerInTimeIsATimeOut) {
    // In a mode that never runs.
    const FakeDriver driver(Nothing, CFSTR("idle"));
    EXPECT_EQ(Tell({"value", "59", "--timeout", "0.01"}), ExitCode::timeOut);
    EXPECT_THAT(err_.str(), HasSubstr("did not answer in time"));
}

TEST_F(Driver, ThatEndsBeforeItAnswersIsATransportError) {
    FakeDriver* running = nullptr;
    FakeDriver driver([&running](const Request&) {
        running->End();
        return nullptr;
    });
    running = &driver;
    EXPECT_EQ(Tell({"value", "59"}), ExitCode::transport) << err_.str();
}

TEST_F(Driver, GetsALargeBodyWhole) {
    const FakeDriver driver(Nothing);
    const std::string hex(200000, 'a');
    EXPECT_EQ(Tell({"request", "ABCD", hex}), ExitCode::ok);
    EXPECT_THAT(driver.received, ElementsAre("ABCD " + hex));
}

TEST_F(Driver, UsageErrorsSendNothing) {
    const FakeDriver driver(Nothing);
    EXPECT_EQ(Tell({"target", ""}), ExitCode::usage);
    EXPECT_EQ(Tell({"request", "ABC"}), ExitCode::usage);
    EXPECT_THAT(driver.received, ElementsAre());
}

}  // namespace
}  // namespace krt9ctl
