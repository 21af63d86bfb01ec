#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cmath>
#include <csignal>
#include <fstream>
#include <limits>

#include "platform/DesktopLink/Session.h"
#include "platform/DesktopLink/SocketTransport.h"
#include "platform/Testing/LogCapture.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/DesktopLink/FakeDesktop.h"

namespace desktop_link {
namespace {

constexpr double kAmple = 5;     // seconds; never used up
constexpr double kShort = 0.02;  // seconds; always used up

Request Ask(std::int64_t number) {
    Request request;
    request.operation = Operation::midiConnectSource;
    request.number = number;
    return request;
}

Reply Answer(const std::string& text) {
    Reply reply;
    reply.text = text;
    return reply;
}

Application Editor() {
    return {501, "com.example.editor", std::nullopt, "Editor"};
}

class SocketTransportTest : public testing::Test {
  protected:
    ~SocketTransportTest() override { ForgetSession(); }

    test_support::SessionFixture session_;
};

TEST_F(SocketTransportTest, WithoutADesktopAnExchangeAnswersNothingAndSaysUnreachable) {
    SocketTransport transport;
    EXPECT_FALSE(transport.Exchange(Ask(1), kAmple));
    EXPECT_TRUE(transport.Unreachable());
}

TEST_F(SocketTransportTest, ConnectsAtTheFirstExchangeAndSendsHelloBeforeTheRequestWithoutWaiting) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Accept();
        const auto hello = peer.Receive();
        const auto request = peer.Receive();  // although hello has not been answered
        EXPECT_EQ(hello.request, Request{});
        EXPECT_EQ(request.request, Ask(7));
        EXPECT_NE(hello.sequence, request.sequence);
        peer.Send(hello.sequence, Answer("hello"));
        peer.Send(request.sequence, Answer("seven"));
    });
    SocketTransport transport;
    const auto reply = transport.Exchange(Ask(7), kAmple);
    ASSERT_TRUE(reply) << "no reply came";
    EXPECT_EQ(reply->text, "seven");
    EXPECT_FALSE(transport.Unreachable());
    desktop.Finish();
}

TEST_F(SocketTransportTest, ReplyMayComeBeforeTheOneToHello) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Accept();
        const auto hello = peer.Receive();
        const auto request = peer.Receive();
        peer.Send(request.sequence, Answer("first"));
        peer.Send(hello.sequence, Answer(""));
        peer.Send(peer.Receive().sequence, Answer("second"));
    });
    SocketTransport transport;
    EXPECT_EQ(transport.Exchange(Ask(1), kAmple).value_or(Reply{}).text, "first");
    EXPECT_EQ(transport.Exchange(Ask(2), kAmple).value_or(Reply{}).text, "second");
    desktop.Finish();
}

TEST_F(SocketTransportTest, HelloAnswersTheSessionAndIsSentOncePerConnection) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 0.25});
        const auto request = peer.Receive();
        EXPECT_EQ(request.request.operation, Operation::midiConnectSource)
            << "a second hello was sent";
        peer.Send(request.sequence, Reply{});
    });
    SocketTransport transport;
    for (int time = 0; time < 2; ++time) {
        const auto reply = transport.Exchange(Request{}, kAmple);
        ASSERT_TRUE(reply && reply->session);
        EXPECT_EQ(reply->session->frontApplication, Editor());
        EXPECT_EQ(reply->session->messagingTimeout, 0.25);
    }
    EXPECT_TRUE(transport.Exchange(Ask(1), kAmple));
    desktop.Finish();
}

TEST_F(SocketTransportTest, LateReplyToATimedOutCallIsDropped) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        const auto first = peer.Receive();
        const auto second = peer.Receive();
        peer.Send(first.sequence, Answer("late"));
        peer.Send(second.sequence, Answer("in time"));
    });
    SocketTransport transport;
    EXPECT_FALSE(transport.Exchange(Ask(1), kShort)) << "nobody answered this call";
    EXPECT_FALSE(transport.Unreachable()) << "the desktop is there, only slow";
    const auto reply = transport.Exchange(Ask(2), kAmple);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->text, "in time");
    desktop.Finish();
}

