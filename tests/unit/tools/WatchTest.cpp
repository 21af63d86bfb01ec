// The companion's port in the hands of krt9ctl.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <sstream>

#include "VEKCommon/MessageCodes.h"
#include "VEKCommon/OwnedReference.h"
#include "tests/support/Files.h"
#include "tests/support/Stage.h"
#include "tools/Bytes.h"
#include "tools/Run.h"

namespace krt9ctl {
namespace {

using test_support::Stage;
using testing::HasSubstr;

// Does something once, as soon as the run loop runs in the default mode.
class Soon {
  public:
    explicit Soon(std::function<void()> work) : work_(std::move(work)) {
        CFRunLoopTimerContext context{0, this, nullptr, nullptr, nullptr};
        timer_.reset(CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent(), 0, 0, 0,
                                          Fire, &context));
        CFRunLoopAddTimer(CFRunLoopGetCurrent(), timer_.get(), kCFRunLoopDefaultMode);
    }
    ~Soon() { CFRunLoopTimerInvalidate(timer_.get()); }
    Soon(const Soon&) = delete;
    Soon& operator=(const Soon&) = delete;

  private:
    static void Fire(CFRunLoopTimerRef, void* soon) { static_cast<Soon*>(soon)->work_(); }

    std::function<void()> work_;
    OwnedReference<CFRunLoopTimerRef> timer_;
};

// Sends as the driver does: with a reply mode only when a reply is wanted.
Bytes Send(SInt32 code, const Bytes& body, bool wantReply = false) {
    const OwnedReference<CFMessagePortRef> port(
        CFMessagePortCreateRemote(kCFAllocatorDefault, CFSTR("VEK_KRT9")));
    const OwnedReference<CFDataRef> data(
        CFDataCreate(kCFAllocatorDefault, body.data(), static_cast<CFIndex>(body.size())));
    CFDataRef reply = nullptr;
    EXPECT_EQ(CFMessagePortSendRequest(port.get(), code, data.get(), 1, wantReply ? 1 : 0,
                                       wantReply ? kCFRunLoopDefaultMode : nullptr, &reply),
              kCFMessagePortSuccess);
    const OwnedReference<CFDataRef> owner(reply);
    return reply == nullptr
               ? Bytes{}
               : Bytes(CFDataGetBytePtr(reply), CFDataGetBytePtr(reply) + CFDataGetLength(reply));
}

struct Watched : testing::Test {
    ExitCode Watch(std::vector<std::string> words) {
        words.insert(words.begin(), "watch");
        return RunCommandLine(words, {out, err});
    }

    Stage stage;
    std::ostringstream out, err;
};

TEST_F(Watched, PrintsEveryMessageAndEndsAfterTheCount) {
    const Soon soon([] {
        Send(kJFSC, {'C', 'l', 'i', 'p', 0});
        Send(kJFTC, {'1', 0});
        Send(kJSLg, {'e', 'n', 0});
    });
    EXPECT_EQ(Watch({"--count", "3", "--for", "10", "--json"}), ExitCode::ok);
    std::vector<std::string> texts;
    for (const std::string& line : test_support::LinesOf(out.str())) {
        texts.push_back(Json::parse(line).value("text", ""));
    }
    EXPECT_THAT(texts, testing::ElementsAre("Clip", "1", "en"));
}

TEST_F(Watched, AnswersTheStatusQueryWithItsCounts) {
    Bytes reply;
    const Soon soon([&reply] { reply = Send(kStus, {}, true); });
    EXPECT_EQ(Watch({"--units", "2", "--channels", "16", "--count", "1", "--for", "10"}),
              ExitCode::ok);
    EXPECT_EQ(FormatHex(reply), "0000000200000010" + std::string(40, '0'));
    EXPECT_THAT(out.str(), HasSubstr("Stus status query, answered: 2 units, 16 channels\n"));
}

TEST_F(Watched, AnswersButDoesNotPrintWhatComesAfterTheCount) {
    Bytes reply;
    const Soon soon([&reply] {
        Send(kJFSC, {'A', 0});
        reply = Send(kStus, {}, true);
    });
    EXPECT_EQ(Watch({"--count", "1", "--for", "10"}), ExitCode::ok);
    EXPECT_EQ(reply.size(), 28U);
    EXPECT_THAT(out.str(), testing::Not(HasSubstr("Stus")));
}

TEST_F(Watched, SurvivesEveryBody) {
    const Soon soon([] {
        Send(kJFSC, {});
        Send(kJFSC, {'x'});
        Send(kStus, Bytes(100000, 0xFF));
        Send(-1, {0});
    });
    EXPECT_EQ(Watch({"--count", "4", "--for", "10"}), ExitCode::ok);
    const std::string lines = out.str();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 4);
    EXPECT_THAT(lines, HasSubstr("malformed"));
}

TEST_F(Watched, EndsAfterTheTimeWithoutAnyMessage) {
    EXPECT_EQ(Watch({"--for", "0.01"}), ExitCode::ok);
    EXPECT_EQ(out.str(), "");
    EXPECT_THAT(err.str(), HasSubstr("watching the companion's port"));
}

TEST_F(Watched, SaysWhenTheDriverWasThereFirst) {
    EXPECT_EQ(Watch({"--for", "0.01"}), ExitCode::ok);
    EXPECT_THAT(err.str(), testing::Not(HasSubstr("was there first")));
    stage.StartDriver();
    EXPECT_EQ(Watch({"--for", "0.01"}), ExitCode::ok);
    EXPECT_THAT(err.str(), HasSubstr("the driver was there first"));
    EXPECT_THAT(err.str(), HasSubstr("kill -INT " + std::to_string(stage.Driver().pid()) + "; " +
                                     Stage::DriverPath()));
}

TEST_F(Watched, PortOfAnotherProcessIsAnExitCodeOfItsOwn) {
    stage.StartCompanion();
    EXPECT_EQ(Watch({"--for", "0.01"}), ExitCode::nameTaken);
    EXPECT_THAT(err.str(), HasSubstr("VEK_KRT9 is taken"));
}

TEST_F(Watched, AnInterruptionEndsItInGoodOrder) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        stage.StartCompanion();
        stage.Companion().Signal(signal);
        EXPECT_EQ(stage.Companion().WaitForExit(), 0);
        EXPECT_THAT(stage.Session().Files(), testing::IsEmpty());
    }
}

TEST(Program, EndsWithTheExitCodeOfItsCommand) {
    const test_support::SessionFixture session;
    EXPECT_EQ(test_support::RunProcess(Stage::ControlPath(), {"--version"}).standardOutput,
              "krt9ctl 1.0.0\n");
    EXPECT_EQ(test_support::RunProcess(Stage::ControlPath(), {}).status, 2);
    EXPECT_EQ(test_support::RunProcess(Stage::ControlPath(), {"ping"}).status, 3);
}

}  // namespace
}  // namespace krt9ctl
