// The desktop over its socket, with the server on a thread of the test.
#include <sys/eventfd.h>
#include <unistd.h>

#include "desktop/InProcessTransport.h"
#include "desktop/Server.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/desktop/SocketClient.h"

namespace desktop {

namespace {

using desktop_link::FrameKind;
using testing::ElementsAre;

class Serving : public testing::Test {
  protected:
    Serving() {
        thread_ = std::thread([this] { server_.Run(stop_); });
    }
    ~Serving() override {
        eventfd_write(stop_, 1);
        thread_.join();
        close(stop_);
    }

    static local_socket::Listener Listen() {
        std::string problem;
        auto listener =
            local_socket::Listener::Create(desktop_link::kSocketName, nullptr, &problem);
        EXPECT_TRUE(listener) << problem;
        return std::move(*listener);
    }

    static Request Read(const char* attribute) {
        Request request;
        request.operation = Operation::copyAttribute;
        request.element = {501, 0};
        request.names = {attribute};
        return request;
    }

    test_support::SessionFixture session_;
    int stop_ = eventfd(0, EFD_CLOEXEC);
    Desktop desktop_{WindowWith({{{"AXRole", "AXButton"}}})};
    Server server_{desktop_, Listen()};
    std::thread thread_;
};

TEST_F(Serving, RepliesBearTheNumbersOfTheirRequests) {
    SocketClient client;
    client.SendRequest(7, Read("AXTitle"));
    client.SendRequest(4000000000, Read("AXRole"));
    const auto first = client.Receive();
    const auto second = client.Receive();
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->kind, FrameKind::reply);
    EXPECT_EQ(first->sequence, 7u);
    EXPECT_EQ(second->sequence, 4000000000u);
    const auto reply = desktop_link::DecodeReply(second->message.data(), second->message.size());
    EXPECT_THAT(reply->values, ElementsAre(Text("AXApplication")));
}

TEST_F(Serving, HungApplicationHoldsUpNobodyAndAnswersWhenItIsReleased) {
    SocketClient waiting;
    SocketClient other;
    other.Run({{"command", "hang"}, {"application", "com.example.editor"}});
    waiting.SendRequest(1, Read("AXTitle"));
    EXPECT_FALSE(waiting.Receive(0.05)) << "a hung application has answered";
    Request pointer;
    pointer.operation = Operation::pointerLocation;
    EXPECT_TRUE(other.Ask(pointer));
    waiting.SendRequest(2, pointer);
    EXPECT_EQ(waiting.Receive()->sequence, 2u) << "later requests of the same client go on";
    other.Run({{"command", "unhang"}, {"application", "com.example.editor"}});
    EXPECT_EQ(waiting.Receive()->sequence, 1u);
}

TEST_F(Serving, HungApplicationIsReleasedByTimeAsItPassesOutside) {
    SocketClient client;
    client.Run({{"command", "hang"}, {"application", "com.example.editor"}, {"for", 0.02}});
    EXPECT_TRUE(client.Ask(Read("AXTitle")));
}

TEST_F(Serving, RequestsOfClientsThatGaveUpAreNotKeptForEver) {
    SocketClient client;
    client.Run({{"command", "hang"}, {"application", "com.example.editor"}});
    for (std::uint32_t i = 1; i <= 100; ++i) {
        client.SendRequest(i, Read("AXTitle"));
    }
    client.Run({{"command", "unhang"}, {"application", "com.example.editor"}});
    std::vector<std::uint32_t> answered;
    while (const auto received = client.Receive(0.1)) {
        answered.push_back(received->sequence);
    }
    ASSERT_EQ(answered.size(), 64u) << "the latest ones are kept";
    EXPECT_EQ(answered.front(), 37u);
    EXPECT_EQ(answered.back(), 100u);
}

TEST_F(Serving, NotificationsComeAfterHelloOnly) {
    SocketClient greeted;
    SocketClient silent;
    Request hello;
    const auto reply = greeted.Ask(hello);
    ASSERT_TRUE(reply && reply->session);
    EXPECT_EQ(reply->session->frontApplication->bundleIdentifier, "com.example.editor");
    silent.Run({{"command", "activate"}, {"application", nullptr}});
    const auto received = greeted.Receive();
    ASSERT_TRUE(received);
    EXPECT_EQ(received->kind, FrameKind::notification);
    EXPECT_EQ(received->sequence, 0u);
    EXPECT_EQ(desktop_link::DecodeNotification(received->message.data(), received->message.size()),
              desktop_link::Notification{});
    EXPECT_FALSE(silent.Receive(0.05));
}

TEST_F(Serving, GarbageEndsOnlyTheConnectionItCameFrom) {
    SocketClient good;
    const std::vector<std::vector<std::uint8_t>> garbage = {
        {},
        {1, 2, 3},
        {9, 0, 0, 0, 0, 0x90},
        {1, 0, 0, 0, 0},
        {1, 0, 0, 0, 0, 0xFF, 0xFF},
        {2, 0, 0, 0, 0, 0x90},
        std::vector<std::uint8_t>(100000, 0x91)};
    for (const auto& payload : garbage) {
        SocketClient bad;
        bad.SendPayload(payload);
        EXPECT_TRUE(bad.Ends());
    }
    EXPECT_TRUE(good.Ask(Read("AXTitle")));
}

TEST_F(Serving, AnnouncedGigabytesEndTheConnection) {
    testing::internal::CaptureStderr();
    for (int client = 0; client < 2; ++client) {
        SocketClient bad;
        EXPECT_TRUE(bad.SendBytes(std::vector<std::uint8_t>{0xFF, 0xFF, 0xFF, 0x7F, 1}));
        EXPECT_TRUE(bad.Ends());
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "krt9-desktop: client 1 announced a message that is too long\n"
              "krt9-desktop: client 2 announced a message that is too long\n");
    EXPECT_TRUE(SocketClient().Ask(Read("AXTitle")));
}

TEST_F(Serving, WhatAClientSentBeforeItLeftIsStillDone) {
    Request post;
    post.operation = Operation::postEvent;
    post.event.type = 5;
    {
        SocketClient client;
        for (std::uint32_t i = 0; i < 500; ++i) {
            post.event.position = {double(i), 1};
            client.SendRequest(i, post);
        }
    }
    SocketClient observer;
    std::size_t count = 0;
    for (int attempt = 0; attempt < 200 && count < 500; ++attempt) {
        const auto reply = observer.Run({{"command", "log"}});
        count = json::parse(reply->text)["entries"].size();
    }
    EXPECT_EQ(count, 500u);
}

TEST_F(Serving, ClientThatDoesNotReadItsAnswersHoldsUpNobody) {
    SocketClient unread;
    SocketClient other;
    Request request;
    request.operation = Operation::script;
    request.text = R"({"command": "set", "element": "/0", "attribute": "AXHelp", "value": ")" +
                   std::string(1000000, 'x') + "\"}";
    other.Ask(request);
    Request dump;
    dump.operation = Operation::script;
    dump.text = R"({"command": "dump"})";
    constexpr std::uint32_t kAnswers = 30;  // of a megabyte each
    unread.SendRequests(kAnswers, dump);
    EXPECT_TRUE(other.Ask(Read("AXTitle")));
    for (std::uint32_t i = 0; i < kAnswers; ++i) {
        const auto received = unread.Receive();
        ASSERT_TRUE(received) << "answer " << i;
        EXPECT_EQ(received->sequence, i);
    }
}