TEST_F(SocketTransportTest, TimeoutThatIsNoPositiveNumberIsOverAtOnce) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        EXPECT_TRUE(peer.ClientHangsUp());
    });
    {
        SocketTransport transport;
        EXPECT_FALSE(transport.Exchange(Ask(1), 0));
        EXPECT_FALSE(transport.Exchange(Ask(1), -1));
        EXPECT_FALSE(transport.Exchange(Ask(1), std::nan("")));
        EXPECT_FALSE(transport.Exchange(Ask(1), -std::numeric_limits<double>::infinity()));
    }
    desktop.Finish();
}

TEST_F(SocketTransportTest, NotificationsBetweenRequestAndReplyAreNotTakenForTheReply) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        const auto request = peer.Receive();
        peer.Send(Notification{Editor()});
        peer.Send(Notification{});
        peer.Send(request.sequence, Answer("reply"));
    });
    SocketTransport transport;
    const auto reply = transport.Exchange(Ask(1), kAmple);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->text, "reply");
    desktop.Finish();
}

TEST_F(SocketTransportTest, ReplyInManyPiecesIsPutTogether) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        const auto request = peer.Receive();
        const auto payload =
            MakePayload(FrameKind::reply, request.sequence, Encode(Answer("in pieces")));
        std::vector<std::uint8_t> bytes = {static_cast<std::uint8_t>(payload.size()), 0, 0, 0};
        bytes.insert(bytes.end(), payload.begin(), payload.end());
        for (const std::uint8_t byte : bytes) {
            peer.SendBytes(std::span(&byte, 1));
        }
    });
    SocketTransport transport;
    EXPECT_EQ(transport.Exchange(Ask(1), kAmple).value_or(Reply{}).text, "in pieces");
    desktop.Finish();
}

TEST_F(SocketTransportTest, DesktopThatDiesInsteadOfReplyingAnswersNothingAndIsUnreachableNext) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        peer.Receive();
        peer.StopListening();
        peer.HangUp();
    });
    SocketTransport transport;
    EXPECT_FALSE(transport.Exchange(Ask(1), kAmple));
    EXPECT_FALSE(transport.Unreachable()) << "the pending call did reach a desktop";
    desktop.Finish();
    EXPECT_FALSE(transport.Exchange(Ask(2), kAmple));
    EXPECT_TRUE(transport.Unreachable());
}

TEST_F(SocketTransportTest, DesktopThatDiesInTheMiddleOfAReplyAnswersNothing) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        const auto request = peer.Receive();
        const auto payload =
            MakePayload(FrameKind::reply, request.sequence, Encode(Answer("torn")));
        const std::vector<std::uint8_t> start = {
            static_cast<std::uint8_t>(payload.size()), 0, 0, 0, payload[0], payload[1]};
        peer.SendBytes(start);
        peer.HangUp();
    });
    SocketTransport transport;
    EXPECT_FALSE(transport.Exchange(Ask(1), kAmple));
    EXPECT_FALSE(transport.Unreachable());
    desktop.Finish();
}

TEST_F(SocketTransportTest, ReplySentJustBeforeTheDesktopDiesStillCounts) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        peer.Send(peer.Receive().sequence, Answer("last words"));
        peer.HangUp();
    });
    SocketTransport transport;
    EXPECT_EQ(transport.Exchange(Ask(1), kAmple).value_or(Reply{}).text, "last words");
    desktop.Finish();
}

TEST_F(SocketTransportTest, CallAfterADesktopWasReplacedReachesTheNewOne) {
    SocketTransport transport;
    {
        FakeDesktop desktop([](FakeDesktop& peer) {
            peer.Greet();
            peer.Send(peer.Receive().sequence, Answer("old"));
        });
        EXPECT_EQ(transport.Exchange(Ask(1), kAmple).value_or(Reply{}).text, "old");
        desktop.Finish();
    }
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        const auto request = peer.Receive();
        EXPECT_EQ(request.request, Ask(2));
        peer.Send(request.sequence, Answer("new"));
    });
    const auto reply = transport.Exchange(Ask(2), kAmple);
    ASSERT_TRUE(reply) << "the connection was not made again";
    EXPECT_EQ(reply->text, "new");
    desktop.Finish();
}

