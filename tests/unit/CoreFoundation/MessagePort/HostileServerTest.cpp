// Servers that do not keep to the rules, or are slow, or leave.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "platform/LocalSocket/Socket.h"
#include "platform/Testing/TestClock.h"
#include "platform/Variants/Variants.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/CoreFoundation/MessagePort/Ports.h"
#include "tests/unit/CoreFoundation/MessagePort/RawPeer.h"

namespace message_port_test {
namespace {

class HostileServerTest : public testing::Test {
  protected:
    void SetUp() override {
        listener_ = local_socket::Listener::Create("port", nullptr, nullptr);
        ASSERT_TRUE(listener_);
        client_.emplace("port");
        peer_.emplace(listener_->Accept());
    }

    test_support::SessionFixture session_;
    std::optional<local_socket::Listener> listener_;
    std::optional<Client> client_;
    std::optional<RawPeer> peer_;
};

TEST_F(HostileServerTest, AnswersThatAreNoReplyMakeThePortInvalid) {
    for (const std::string& bytes : {Frame("garbage"), Request(1, "x"), std::string(4, '\xff')}) {
        peer_->Send(bytes);
        EXPECT_EQ(client_->Ask("x").result, kCFMessagePortBecameInvalidError);
        EXPECT_EQ(client_->Ask("x").result, kCFMessagePortIsInvalid);
        EXPECT_TRUE(peer_->IsDisconnected());
        client_.emplace("port");
        peer_.emplace(listener_->Accept());
    }
}

TEST_F(HostileServerTest, RepliesToRequestsThatWereNeverMadeAreDropped) {
    peer_->Send(MessageFrame(MessageHeader::Kind::reply, 77, "invented", false));
    peer_->Send(MessageFrame(MessageHeader::Kind::reply, 1, "right", false));
    peer_->Send(MessageFrame(MessageHeader::Kind::reply, 1, "again", false));
    EXPECT_EQ(client_->Ask("x").reply, "right");
}

TEST_F(HostileServerTest, ReplyThatNobodyReadYetLeavesThePortValid) {
    peer_->Send(MessageFrame(MessageHeader::Kind::reply, 77, "invented", false));
    EXPECT_TRUE(CFMessagePortIsValid(client_->Port()));
}

const std::string kTooMuchAtOnce(5'000'000, 'x');

// Reads what comes, on a thread, until there is no more for long enough.
class Reading {
  public:
    explicit Reading(RawPeer& peer)
        : thread_([this, &peer] {
              while (!over_) {
                  count_ += peer.Received().size();
                  std::this_thread::sleep_for(std::chrono::milliseconds(1));
              }
              count_ += peer.Received().size();
          }) {}
    ~Reading() { Finish(); }

    // The number of bytes that came.
    std::size_t Finish() {
        over_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
        return count_;
    }

  private:
    std::atomic<bool> over_ = false;
    std::size_t count_ = 0;
    std::thread thread_;
};

TEST_F(HostileServerTest, SlowReaderGetsTheWholeOfAMessageWithinTheSendTimeout) {
    Reading reading(*peer_);
    EXPECT_EQ(client_->Tell(kTooMuchAtOnce, 30), kCFMessagePortSuccess);
    EXPECT_GT(reading.Finish(), kTooMuchAtOnce.size()) << "the sender may never run its loop";
}

TEST_F(HostileServerTest, PeerThatLeavesInTheMiddleOfAMessageFailsItsSender) {
    std::thread leaving([this] {
        peer_->WaitUntilFull();
        peer_->Close();
    });
    EXPECT_EQ(client_->Tell(kTooMuchAtOnce, 30), kCFMessagePortTransportError);
    EXPECT_EQ(client_->Tell("x"), kCFMessagePortIsInvalid);
    leaving.join();
}

TEST_F(HostileServerTest, PeerThatLeavesInTheMiddleOfAMessageFailsTheNextSender) {
    EXPECT_EQ(client_->Tell(kTooMuchAtOnce, 0), kCFMessagePortSuccess);
    peer_->Close();
    EXPECT_EQ(client_->Tell("x"), kCFMessagePortTransportError);
    EXPECT_FALSE(CFMessagePortIsValid(client_->Port()));
}

TEST_F(HostileServerTest, PeerThatLeavesInTheMiddleOfAMessageIsNoticedByTheRunLoop) {
    EXPECT_EQ(client_->Tell(kTooMuchAtOnce, 0), kCFMessagePortSuccess);
    peer_->Send(MessageFrame(MessageHeader::Kind::reply, 77, "last words", false));
    peer_->Close();
    RunPasses(1);
    EXPECT_EQ(client_->Tell("x"), kCFMessagePortIsInvalid);
}

TEST_F(HostileServerTest, PeerThatLeavesInTheMiddleOfARequestEndsTheWaitForItsReply) {
    std::thread leaving([this] {
        peer_->WaitUntilFull();
        peer_->Close();
    });
    EXPECT_EQ(client_->Ask(kTooMuchAtOnce, 1, 30, kCFRunLoopDefaultMode, 30),
              (Client::Outcome{kCFMessagePortBecameInvalidError, std::nullopt}));
    leaving.join();
}

// The queue of a port has no limit but the socket's here.
TEST_F(HostileServerTest, FullSocketTakesAMessageWithinTheSendTimeoutOnceThePeerReads) {
    const platform_testing::UnderVariant longQueue(platform_testing::Variant::longPortQueue);
    while (client_->Tell("message", 0) == kCFMessagePortSuccess) {
    }
    Reading reading(*peer_);
    EXPECT_EQ(client_->Tell("one more", 30), kCFMessagePortSuccess);
}

TEST_F(HostileServerTest, SendTimeoutOfTenDaysIsNone) {
    const platform_testing::TestClock clock;
    while (client_->Tell("message", 0) == kCFMessagePortSuccess) {
    }
    std::thread reading([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        peer_->Received();
    });
    EXPECT_EQ(client_->Tell("one more", 10.0 * 24 * 60 * 60), kCFMessagePortSuccess);
    EXPECT_EQ(CFAbsoluteTimeGetCurrent(), 0) << "the test clock was moved to the time-out";
    reading.join();
}

// Which of the two it is depends on whether the send has begun.
TEST_F(HostileServerTest, PortThatAnotherThreadInvalidatesEndsTheWaitForRoom) {
    while (client_->Tell("message", 0) == kCFMessagePortSuccess) {
    }
    std::thread invalidating([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        CFMessagePortInvalidate(client_->Port());
    });
    EXPECT_THAT(client_->Tell("one more", 30),
                testing::AnyOf(kCFMessagePortTransportError, kCFMessagePortIsInvalid));
    invalidating.join();
}

TEST_F(HostileServerTest, ConnectionThatEndsInTheMiddleOfAReplyBecameInvalid) {
    peer_->Send(MessageFrame(MessageHeader::Kind::reply, 1, "whole", false).substr(0, 9));
    peer_->Close();
    EXPECT_EQ(client_->Tell("x"), kCFMessagePortTransportError);
}

}  // namespace
}  // namespace message_port_test