TEST_F(Serving, ManyClientsComeAndGo) {
    for (int i = 0; i < 300; ++i) {
        SocketClient client;
        EXPECT_TRUE(client.Ask(Read("AXTitle"))) << i;
    }
}

TEST_F(Serving, SecondHelloIsAnsweredLikeTheFirst) {
    SocketClient client;
    const Request hello;
    EXPECT_TRUE(client.Ask(hello));
    EXPECT_TRUE(client.Ask(hello));
    client.Run({{"command", "activate"}, {"application", nullptr}});
    EXPECT_FALSE(client.Receive(0.05)) << "the notification came before the reply, and once";
}

TEST_F(Serving, ServesTwoHundredClientsAndClosesTheNext) {
    std::vector<std::unique_ptr<SocketClient>> clients;
    for (int i = 0; i < 200; ++i) {
        clients.push_back(std::make_unique<SocketClient>());
        ASSERT_TRUE(clients.back()->Ask(Read("AXTitle"))) << i;
    }
    EXPECT_TRUE(SocketClient().Ends());
    clients.pop_back();
    EXPECT_TRUE(clients.front()->Ask(Read("AXTitle")));
    bool served = false;
    for (int attempt = 0; attempt < 100 && !served; ++attempt) {
        served = SocketClient().Ask(Read("AXTitle")).has_value();
    }
    EXPECT_TRUE(served) << "there is room again";
}