TEST_F(SocketTransportTest, DesktopThatStartsLaterIsFoundAtTheNextCall) {
    SocketTransport transport;
    EXPECT_FALSE(transport.Exchange(Ask(1), kAmple));
    EXPECT_TRUE(transport.Unreachable());
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        peer.Send(peer.Receive().sequence, Answer("found"));
    });
    EXPECT_EQ(transport.Exchange(Ask(2), kAmple).value_or(Reply{}).text, "found");
    EXPECT_FALSE(transport.Unreachable());
    desktop.Finish();
}

// Each ends the connection: a peer that breaks the framing once cannot be trusted with the next
// reply.
class MisbehavingDesktop
    : public SocketTransportTest,
      public testing::WithParamInterface<std::pair<const char*, std::vector<std::uint8_t>>> {};

TEST_P(MisbehavingDesktop, IsHungUpOnAndTheCallAnswersNothing) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        peer.Receive();
        peer.SendBytes(GetParam().second);
        EXPECT_TRUE(peer.ClientHangsUp());
    });
    SocketTransport transport;
    EXPECT_FALSE(transport.Exchange(Ask(1), kAmple)) << GetParam().first;
    EXPECT_FALSE(transport.Unreachable());
    desktop.Finish();
}

INSTANTIATE_TEST_SUITE_P(
    Sends, MisbehavingDesktop,
    testing::Values(
        std::pair{"AnEmptyFrame", std::vector<std::uint8_t>{0, 0, 0, 0}},
        std::pair{"AFrameShorterThanItsHeader", std::vector<std::uint8_t>{4, 0, 0, 0, 2, 2, 0, 0}},
        std::pair{"AnUnknownKind", std::vector<std::uint8_t>{5, 0, 0, 0, 9, 2, 0, 0, 0}},
        std::pair{"ARequest", std::vector<std::uint8_t>{5, 0, 0, 0, 1, 2, 0, 0, 0}},
        std::pair{"AReplyOfNoMessage", std::vector<std::uint8_t>{5, 0, 0, 0, 2, 2, 0, 0, 0}},
        std::pair{"AReplyOfGarbage",
                  std::vector<std::uint8_t>{8, 0, 0, 0, 2, 2, 0, 0, 0, 0xC1, 0xFF, 0x00}},
        std::pair{"ANotificationOfGarbage",
                  std::vector<std::uint8_t>{6, 0, 0, 0, 3, 0, 0, 0, 0, 0xC1}},
        std::pair{"AnOversizedFrame", std::vector<std::uint8_t>{0xFF, 0xFF, 0xFF, 0xFF}},
        std::pair{"AnUnknownKindAndAnOversizedFrame",
                  std::vector<std::uint8_t>{5, 0, 0, 0, 9, 2, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}},
        std::pair{"AFrameOneByteTooLarge", std::vector<std::uint8_t>{0x01, 0x00, 0x00, 0x04}}),
    [](const auto& suite) { return suite.param.first; });

TEST_F(SocketTransportTest, RepliesWithSequenceNumbersNeverUsedAreDropped) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        const auto request = peer.Receive();
        peer.Send(0, Answer("zero"));
        peer.Send(0xFFFFFFFF, Answer("future"));
        peer.Send(request.sequence, Answer("right"));
    });
    SocketTransport transport;
    EXPECT_EQ(transport.Exchange(Ask(1), kAmple).value_or(Reply{}).text, "right");
    desktop.Finish();
}

TEST_F(SocketTransportTest, DesktopThatDoesNotReadDelaysACallNoLongerThanItsTimeout) {
    std::promise<void> gaveUp;
    FakeDesktop desktop([&](FakeDesktop& peer) {
        peer.Greet();
        gaveUp.get_future().wait();
        // What was sent in part before is sent whole now, so that the stream stays readable.
        EXPECT_EQ(peer.Receive().request.text.size(), 8u << 20);
        const auto next = peer.Receive();
        EXPECT_EQ(next.request, Ask(2)) << "calls that could not be sent were queued";
        peer.Send(next.sequence, Answer("reads again"));
    });
    SocketTransport transport;
    Request large = Ask(0);
    large.text.assign(8u << 20, 'x');
    EXPECT_FALSE(transport.Exchange(large, kShort));
    EXPECT_FALSE(transport.Exchange(Ask(1), kShort));
    EXPECT_FALSE(transport.Unreachable());
    gaveUp.set_value();
    EXPECT_EQ(transport.Exchange(Ask(2), kAmple).value_or(Reply{}).text, "reads again");
    desktop.Finish();
}

