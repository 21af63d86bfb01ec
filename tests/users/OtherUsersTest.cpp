// Another user of the machine against a session that runs.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>

#include "platform/DesktopLink/Framing.h"
#include "platform/DesktopLink/Messages.h"
#include "scenes/notation/Hex.h"
#include "tests/reliability/Together.h"
#include "tests/reliability/WireClient.h"
#include "tests/support/Files.h"
#include "tests/support/Paths.h"
#include "tests/users/OtherUser.h"

namespace {

using test_support::AsOtherUser;
using test_support::Bytes;
using test_support::ChildProcess;
using test_support::Command;
using test_support::DriverSeesTheEditor;
using test_support::LinesOf;
using test_support::ProcessResult;
using test_support::Stage;
using test_support::WireClient;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr int kTries = 200;

struct PrivateSocket {
    std::string socket;
    Bytes frame;  // well-formed, for what listens there
};

// Asks the desktop for all that is on it.
Bytes StateRequest() {
    desktop_link::Request request;
    request.operation = desktop_link::Operation::script;
    request.text = R"({"command": "state"})";
    return test_support::Framed(desktop_link::MakePayload(desktop_link::FrameKind::request, 1,
                                                          desktop_link::Encode(request)));
}

// 'JPMS' presses the mouse button; the companion shows every message, unknown ones too.
std::vector<PrivateSocket> PrivateSockets() {
    return {{"KRT9Background", WireClient::Request("JPMS", Bytes(16, 1), 1)},
            {"VEK_KRT9", WireClient::Request("JXXX", Bytes(16, 1), 1)},
            {"krt9-desktop", StateRequest()}};
}

class OtherUsers : public testing::Test {
  protected:
    void SetUp() override {
        if (const std::string reason = test_support::NoOtherUser(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
        stage.emplace();
        StartTogether(*stage);
        EXPECT_TRUE(DriverSeesTheEditor());
        stage->Companion().ForgetOutput();
        logBefore = DesktopLog();
    }

    static std::string DesktopLog() {
        const ProcessResult result = Stage::Control({"desktop", "log"});
        EXPECT_EQ(result.status, 0) << result.standardError;
        return result.standardOutput;
    }

    std::filesystem::path Folder() const { return stage->Session().Path(); }

    // The result of the other user's attempts at one socket.
    std::unique_ptr<ChildProcess> Attack(const PrivateSocket& target) const {
        const Command command =
            AsOtherUser(test_support::StrangerPath(),
                        {"connect", Folder() / target.socket, std::to_string(kTries),
                         scene_notation::FormatHex(target.frame)});
        return std::make_unique<ChildProcess>(command.path, command.arguments);
    }
    static std::string Outcome(ChildProcess& stranger) {
        EXPECT_EQ(stranger.WaitForExit(60), 0);
        return stranger.StandardOutput() + stranger.StandardError();
    }

    ProcessResult RunAsOther(const std::string& path,
                             const std::vector<std::string>& arguments) const {
        const Command command = AsOtherUser(path, arguments);
        return test_support::RunProcess(command.path, command.arguments,
                                        test_support::OtherUsersEnvironment(Folder()));
    }

    // The owner's session works as before; nothing came of what the other user sent.
    void ExpectUntouched() {
        EXPECT_EQ(DesktopLog(), logBefore);
        EXPECT_TRUE(DriverSeesTheEditor());
        EXPECT_TRUE(CompanionHears(*stage, "01:00:00:12"));
        // What another user sent would have come before.
        EXPECT_THAT(stage->Companion().StandardOutput(), Not(HasSubstr("JXXX")));
    }

    // The programs of the other user, pointed at this session, say `reason` in one line.
    void ExpectTurnedAway(const std::string& reason);

    std::optional<Stage> stage;
    std::string logBefore;
};

void OtherUsers::ExpectTurnedAway(const std::string& reason) {
    const std::string line = "the session folder " + Folder().string() + " " + reason;
    const struct {
        std::string path;
        std::vector<std::string> arguments;
        std::string output;
    } programs[] = {
        {Stage::ControlPath(), {"pointer"}, "krt9ctl: pointer: " + line + "\n"},
        {Stage::ControlPath(), {"watch"}, "krt9ctl: watch: " + line + "\n"},
        {Stage::ControlPath(), {"desktop", "state"}, "krt9ctl: desktop state: " + line + "\n"},
        {Stage::ControlPath(), {"dump"}, "krt9ctl: dump: " + line + "\n"},
        {Stage::DesktopPath(), {KRT9_SCENES "/editor-10.4.6.json"}, "krt9-desktop: " + line + "\n"},
    };
    for (const auto& program : programs) {
        const ProcessResult result = RunAsOther(program.path, program.arguments);
        EXPECT_EQ(result.standardError, program.output);
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_EQ(result.status, 1);
    }
    // The driver idles, as it does whenever it cannot have its port.
    std::map<std::string, std::string> environment = Stage::DriverEnvironment();
    environment.merge(test_support::OtherUsersEnvironment(Folder()));
    const Command command = AsOtherUser(Stage::DriverPath(), {});
    ChildProcess driver(command.path, command.arguments, environment);
    EXPECT_TRUE(driver.WaitForOutput("version 1.0.0"));
    driver.Signal(SIGINT);
    EXPECT_EQ(driver.WaitForExit(), 0) << driver.StandardError();
    EXPECT_THAT(LinesOf(driver.StandardError()),
                ElementsAre(HasSubstr("CFMessagePort \"KRT9Background\": " + line),
                            HasSubstr("com.solvanto.KRT9Background version 1.0.0")));
}

}  // namespace

TEST_F(OtherUsers, CannotConnectToAnySocketOfTheSession) {
    for (const PrivateSocket& target : PrivateSockets()) {
        EXPECT_EQ(Outcome(*Attack(target)),
                  std::to_string(kTries) + " refused, 0 closed, 0 answered, 0 kept\n")
            << target.socket;
    }
    ExpectUntouched();
}

// The folder's mode is what keeps others out; without it each peer's user is looked at.
TEST_F(OtherUsers, AreClosedAtOnceWhenTheModesWereRelaxedByHandAndTheOwnerIsServedMeanwhile) {
    WireClient owner;
    ASSERT_TRUE(owner.Connected());
    ASSERT_EQ(chmod(Folder().c_str(), 0755), 0);
    std::vector<std::unique_ptr<ChildProcess>> strangers;
    for (const PrivateSocket& target : PrivateSockets()) {
        ASSERT_EQ(chmod((Folder() / target.socket).c_str(), 0777), 0);
    }
    for (const PrivateSocket& target : PrivateSockets()) {
        strangers.push_back(Attack(target));
    }
    for (std::uint32_t sequence = 1; sequence <= kTries; ++sequence) {
        ASSERT_TRUE(owner.SendBytes(WireClient::Request("JGlM", {}, sequence)));
        const auto reply = owner.ReceiveReply();
        ASSERT_TRUE(reply && reply->sequence == sequence && reply->data.size() == 8);
    }
    for (const auto& stranger : strangers) {
        EXPECT_EQ(Outcome(*stranger),
                  "0 refused, " + std::to_string(kTries) + " closed, 0 answered, 0 kept\n");
    }
    ASSERT_EQ(chmod(Folder().c_str(), 0700), 0);
    ExpectUntouched();
}

// The same frames, sent by the owner, have an effect: they are refused for who sends them.
TEST_F(OtherUsers, SendWhatTheOwnerWouldBeAnsweredTo) {
    for (const PrivateSocket& target : PrivateSockets()) {
        test_support::SocketPeer owner(target.socket);
        ASSERT_TRUE(owner.SendBytes(target.frame)) << target.socket;
        EXPECT_TRUE(owner.ReceivePayload()) << target.socket;
    }
    EXPECT_TRUE(stage->Companion().WaitForOutput("JXXX"));
    EXPECT_NE(DesktopLog(), logBefore) << "the button was pressed";
}

TEST_F(OtherUsers, ProgramsPointedAtThisSessionAreTurnedAway) {
    const auto files = stage->Session().Files();
    ExpectTurnedAway("cannot be opened: Permission denied");
    EXPECT_EQ(stage->Session().Files(), files);
    ExpectUntouched();
}

TEST_F(OtherUsers, ProgramsPointedAtThisSessionAreRefusedWhenItsModesWereRelaxedByHand) {
    const auto files = stage->Session().Files();
    ASSERT_EQ(chmod(Folder().c_str(), 0777), 0);
    ExpectTurnedAway("belongs to user 0 instead of 65534");
    ASSERT_EQ(chmod(Folder().c_str(), 0700), 0);
    EXPECT_EQ(stage->Session().Files(), files);
    ExpectUntouched();
}
