// What the main run loop does for the connection to the desktop.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <fstream>

#include "platform/DesktopLink/Session.h"
#include "platform/DesktopLink/SocketTransport.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/DesktopLink/FakeDesktop.h"

namespace desktop_link {
namespace {

using Front = std::optional<Application>;

Application Editor() {
    return {501, "com.example.editor", std::nullopt, "Editor"};
}
Application Player() {
    return {502, "com.example.player", std::nullopt, "Player"};
}

Request Ask() {
    Request request;
    request.operation = Operation::screens;
    return request;
}

class NotificationDelivery : public testing::Test {
  protected:
    ~NotificationDelivery() override { ForgetSession(); }

    void Observe() {
        transport_->SetNotificationHandler([this](const Notification& notification) {
            delivered_.push_back(notification.activated);
        });
        transport_->Exchange(Request{}, 5);
    }

    // Runs the main run loop until it has delivered one notification, or a few seconds.
    void RunForOne() {
        EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 5, true), kCFRunLoopRunHandledSource)
            << "nothing was delivered";
    }

    // Delivers what is there.
    static void RunOnce() { CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true); }

    test_support::SessionFixture session_;
    std::vector<Front> delivered_;
    std::unique_ptr<SocketTransport> transport_ = std::make_unique<SocketTransport>();
};

TEST_F(NotificationDelivery, IsOneByOneInOrderOnTheMainRunLoop) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        peer.Send(Notification{Player()});
        peer.Send(Notification{});
        peer.Send(Notification{Editor()});
        peer.ClientHangsUp();
    });
    Observe();
    EXPECT_EQ(delivered_, std::vector<Front>{}) << "what was in front at first is not reported";
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{Player()}));
    RunForOne();
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{Player(), std::nullopt, Editor()}));
    transport_.reset();
    desktop.Finish();
}

TEST_F(NotificationDelivery, NeverHappensInsideACall) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        const auto request = peer.Receive();
        peer.Send(Notification{Player()});
        peer.Send(request.sequence, Reply{});
        peer.ClientHangsUp();
    });
    Observe();
    EXPECT_TRUE(transport_->Exchange(Ask(), 5));
    EXPECT_TRUE(delivered_.empty());
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{Player()}));
    transport_.reset();
    desktop.Finish();
}

TEST_F(NotificationDelivery, DesktopThatDiesLeavesNothingInFrontAndTheNextOneIsFoundWithoutACall) {
    {
        FakeDesktop desktop([](FakeDesktop& peer) { peer.Greet({Editor(), 6}); });
        Observe();
        desktop.Finish();
    }
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{std::nullopt}));
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Player(), 6});
        peer.ClientHangsUp();
    });
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{std::nullopt, Player()}));
    transport_.reset();
    desktop.Finish();
}

TEST_F(NotificationDelivery, DesktopThatStartsLaterIsFoundWithoutACall) {
    Observe();
    EXPECT_TRUE(transport_->Unreachable());
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        peer.ClientHangsUp();
    });
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{Editor()}));
    transport_.reset();
    desktop.Finish();
}

TEST_F(NotificationDelivery, DeathFoundByACallIsDeliveredByTheRunLoop) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        peer.Receive();
        peer.StopListening();
        peer.HangUp();
    });
    Observe();
    EXPECT_FALSE(transport_->Exchange(Ask(), 5));
    EXPECT_TRUE(delivered_.empty());
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{std::nullopt}));
    desktop.Finish();
}

TEST_F(NotificationDelivery, OtherFilesOfTheSessionAreNoDesktop) {
    Observe();
    std::ofstream(session_.Path() / "something").put('x');
    RunOnce();
    EXPECT_TRUE(delivered_.empty());
    EXPECT_FALSE(transport_->Exchange(Ask(), 5));
    EXPECT_TRUE(transport_->Unreachable());
}

TEST_F(NotificationDelivery, DesktopThatSendsGarbageToTheRunLoopIsHungUpOn) {
    std::promise<void> observing;
    FakeDesktop desktop([&](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        observing.get_future().wait();
        const std::vector<std::uint8_t> garbage = {0xFF, 0xFF, 0xFF, 0xFF, 1, 2, 3};
        peer.SendBytes(garbage);
        EXPECT_TRUE(peer.ClientHangsUp());
    });
    Observe();
    observing.set_value();
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{std::nullopt}));
    desktop.Finish();
}

TEST_F(NotificationDelivery, DesktopThatBreaksTheFramingTwiceAtOnceIsHungUpOnOnce) {
    std::promise<void> observing;
    FakeDesktop desktop([&](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        observing.get_future().wait();
        // A frame of an unknown kind, and a length beyond all bounds.
        const std::vector<std::uint8_t> garbage = {5, 0, 0,    0,    9,    2,   0,
                                                   0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
        peer.SendBytes(garbage);
        EXPECT_TRUE(peer.ClientHangsUp());
    });
    Observe();
    observing.set_value();
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{std::nullopt}));
    desktop.Finish();
}

TEST_F(NotificationDelivery, BeforeTheSessionIsKnownIsNone) {
    std::promise<void> observing;
    FakeDesktop desktop([&](FakeDesktop& peer) {
        peer.Accept();
        const auto hello = peer.Receive();
        peer.Send(Notification{Player()});
        observing.get_future().wait();
        Reply reply;
        reply.session = Session{Editor(), 6};
        peer.Send(hello.sequence, reply);
        peer.ClientHangsUp();
    });
    transport_->SetNotificationHandler(
        [this](const Notification& notification) { delivered_.push_back(notification.activated); });
    EXPECT_FALSE(transport_->Exchange(Request{}, 0.02));
    observing.set_value();
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{Editor()})) << "what hello says counts";
    transport_.reset();
    desktop.Finish();
}