TEST_F(SocketTransportTest, SignalDuringTheWaitForAReplyIsNotTheEndOfIt) {
    static std::atomic<bool> handled = false;
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) { handled = true; };
    sigaction(SIGUSR1, &action, &before);
    FakeDesktop desktop([waiting = pthread_self()](FakeDesktop& peer) {
        peer.Greet();
        const auto request = peer.Receive();
        constexpr useconds_t kMoment = 20'000;
        usleep(kMoment);
        pthread_kill(waiting, SIGUSR1);
        usleep(kMoment);
        peer.Send(request.sequence, Answer("reply"));
    });
    SocketTransport transport;
    EXPECT_EQ(transport.Exchange(Ask(1), kAmple).value_or(Reply{}).text, "reply");
    EXPECT_TRUE(handled);
    desktop.Finish();
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(SocketTransportTest, WhatLiesInThePlaceOfTheDesktopIsLoggedUntilItIsSomethingElse) {
    const std::string place = (session_.Path() / std::string(kSocketName)).string();
    std::ofstream(place).put('x');
    platform_testing::LogCapture log;
    SocketTransport transport;
    transport.Exchange(Ask(1), kAmple);
    transport.Exchange(Ask(1), kAmple);
    EXPECT_TRUE(transport.Unreachable());
    EXPECT_EQ(log.SystemTexts(),
              std::vector<std::string>{"no desktop: " + place + " is not a socket"});
    log.Clear();
    std::filesystem::remove(place);
    transport.Exchange(Ask(1), kAmple);
    EXPECT_EQ(log.SystemTexts(), std::vector<std::string>{}) << "a missing desktop is normal";
    std::filesystem::create_symlink("nowhere", place);
    transport.Exchange(Ask(1), kAmple);
    EXPECT_EQ(log.SystemTexts(),
              std::vector<std::string>{"no desktop: " + place +
                                       " is a symbolic link instead of a socket"});
}

TEST_F(SocketTransportTest, NothingIsInFrontAfterTheDeathOfADesktopThatNobodyObserved) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        peer.Receive();
        peer.StopListening();
        peer.HangUp();
    });
    SocketTransport transport;
    EXPECT_EQ(transport.Exchange(Request{}, kAmple)->session->frontApplication, Editor());
    EXPECT_FALSE(transport.Exchange(Ask(1), kAmple));
    desktop.Finish();
    EXPECT_FALSE(transport.Exchange(Request{}, kAmple)) << "the dead desktop's session was kept";
}

TEST_F(SocketTransportTest, NotificationWithoutAnObserverChangesWhatTheNextHelloAnswers) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        const auto request = peer.Receive();
        peer.Send(Notification{});
        peer.Send(request.sequence, Answer("reply"));
        peer.ClientHangsUp();
    });
    {
        SocketTransport transport;
        transport.Exchange(Request{}, kAmple);
        EXPECT_TRUE(transport.Exchange(Ask(1), kAmple));
        EXPECT_EQ(transport.Exchange(Request{}, kAmple)->session->frontApplication, std::nullopt);
    }
    desktop.Finish();
}

TEST_F(SocketTransportTest, LargeReplyArrivesWhole) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        const auto request = peer.Receive();
        const auto payload = MakePayload(FrameKind::reply, request.sequence,
                                         Encode(Answer(std::string(100'000, 'y'))));
        peer.SendPayload(payload);
    });
    SocketTransport transport;
    EXPECT_EQ(transport.Exchange(Ask(1), kAmple).value_or(Reply{}).text, std::string(100'000, 'y'));
    desktop.Finish();
}

}  // namespace
}  // namespace desktop_link
