#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <limits>

#include "platform/DesktopLink/Session.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Variants/Variants.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/DesktopLink/FakeDesktop.h"

namespace desktop_link {
namespace {

Application Editor() {
    return {501, "com.example.editor", std::nullopt, "Editor"};
}

constexpr char kEditorInFront[] = R"({"front": "com.example.editor", "messagingTimeout": 0.25,
    "applications": [{"bundleID": "com.example.editor", "name": "Editor", "pid": 501}]})";

Request Ask() {
    Request request;
    request.operation = Operation::screens;
    return request;
}

class SessionTest : public testing::Test {
  protected:
    SessionTest() { SetTransport(nullptr); }
    ~SessionTest() override { SetTransport(nullptr); }

    test_support::SessionFixture session_;
};

TEST_F(SessionTest, WithoutADesktopNothingIsInFrontAndTheTimeoutIsSixSeconds) {
    EXPECT_EQ(FrontApplication(), std::nullopt);
    EXPECT_EQ(MessagingTimeout(), 6.0);
}

TEST_F(SessionTest, IsLearnedFromTheDesktopAtFirstUse) {
    FakeDesktop desktop([](FakeDesktop& peer) { peer.Greet({Editor(), 0.25}); });
    EXPECT_EQ(FrontApplication(), Editor());
    EXPECT_EQ(MessagingTimeout(), 0.25);
    desktop.Finish();
}

TEST_F(SessionTest, TimeoutOfADesktopReachedAnewIsAdopted) {
    {
        FakeDesktop desktop([](FakeDesktop& peer) { peer.Greet({std::nullopt, 0.25}); });
        EXPECT_EQ(MessagingTimeout(), 0.25);
        desktop.Finish();
    }
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({std::nullopt, 0.5});
        peer.Send(peer.Receive().sequence, Reply{});
    });
    EXPECT_TRUE(CurrentTransport().Exchange(Ask(), 5));
    EXPECT_EQ(MessagingTimeout(), 0.5);
    desktop.Finish();
}

TEST_F(SessionTest, TimeoutThatIsNoPositiveNumberOfSecondsIsNotAdopted) {
    for (const double timeout : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity()}) {
        AdoptMessagingTimeout(timeout);
        EXPECT_EQ(MessagingTimeout(), 6.0) << timeout;
    }
}

TEST_F(SessionTest, FrontApplicationStaysAsItWasUntilTheRunLoopDelivers) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet({Editor(), 6});
        const auto request = peer.Receive();
        peer.Send(Notification{});
        peer.Send(request.sequence, Reply{});
    });
    EXPECT_EQ(FrontApplication(), Editor());
    EXPECT_TRUE(CurrentTransport().Exchange(Ask(), 5));
    EXPECT_EQ(FrontApplication(), Editor()) << "no run loop has run";
    desktop.Finish();
}

int changes = 0;

void CountChange(const std::optional<Application>&) {
    ++changes;
}

TEST_F(SessionTest, ObserverThatComesAfterTheFirstUseIsToldOfEachChange) {
    test_support::ScriptedDesktop desktop(kEditorInFront);
    EXPECT_EQ(FrontApplication(), Editor());
    const unsigned long revision = FrontApplicationRevision();
    changes = 0;
    ObserveFrontApplication(CountChange);
    EXPECT_EQ(changes, 0);
    desktop.Deliver(Notification{});
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(FrontApplication(), std::nullopt);
    EXPECT_GT(FrontApplicationRevision(), revision);
}

TEST_F(SessionTest, LateNotificationOfASessionThatWasForgottenIsDropped) {
    const platform_testing::UnderVariant late(platform_testing::Variant::lateActivation);
    changes = 0;
    {
        test_support::ScriptedDesktop desktop;
        ObserveFrontApplication(CountChange);
        desktop.Deliver(Notification{Editor()});
        EXPECT_EQ(changes, 0) << "not before its time";
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.3, false);
        EXPECT_EQ(changes, 1);
        EXPECT_EQ(FrontApplication(), Editor());
        desktop.Deliver(Notification{});
    }
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.3, false);
    EXPECT_EQ(changes, 1);
}

TEST_F(SessionTest, ReplyToHelloWithoutASessionTeachesNothing) {
    test_support::ScriptedDesktop desktop(kEditorInFront);
    desktop.onHello = [](Reply& reply) { reply.session.reset(); };
    EXPECT_EQ(FrontApplication(), std::nullopt);
    EXPECT_EQ(MessagingTimeout(), 6.0);
}

TEST_F(SessionTest, EveryExchangeButHelloIsCounted) {
    FakeDesktop desktop([](FakeDesktop& peer) {
        peer.Greet();
        for (int time = 0; time < 3; ++time) {
            peer.Send(peer.Receive().sequence, Reply{});
        }
    });
    const unsigned long before = ExchangeCount();
    FrontApplication();
    EXPECT_EQ(ExchangeCount() - before, 0u);
    for (int time = 0; time < 3; ++time) {
        CurrentTransport().Exchange(Ask(), 5);
    }
    EXPECT_EQ(ExchangeCount() - before, 3u);
    desktop.Finish();
}

}  // namespace
}  // namespace desktop_link
