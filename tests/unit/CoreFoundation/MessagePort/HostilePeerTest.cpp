// Clients that do not keep to the rules. They speak over bare sockets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <vector>

#include "platform/CoreFoundation/MessagePort/MessageFrame.h"
#include "platform/LocalSocket/Socket.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/WithoutDescriptors.h"
#include "tests/unit/CoreFoundation/MessagePort/Ports.h"
#include "tests/unit/CoreFoundation/MessagePort/RawPeer.h"

namespace message_port_test {
namespace {

using testing::ElementsAre;

int OpenDescriptors() {
    const auto open = std::filesystem::directory_iterator("/proc/self/fd");
    return static_cast<int>(std::distance(begin(open), end(open)));
}

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
    within.SendSome(test_support::FrameStart(kLargest));
    RawPeer above("port");
    above.SendSome(test_support::FrameStart(kLargest + 1));
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
    std::string requests;
    std::string replies;
    for (std::uint32_t i = 1; i <= 5; ++i) {
        requests += Request(i, std::to_string(i));
        replies += MessageFrame(MessageHeader::Kind::reply, i, std::to_string(i), false);
    }
    peer.Send(requests);
    peer.FinishSending();
    RunPasses();
    EXPECT_EQ(peer.Received(), replies);
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

TEST_F(HostilePeerTest, PeerThatLeavesWithoutReadingItsRepliesIsForgotten) {
    RawPeer peer("port");
    const std::string request = Request(1, std::string(50'000, 'x'));
    for (int i = 0; i < 50; ++i) {
        peer.Send(request);
        RunPasses(2);
    }
    const int before = OpenDescriptors();
    peer.Close();
    RunPasses();
    EXPECT_EQ(OpenDescriptors(), before - 2) << "its end and ours";
    ExpectOthersAreServed();
}

TEST_F(HostilePeerTest, NextRequestWaitsUntilTheReplyBeforeItWasRead) {
    const Server large("large",
                       [](SInt32, const std::string&) { return std::string(2'000'000, 'x'); });
    RawPeer peer("large");
    peer.Send(Request(1, "one") + Request(2, "two"));
    RunPasses();
    EXPECT_EQ(large.Requests(), 1);
    for (int i = 0; i < 1000 && large.Requests() == 1; ++i) {
        peer.Received();
        RunPasses(1);
    }
    EXPECT_EQ(large.Requests(), 2);
}

TEST_F(HostilePeerTest, PeerThatSendsGarbageWhileItIsServedGetsNoReply) {
    const Server nested("nested", [](SInt32, const std::string&) {
        RunPasses();
        return "reply";
    });
    RawPeer peer("nested");
    peer.Send(Request(1, "good") + Frame("garbage"));
    RunPasses();
    EXPECT_EQ(nested.Requests(), 1);
    EXPECT_EQ(peer.Received(), "");
    EXPECT_TRUE(peer.IsDisconnected());
    EXPECT_EQ(Client("nested").Ask("x").reply, "reply");
}

// A hang-up is reported even if no event is requested, so that the loop would never wait again.
TEST_F(HostilePeerTest, NewSourceDoesNotWatchAPeerThatIsGoneWhileItsLastRequestIsServed) {
    static int waits = 0;
    CFRunLoopSourceRef source = nullptr;
    std::optional<Server> server;
    server.emplace("port2", [&](SInt32, const std::string& text) {
        if (text == "last") {
            const CFRunLoopSourceRef old =
                CFMessagePortCreateRunLoopSource(nullptr, server->Port(), 0);
            CFRunLoopSourceInvalidate(old);
            CFRelease(old);
            source = CFMessagePortCreateRunLoopSource(nullptr, server->Port(), 0);
            CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
            waits = 0;
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
        }
        return std::nullopt;
    });
    const CFRunLoopObserverRef observer = CFRunLoopObserverCreate(
        nullptr, kCFRunLoopBeforeWaiting, true, 0,
        [](CFRunLoopObserverRef, CFRunLoopActivity, void*) { ++waits; }, nullptr);
    CFRunLoopAddObserver(CFRunLoopGetCurrent(), observer, kCFRunLoopDefaultMode);
    RawPeer peer("port2");
    std::string requests;
    for (const char* text : {"1", "2", "3", "4", "5", "last"}) {
        requests += MessageFrame(MessageHeader::Kind::request, 0, text, false);
    }
    peer.Send(requests);
    peer.Close();
    RunPasses(20);
    EXPECT_EQ(server->Requests(), 6);
    EXPECT_LT(waits, 10);
    CFRunLoopObserverInvalidate(observer);
    CFRelease(observer);
    server.reset();
    CFRelease(source);
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
    {
        const test_support::WithoutDescriptors none;
        RunPasses();
        EXPECT_TRUE(first.IsDisconnected());
        EXPECT_TRUE(second.IsDisconnected())
            << "whoever is left waiting keeps the loop awake for ever";
        ExpectOthersAreServed();
    }
    RawPeer later("port");
    later.Send(Request(1, "later"));
    RunPasses();
    EXPECT_EQ(later.Received(), MessageFrame(MessageHeader::Kind::reply, 1, "later", false));
}

}  // namespace
}  // namespace message_port_test
