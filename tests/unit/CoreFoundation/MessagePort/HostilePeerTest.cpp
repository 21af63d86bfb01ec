// Peers that do not keep to the rules, on either side. They speak over bare sockets.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <vector>

#include "platform/CoreFoundation/MessagePort/MessageFrame.h"
#include "platform/LocalSocket/Socket.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/CoreFoundation/MessagePort/Ports.h"

namespace message_port_test {
namespace {

using message_port::MessageHeader;
using testing::ElementsAre;

std::string LittleEndian(std::uint32_t value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) {
        bytes += static_cast<char>(value >> (8 * i));
    }
    return bytes;
}

std::string Frame(const std::string& payload) {
    return LittleEndian(static_cast<std::uint32_t>(payload.size())) + payload;
}

std::string MessageFrame(MessageHeader::Kind kind, std::uint32_t sequence, const std::string& data,
                         bool wantsReply = true) {
    const auto header = message_port::EncodeHeader({kind, wantsReply, 1, sequence});
    return Frame(std::string(header.begin(), header.end()) + data);
}

std::string Request(std::uint32_t sequence, const std::string& data) {
    return MessageFrame(MessageHeader::Kind::request, sequence, data);
}

// The far end of a connection.
class RawPeer {
  public:
    explicit RawPeer(const std::string& name) : socket_(local_socket::Connect(name)) {}
    explicit RawPeer(local_socket::Descriptor socket) : socket_(std::move(socket)) {}

    // The number of bytes that were taken.
    std::size_t Send(const std::string& bytes) {
        const ssize_t count =
            send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        return count > 0 ? static_cast<std::size_t>(count) : 0;
    }

    std::string Received() {
        std::string bytes;
        char buffer[4096];
        ssize_t count = 0;
        while ((count = read(socket_.get(), buffer, sizeof buffer)) > 0) {
            bytes.append(buffer, static_cast<std::size_t>(count));
        }
        ended_ = count == 0 || errno != EAGAIN;
        return bytes;
    }

    bool IsDisconnected() {
        Received();
        return ended_;
    }

    void FinishSending() { shutdown(socket_.get(), SHUT_WR); }
    void Close() { socket_.reset(); }

  private:
    local_socket::Descriptor socket_;
    bool ended_ = false;
};

class HostilePeerTest : public testing::Test {
  protected:
    void ExpectOthersAreServed() { EXPECT_EQ(client_.Ask("hello"), (Client::Outcome{0, "hello"})); }