TEST_F(Serving, ClientThatShutsItsSendingSideGetsItsAnswers) {
    SocketClient client;
    for (std::uint32_t i = 1; i <= 100; ++i) {
        client.SendRequest(i, Read("AXTitle"));
    }
    client.FinishSending();
    for (std::uint32_t i = 1; i <= 100; ++i) {
        const auto received = client.Receive();
        ASSERT_TRUE(received) << i;
        EXPECT_EQ(received->sequence, i);
    }
    EXPECT_TRUE(client.Ends());
}

TEST_F(Serving, StopIsAnsweredAndEndsTheServing) {
    SocketClient client;
    const auto reply = client.Run({{"command", "stop"}});
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->text, R"({"ok":true})");
}

TEST(InProcess, ExchangesGoThroughTheCodec) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}}}));
    InProcessTransport transport(desktop);
    Request request;
    request.operation = Operation::copyAttribute;
    request.element = {501, 0};
    request.names = {"AXTitle"};
    EXPECT_THAT(transport.Exchange(request, 6)->values, ElementsAre(Text("Editor")));
    request.names = {"caf\xE9"};
    EXPECT_EQ(transport.Exchange(request, 6)->error, -25205);
    EXPECT_FALSE(transport.Unreachable());
}

TEST(InProcess, HungApplicationIsATimeOutAtOnce) {
    Desktop desktop(WindowWith(json::array()));
    InProcessTransport transport(desktop);
    desktop.Run(R"({"command": "hang", "application": "com.example.editor"})");
    Request request;
    request.operation = Operation::copyAttribute;
    request.element = {501, 0};
    request.names = {"AXTitle"};
    EXPECT_FALSE(transport.Exchange(request, 6));
    EXPECT_FALSE(transport.Unreachable());
}

TEST(InProcess, NotificationsWaitUntilTheyAreDelivered) {
    Desktop desktop(R"({"applications": [{"bundleID": "a"}, {"bundleID": "b"}]})");
    InProcessTransport transport(desktop);
    std::vector<std::string> heard;
    int woken = 0;
    transport.SetWakeUp([&] { ++woken; });
    transport.SetNotificationHandler([&](const desktop_link::Notification& notification) {
        heard.push_back(notification.activated->bundleIdentifier.value());
    });
    desktop.Run(R"({"command": "activate", "application": "a"})");
    desktop.Run(R"({"command": "activate", "application": "b"})");
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(woken, 2);
    EXPECT_EQ(transport.DeliverNotifications(), 2u);
    EXPECT_THAT(heard, ElementsAre("a", "b"));
    EXPECT_EQ(transport.DeliverNotifications(), 0u);
}

TEST(InProcess, TransportThatWentHearsNoMore) {
    Desktop desktop(R"({"applications": [{"bundleID": "a"}]})");
    { const InProcessTransport transport(desktop); }
    desktop.Run(R"({"command": "activate", "application": "a"})");
    EXPECT_EQ(desktop.Log().LastNumber(), 1u);
}

}  // namespace

}  // namespace desktop