TEST_F(NotificationDelivery, GoesToTheLatestHandler) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        peer.Send(Notification{Player()});
        peer.ClientHangsUp();
    });
    Observe();
    std::vector<Front> toTheLatest;
    transport_->SetNotificationHandler([&toTheLatest](const Notification& notification) {
        toTheLatest.push_back(notification.activated);
    });
    RunForOne();
    EXPECT_TRUE(delivered_.empty());
    EXPECT_EQ(toTheLatest, (std::vector<Front>{Player()}));
    transport_.reset();
    desktop.Finish();
}

TEST_F(NotificationDelivery, OtherFilesOfTheSessionDoNotDisturbAConnection) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        peer.Send(peer.Receive().sequence, Reply{});
        peer.ClientHangsUp();
    });
    Observe();
    std::ofstream(session_.Path() / "something").put('x');
    RunOnce();
    EXPECT_TRUE(transport_->Exchange(Ask(), 5)) << "the connection was made anew";
    EXPECT_TRUE(delivered_.empty());
    transport_.reset();
    desktop.Finish();
}

TEST_F(NotificationDelivery, FolderThatIsRefusedByThenLeavesTheConnectionObserved) {
    std::promise<void> observing;
    FakeDesktop desktop([&](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        observing.get_future().wait();
        peer.Send(Notification{Player()});
        peer.ClientHangsUp();
    });
    EXPECT_TRUE(transport_->Exchange(Request{}, 5));
    std::filesystem::permissions(session_.Path(), std::filesystem::perms(0755));
    Observe();
    observing.set_value();
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{Player()}));
    std::filesystem::permissions(session_.Path(), std::filesystem::perms(0700));
    transport_.reset();
    desktop.Finish();
}

// Sent in rounds, so that the kernel has room for each.
TEST_F(NotificationDelivery, KeepsTheLatestThousandForAProcessThatNeverRunsItsLoop) {
    constexpr int kRounds = 13;
    constexpr int kInARound = 80;
    constexpr int kSent = kRounds * kInARound;
    constexpr int kKept = 1024;
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        for (int round = 0; round < kRounds; ++round) {
            const auto request = peer.Receive();
            for (int number = 1; number <= kInARound; ++number) {
                peer.Send(
                    Notification{Application{round * kInARound + number, "a", std::nullopt, "A"}});
            }
            peer.Send(request.sequence, Reply{});
        }
        peer.ClientHangsUp();
    });
    Observe();
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_TRUE(transport_->Exchange(Ask(), 5));
    }
    for (int time = 0; time < kSent; ++time) {
        RunOnce();
    }
    ASSERT_EQ(delivered_.size(), static_cast<std::size_t>(kKept));
    EXPECT_EQ(delivered_.front()->pid, kSent - kKept + 1);
    EXPECT_EQ(delivered_.back()->pid, kSent);
    transport_.reset();
    desktop.Finish();
}

TEST_F(NotificationDelivery, SessionThatCouldNotBeLearnedIsDeliveredWhenItCan) {
    std::promise<void> gaveUp;
    FakeDesktop desktop([&](FakeDesktop& peer) {
        peer.Accept();
        const auto hello = peer.Receive();
        gaveUp.get_future().wait();
        Reply reply;
        reply.session = Session{Editor(), 6};
        peer.Send(hello.sequence, reply);
        peer.ClientHangsUp();
    });
    transport_->SetNotificationHandler(
        [this](const Notification& notification) { delivered_.push_back(notification.activated); });
    EXPECT_FALSE(transport_->Exchange(Request{}, 0.02));
    gaveUp.set_value();
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{Editor()}));
    transport_.reset();
    desktop.Finish();
}

TEST_F(NotificationDelivery, StopsWhenNobodyWantsItAnyMore) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        peer.Send(Notification{Player()});
        peer.Send(peer.Receive().sequence, Reply{});
        peer.ClientHangsUp();
    });
    Observe();
    EXPECT_TRUE(transport_->Exchange(Ask(), 5));
    transport_->SetNotificationHandler(nullptr);
    RunOnce();
    EXPECT_TRUE(delivered_.empty());
    transport_.reset();
    desktop.Finish();
}

TEST_F(NotificationDelivery, HandlerMayDoAwayWithTheTransport) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        peer.Send(Notification{Player()});
        peer.Send(Notification{Editor()});
        EXPECT_TRUE(peer.ClientHangsUp());
    });
    int calls = 0;
    transport_->SetNotificationHandler([&](const Notification&) {
        ++calls;
        transport_.reset();
    });
    transport_->Exchange(Request{}, 5);
    RunForOne();
    RunOnce();
    EXPECT_EQ(calls, 1);
    desktop.Finish();
}

TEST_F(NotificationDelivery, HandlerMayMakeCallsOfItsOwn) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        peer.Send(Notification{Player()});
        const auto request = peer.Receive();
        peer.Send(Notification{});
        peer.Send(request.sequence, Reply{});
        peer.ClientHangsUp();
    });
    transport_->SetNotificationHandler([&](const Notification& notification) {
        delivered_.push_back(notification.activated);
        if (notification.activated) {
            EXPECT_TRUE(transport_->Exchange(Ask(), 5));
        }
    });
    transport_->Exchange(Request{}, 5);
    RunForOne();
    RunForOne();
    EXPECT_EQ(delivered_, (std::vector<Front>{Player(), std::nullopt}));
    transport_.reset();
    desktop.Finish();
}

}  // namespace
}  // namespace desktop_link
