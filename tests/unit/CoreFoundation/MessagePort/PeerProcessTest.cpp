// Ports of different processes, and what becomes of them when one of the processes ends or stops.
#include <gtest/gtest.h>

#include <csignal>

#include "platform/Testing/LogCapture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Paths.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/CoreFoundation/MessagePort/Ports.h"

namespace message_port_test {
namespace {

using Outcome = Client::Outcome;

class PeerProcessTest : public testing::Test {
  protected:
    // A process that serves the name "port"; see PortServer.cpp.
    void StartServer(const std::string& behaviour) {
        server_.emplace(KRT9_BINARIES "/port_server", std::vector<std::string>{behaviour});
        ASSERT_TRUE(server_->WaitForOutput("serving")) << server_->StandardError();
    }

    test_support::SessionFixture session_;
    std::optional<test_support::ChildProcess> server_;
};

TEST_F(PeerProcessTest, RequestIsAnswered) {
    StartServer("echo");
    const Client client("port");
    ASSERT_NE(client.Port(), nullptr);
    EXPECT_EQ(client.Ask("text"), (Outcome{0, "text"}));
    const std::string large(2'000'000, 'x');
    EXPECT_TRUE(client.Ask(large).reply == large);
}

TEST_F(PeerProcessTest, NameIsTaken) {
    StartServer("echo");
    const platform_testing::LogCapture log;
    Boolean shouldFreeInfo = false;
    EXPECT_EQ(CFMessagePortCreateLocal(nullptr, CFSTR("port"), nullptr, nullptr, &shouldFreeInfo),
              nullptr);
    EXPECT_TRUE(shouldFreeInfo);
    EXPECT_EQ(Client("port").Ask("still there").reply, "still there");
}

TEST_F(PeerProcessTest, NameOfAKilledProcessIsFree) {
    StartServer("echo");
    server_->Signal(SIGKILL);
    server_->WaitForExit();
    EXPECT_EQ(Client("port").Port(), nullptr);
    const Server own("port", Echo);
    EXPECT_NE(own.Port(), nullptr);
}

TEST_F(PeerProcessTest, ProcessKilledWhileTheRequestWaitsBecameInvalid) {
    StartServer("die");
    const Client client("port");
    EXPECT_EQ(client.Ask("x"), (Outcome{kCFMessagePortBecameInvalidError, std::nullopt}));
    EXPECT_EQ(client.Ask("x").result, kCFMessagePortIsInvalid);
}

TEST_F(PeerProcessTest, EndOfTheProcessIsToldByTheCallback) {
    StartServer("echo");
    const Client client("port");
    CFMessagePortSetInvalidationCallBack(
        client.Port(), [](CFMessagePortRef, void*) { CFRunLoopStop(CFRunLoopGetCurrent()); });
    server_->Signal(SIGKILL);
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false), kCFRunLoopRunStopped);
    EXPECT_EQ(client.Tell("x"), kCFMessagePortIsInvalid);
}

TEST_F(PeerProcessTest, StoppedProcessTimesOutAndAnswersLater) {
    StartServer("stop");
    const Client client("port");
    EXPECT_EQ(client.Ask("x", 1, 0.05), (Outcome{kCFMessagePortReceiveTimeout, std::nullopt}));
    EXPECT_TRUE(CFMessagePortIsValid(client.Port()));
    const std::string body(10'000, 'x');
    SInt32 result = kCFMessagePortSuccess;
    for (int i = 0; i < 1000 && result == kCFMessagePortSuccess; ++i) {
        result = client.Tell(body, 0.01);
    }
    EXPECT_EQ(result, kCFMessagePortSendTimeout);
    server_->Signal(SIGCONT);
    EXPECT_EQ(client.Ask("again").reply, "again");
}

}  // namespace
}  // namespace message_port_test