    test_support::SessionFixture session_;
    std::vector<std::string> served_;
    Server server_{"port", [this](SInt32, const std::string& text) {
                       served_.push_back(text.substr(0, 20));
                       return text;
                   }};
    Client client_{"port"};
};

TEST_F(HostilePeerTest, WellFormedRequestOverABareSocketIsAnswered) {
    RawPeer peer("port");
    peer.Send(Request(7, "text"));
    RunPasses();
    EXPECT_EQ(peer.Received(), MessageFrame(MessageHeader::Kind::reply, 7, "text", false));
    EXPECT_FALSE(peer.IsDisconnected());
}

TEST_F(HostilePeerTest, PayloadThatIsNoRequestEndsItsConnectionAlone) {
    std::string unknownKind = Request(1, "x");
    unknownKind[4] = 3;
    std::string unknownFlag = Request(1, "x");
    unknownFlag[5] = 2;
    std::string unzeroed = Request(1, "x");
    unzeroed[6] = 1;
    for (const std::string& bytes :
         {Frame(""), Frame("short"), Frame(std::string(11, '\1')), unknownKind, unknownFlag,
          unzeroed, MessageFrame(MessageHeader::Kind::reply, 1, "x"),
          std::string("GET / HTTP/1.1\r\n\r\n"), std::string(4, '\xff'),
          std::string(70'000, '\xff')}) {
        RawPeer peer("port");
        peer.Send(bytes);
        RunPasses();
        EXPECT_TRUE(peer.IsDisconnected()) << testing::PrintToString(bytes.substr(0, 30));
    }
    EXPECT_THAT(served_, testing::IsEmpty());
    ExpectOthersAreServed();
}

TEST_F(HostilePeerTest, RequestsBeforeGarbageAreServed) {
    RawPeer peer("port");
    peer.Send(Request(1, "good") + Frame("garbage") + Request(2, "never"));
    RunPasses();
    EXPECT_THAT(served_, ElementsAre("good"));
    EXPECT_TRUE(peer.IsDisconnected());
}

TEST_F(HostilePeerTest, LengthAboveTheBoundEndsTheConnection) {
    constexpr auto kLargest =
        static_cast<std::uint32_t>(message_port::kHeaderSize + message_port::kLargestData);
    RawPeer within("port");
    within.Send(LittleEndian(kLargest));
    RawPeer above("port");
    above.Send(LittleEndian(kLargest + 1));
    RunPasses();
    EXPECT_FALSE(within.IsDisconnected());
    EXPECT_TRUE(above.IsDisconnected());
    ExpectOthersAreServed();
}

TEST_F(HostilePeerTest, HalfAMessageWaitsWithoutDisturbingAnyone) {
    const std::string request = Request(1, "slowly");
    RawPeer peer("port");
    for (const char byte : request) {
        EXPECT_THAT(served_, testing::IsEmpty());
        peer.Send(std::string(1, byte));
        RunPasses(2);
    }
    EXPECT_THAT(served_, ElementsAre("slowly"));
}

TEST_F(HostilePeerTest, HalfAMessageThatIsNeverFinishedIsDropped) {
    RawPeer peer("port");
    peer.Send(Request(1, "text").substr(0, 10));
    RunPasses();
    peer.Close();
    RunPasses();
    EXPECT_THAT(served_, testing::IsEmpty());
    ExpectOthersAreServed();
}

TEST_F(HostilePeerTest, PeerThatLeavesAfterItsRequestIsStillServed) {
    RawPeer peer("port");
    peer.Send(Request(1, "farewell"));
    peer.Close();
    RunPasses();
    EXPECT_THAT(served_, ElementsAre("farewell"));
    ExpectOthersAreServed();
}

TEST_F(HostilePeerTest, PeerThatOnlyFinishedSendingGetsItsReplies) {
    RawPeer peer("port");
    peer.Send(Request(1, "one") + Request(2, "two"));
    peer.FinishSending();
    RunPasses();
    EXPECT_EQ(peer.Received(), MessageFrame(MessageHeader::Kind::reply, 1, "one", false) +
                                   MessageFrame(MessageHeader::Kind::reply, 2, "two", false));
    EXPECT_TRUE(peer.IsDisconnected());
}

TEST_F(HostilePeerTest, PeerThatNeverReadsItsRepliesIsServedNoFurther) {
    RawPeer peer("port");
    const std::string request = Request(1, std::string(50'000, 'x'));
    std::size_t taken = 0;
    std::size_t before = 1;
    while (taken != before && taken < (64U << 20)) {
        before = taken;
        std::size_t offset = taken % request.size();
        taken += peer.Send(request.substr(offset));
        RunPasses(4);
    }
    EXPECT_LT(taken, 4U << 20) << "its requests were read without end";
    ExpectOthersAreServed();
    const std::size_t servedBefore = served_.size();
    peer.Received();
    RunPasses();
    EXPECT_GT(served_.size(), servedBefore) << "it was not served again after it read";
}

TEST_F(HostilePeerTest, FloodHasOneTurnAmongTheOthers) {
    RawPeer flood("port");
    std::string requests;
    for (std::uint32_t i = 0; i < 1000; ++i) {
        requests += Request(i, "flood");
    }
    flood.Send(requests);
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true);
    RunPasses(2);
    const std::size_t before = served_.size();
    ExpectOthersAreServed();
    EXPECT_LE(served_.size() - before, 4U) << "the other client waited for the flood";
}

TEST_F(HostilePeerTest, RequestsOfSeveralPeersAreServedInTheOrderOfTheirArrival) {
    std::vector<RawPeer> peers;
    for (int i = 0; i < 5; ++i) {
        peers.emplace_back("port");
    }
    RunPasses();
    for (const int i : {3, 0, 4, 1, 2}) {
        peers[static_cast<std::size_t>(i)].Send(Request(1, std::to_string(i)));
    }
    RunPasses();
    EXPECT_THAT(served_, ElementsAre("3", "0", "4", "1", "2"));
}

TEST_F(HostilePeerTest, HundredClientsAreServed) {
    std::vector<RawPeer> peers;
    for (int i = 0; i < 100; ++i) {
        peers.emplace_back("port");
        peers.back().Send(Request(static_cast<std::uint32_t>(i), std::to_string(i)));
    }
    RunPasses(300);
    for (std::size_t i = 0; i < peers.size(); ++i) {
        EXPECT_EQ(peers[i].Received(),
                  MessageFrame(MessageHeader::Kind::reply, static_cast<std::uint32_t>(i),
                               std::to_string(i), false));
    }
    peers.clear();
    RunPasses(300);
    ExpectOthersAreServed();
}

TEST_F(HostilePeerTest, ClientsAreTurnedAwayWhileNoDescriptorIsLeft) {
    ExpectOthersAreServed();
    RawPeer first("port");
    RawPeer second("port");
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few{100, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few);
    std::vector<local_socket::Descriptor> others;
    while (local_socket::Descriptor other{open("/dev/null", O_RDONLY)}) {
        others.push_back(std::move(other));
    }
    RunPasses();
    EXPECT_TRUE(first.IsDisconnected());
    EXPECT_TRUE(second.IsDisconnected()) << "whoever is left waiting keeps the loop awake for ever";
    ExpectOthersAreServed();
    others.clear();
    setrlimit(RLIMIT_NOFILE, &before);
    RawPeer later("port");
    later.Send(Request(1, "later"));
    RunPasses();
    EXPECT_EQ(later.Received(), MessageFrame(MessageHeader::Kind::reply, 1, "later", false));
}

// The other way round: a client of a server that does not keep to the rules.
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

TEST_F(HostileServerTest, ConnectionThatEndsInTheMiddleOfAReplyBecameInvalid) {
    peer_->Send(MessageFrame(MessageHeader::Kind::reply, 1, "whole", false).substr(0, 9));
    peer_->Close();
    EXPECT_EQ(client_->Tell("x"), kCFMessagePortTransportError);
}

}  // namespace
}  // namespace message_port_test
