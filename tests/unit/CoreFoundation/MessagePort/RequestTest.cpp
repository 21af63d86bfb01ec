// Requests between ports of one process: the sender's run loop serves them while it waits.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <thread>
#include <vector>

#include "platform/CoreFoundation/MessagePort/MessageFrame.h"
#include "platform/LocalSocket/Socket.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "platform/Testing/TestClock.h"
#include "platform/Variants/Variants.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/CoreFoundation/MessagePort/Ports.h"

namespace message_port_test {
namespace {

using testing::ElementsAre;
using Outcome = Client::Outcome;

const CFRunLoopMode kPrivateMode = CFSTR("message-port-test");

class RequestTest : public testing::Test {
  protected:
    test_support::SessionFixture session_;
};

TEST_F(RequestTest, NobodyThereGivesNoRemotePort) {
    EXPECT_EQ(Client("port").Port(), nullptr);
}

TEST_F(RequestTest, RefusedFolderGivesNoRemotePortAndOneLine) {
    ASSERT_EQ(chmod(session_.Path().c_str(), 0755), 0);
    const platform_testing::LogCapture log;
    EXPECT_EQ(Client("port").Port(), nullptr);
    EXPECT_THAT(log.ConsoleTexts(),
                ElementsAre(testing::HasSubstr("has mode 0755 instead of 0700")));
}

TEST_F(RequestTest, EmptyNameGivesNoRemotePort) {
    EXPECT_EQ(CFMessagePortCreateRemote(nullptr, CFSTR("")), nullptr);
    EXPECT_EQ(CFMessagePortCreateRemote(nullptr, nullptr), nullptr);
}

TEST_F(RequestTest, PortWithoutACallbackAnswersWithEmptyData) {
    const CFMessagePortRef port =
        CFMessagePortCreateLocal(nullptr, CFSTR("port"), nullptr, nullptr, nullptr);
    const CFRunLoopSourceRef source = CFMessagePortCreateRunLoopSource(nullptr, port, 0);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
    EXPECT_EQ(Client("port").Ask("x"), (Outcome{kCFMessagePortSuccess, ""}));
    CFMessagePortInvalidate(port);
    CFRelease(source);
    CFRelease(port);
}

TEST_F(RequestTest, RemotePortHasTheName) {
    const Server server("port", Echo);
    const Client client("port");
    ASSERT_NE(client.Port(), nullptr);
    EXPECT_TRUE(CFMessagePortIsValid(client.Port()));
    EXPECT_TRUE(CFEqual(CFMessagePortGetName(client.Port()), CFSTR("port")));
    EXPECT_EQ(CFMessagePortCreateRunLoopSource(nullptr, client.Port(), 0), nullptr);
}

TEST_F(RequestTest, SameNameAnswersTheSameRemotePort) {
    const Server server("port", Echo);
    const Client first("port");
    const Client second("port");
    EXPECT_EQ(first.Port(), second.Port());
    EXPECT_EQ(CFGetRetainCount(first.Port()), 2);
    CFMessagePortInvalidate(first.Port());
    const Client third("port");
    EXPECT_NE(third.Port(), first.Port()) << "an invalid port was answered again";
    EXPECT_EQ(third.Ask("x").reply, "x");
}

TEST_F(RequestTest, CarriesMessageIdAndBytesBothWays) {
    SInt32 seenId = 0;
    std::string seen;
    const Server server("port", [&](SInt32 msgid, const std::string& text) {
        seenId = msgid;
        seen = text;
        return std::string("re\0ply", 6);
    });
    const Client client("port");
    const std::string request("re\0quest\xff", 9);
    EXPECT_EQ(client.Ask(request, -123456789), (Outcome{0, std::string("re\0ply", 6)}));
    EXPECT_EQ(seenId, -123456789);
    EXPECT_EQ(seen, request);
}

TEST_F(RequestTest, BodiesOfEverySizeArriveWhole) {
    const Server server("port", Echo);
    const Client client("port");
    for (const std::size_t size : {0U, 1U, 1000U, 1012U, 1013U, 65536U, 300'000U, 16U << 20}) {
        std::string body(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            body[i] = static_cast<char>(i * 2654435761U >> 11);
        }
        const Outcome outcome = client.Ask(body);
        EXPECT_EQ(outcome.result, kCFMessagePortSuccess) << size << " bytes";
        EXPECT_TRUE(outcome.reply == body) << size << " bytes came back changed";
    }
}

TEST_F(RequestTest, BodyAboveTheBoundIsATransportErrorAndHarmsNothing) {
    const Server server("port", Echo);
    const Client client("port");
    EXPECT_EQ(client.Ask(std::string((16U << 20) + 1, 'x')),
              (Outcome{kCFMessagePortTransportError, std::nullopt}));
    EXPECT_EQ(client.Ask("still there").reply, "still there");
}

TEST_F(RequestTest, NullDataArrivesAsEmptyData) {
    std::string seen = "unchanged";
    const Server server("port", [&](SInt32, const std::string& text) {
        seen = text;
        return "";
    });
    const Client client("port");
    CFDataRef reply = nullptr;
    EXPECT_EQ(
        CFMessagePortSendRequest(client.Port(), 1, nullptr, 1, 1, kCFRunLoopDefaultMode, &reply),
        kCFMessagePortSuccess);
    EXPECT_EQ(seen, "");
    ASSERT_NE(reply, nullptr);
    CFRelease(reply);
}

TEST_F(RequestTest, NullReplyIsAnsweredWithEmptyData) {
    const Server server("port", [](SInt32, const std::string&) { return std::nullopt; });
    EXPECT_EQ(Client("port").Ask("x"), (Outcome{kCFMessagePortSuccess, ""}));
}

TEST_F(RequestTest, ReplyNeedsNoPlaceToGo) {
    const Server server("port", Echo);
    const Client client("port");
    EXPECT_EQ(
        CFMessagePortSendRequest(client.Port(), 1, nullptr, 1, 1, kCFRunLoopDefaultMode, nullptr),
        kCFMessagePortSuccess);
}

TEST_F(RequestTest, WithoutAReplyModeItIsOnlyQueued) {
    const Server server("port", Echo);
    const Client client("port");
    EXPECT_EQ(client.Tell("one"), kCFMessagePortSuccess);
    EXPECT_EQ(client.Tell("two"), kCFMessagePortSuccess);
    EXPECT_EQ(server.Requests(), 0);
    RunPasses();
    EXPECT_EQ(server.Requests(), 2);
}

TEST_F(RequestTest, ReplyThatNobodyAwaitsIsNotMistakenForALaterOne) {
    const platform_testing::TestClock clock;
    const Server server("port", Echo, kCFRunLoopDefaultMode);
    const Client client("port");
    EXPECT_EQ(client.Ask("late", 1, 0.5, kPrivateMode),
              (Outcome{kCFMessagePortReceiveTimeout, std::nullopt}));
    RunPasses();
    EXPECT_EQ(server.Requests(), 1) << "the late request was not served";
    EXPECT_EQ(client.Ask("next"), (Outcome{0, "next"}));
}

TEST_F(RequestTest, WaitsForTheWholeReceiveTimeout) {
    const platform_testing::TestClock clock;
    const Server server("port", Echo, kCFRunLoopDefaultMode);
    const Client client("port");
    EXPECT_EQ(client.Ask("x", 1, 7, kPrivateMode).result, kCFMessagePortReceiveTimeout);
    EXPECT_EQ(CFAbsoluteTimeGetCurrent(), 7);
}

TEST_F(RequestTest, NoTimeToReceiveMakesOnePass) {
    const platform_testing::TestClock clock;
    const Server server("port", Echo, kCFRunLoopDefaultMode);
    const Client client("port");
    EXPECT_EQ(client.Ask("x", 1, 0, kPrivateMode).result, kCFMessagePortReceiveTimeout);
    EXPECT_EQ(client.Ask("x", 1, -1, kPrivateMode).result, kCFMessagePortReceiveTimeout);
    EXPECT_EQ(CFAbsoluteTimeGetCurrent(), 0);
}

TEST_F(RequestTest, CommonModesAreNoModeToWaitIn) {
    const platform_testing::TestClock clock;
    const Server server("port", Echo);
    EXPECT_EQ(Client("port").Ask("x", 1, 7, kCFRunLoopCommonModes).result,
              kCFMessagePortReceiveTimeout);
    EXPECT_EQ(CFAbsoluteTimeGetCurrent(), 0);
}

TEST_F(RequestTest, TimersOfTheReplyModeFireMeanwhile) {
    const platform_testing::TestClock clock;
    const Server server("port", Echo, kCFRunLoopDefaultMode);
    const Client client("port");
    static int inDefault = 0;
    static int inPrivate = 0;
    const auto timer = [](CFRunLoopTimerCallBack callback) {
        return CFRunLoopTimerCreate(nullptr, CFAbsoluteTimeGetCurrent() + 0.1, 0.1, 0, 0, callback,
                                    nullptr);
    };
    const auto defaultTimer = timer([](CFRunLoopTimerRef, void*) { ++inDefault; });
    const auto privateTimer = timer([](CFRunLoopTimerRef, void*) { ++inPrivate; });
    CFRunLoopAddTimer(CFRunLoopGetCurrent(), defaultTimer, kCFRunLoopDefaultMode);
    CFRunLoopAddTimer(CFRunLoopGetCurrent(), privateTimer, kPrivateMode);
    client.Ask("x", 1, 0.55, kPrivateMode);
    EXPECT_EQ(inPrivate, 5);
    EXPECT_EQ(inDefault, 0);
    for (const auto each : {defaultTimer, privateTimer}) {
        CFRunLoopTimerInvalidate(each);
        CFRelease(each);
    }
}

TEST_F(RequestTest, StoppingTheLoopDoesNotEndTheWait) {
    const Server server("port", [](SInt32, const std::string&) {
        CFRunLoopStop(CFRunLoopGetCurrent());
        return "reply";
    });
    EXPECT_EQ(Client("port").Ask("x").reply, "reply");
}

TEST_F(RequestTest, CallbackMayAskAnotherPortAndItsOwn) {
    const Server inner("inner", [](SInt32, const std::string& text) { return "<" + text + ">"; });
    const Server outer("outer", [](SInt32 msgid, const std::string& text) {
        if (msgid > 0) {
            return *Client("outer").Ask(text, msgid - 1).reply + text;
        }
        return *Client("inner").Ask(text).reply;
    });
    EXPECT_EQ(Client("outer").Ask("a", 3).reply, "<a>aaa");
}

TEST_F(RequestTest, InvalidPortSendsNothing) {
    const Server server("port", Echo);
    const Client client("port");
    CFMessagePortInvalidate(client.Port());
    EXPECT_FALSE(CFMessagePortIsValid(client.Port()));
    EXPECT_EQ(client.Ask("x"), (Outcome{kCFMessagePortIsInvalid, std::nullopt}));
    EXPECT_EQ(client.Tell("x"), kCFMessagePortIsInvalid);
}

TEST_F(RequestTest, PortThatEndsWhileItServesTheRequestBecameInvalid) {
    std::optional<Server> server;
    server.emplace("port", [&](SInt32, const std::string&) {
        CFMessagePortInvalidate(server->Port());
        return "too late";
    });
    const Client client("port");
    EXPECT_EQ(client.Ask("x"), (Outcome{kCFMessagePortBecameInvalidError, std::nullopt}));
    EXPECT_EQ(client.Ask("x").result, kCFMessagePortIsInvalid);
}

TEST_F(RequestTest, PeersEndIsNoticedByTheRunLoop) {
    static int calls = 0;
    static bool infoWasNull = false;
    std::optional<Server> server;
    server.emplace("port", Echo);
    const Client client("port");
    CFMessagePortSetInvalidationCallBack(client.Port(), [](CFMessagePortRef, void* info) {
        ++calls;
        infoWasNull = info == nullptr;
    });
    RunPasses();
    EXPECT_EQ(calls, 0);
    server.reset();
    RunPasses();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(infoWasNull);
    EXPECT_EQ(client.Tell("x"), kCFMessagePortIsInvalid);
}

TEST_F(RequestTest, PeersEndIsNoticedByIsValid) {
    std::optional<Server> server;
    server.emplace("port", Echo);
    const Client client("port");
    RunPasses();
    EXPECT_TRUE(CFMessagePortIsValid(client.Port()));
    server.reset();
    EXPECT_FALSE(CFMessagePortIsValid(client.Port()));
}

TEST_F(RequestTest, PeersEndIsNoticedBySending) {
    std::optional<Server> server;
    server.emplace("port", Echo);
    const Client client("port");
    RunPasses();
    server.reset();
    EXPECT_EQ(client.Tell("x"), kCFMessagePortTransportError);
    EXPECT_EQ(client.Tell("x"), kCFMessagePortIsInvalid);
}

TEST_F(RequestTest, PortComesBackUnderANewRemotePort) {
    std::optional<Server> server;
    server.emplace("port", Echo);
    const Client before("port");
    server.reset();
    server.emplace("port", Echo);
    const Client after("port");
    EXPECT_NE(before.Port(), after.Port());
    EXPECT_EQ(after.Ask("x").reply, "x");
    EXPECT_EQ(before.Tell("x"), kCFMessagePortIsInvalid) << "a port does not reconnect";
}

// A port of which the listener lives but does nothing, and whose queue has no limit but the
// socket's.
TEST_F(RequestTest, FullQueueIsASendTimeout) {
    const platform_testing::UnderVariant longQueue(platform_testing::Variant::longPortQueue);
    const platform_testing::TestClock clock;
    const auto idle = local_socket::Listener::Create("port", nullptr, nullptr);
    ASSERT_TRUE(idle);
    const Client client("port");
    const std::string body(10'000, 'x');
    SInt32 result = kCFMessagePortSuccess;
    int sent = 0;
    while (result == kCFMessagePortSuccess && sent < 1000) {
        result = client.Tell(body, 0.01);
        ++sent;
    }
    EXPECT_EQ(result, kCFMessagePortSendTimeout) << "after " << sent << " messages";
    EXPECT_EQ(client.Tell(body, 0), kCFMessagePortSendTimeout);
    EXPECT_EQ(client.Ask("x", 1, 1, kPrivateMode, 0.01),
              (Outcome{kCFMessagePortSendTimeout, std::nullopt}));
    EXPECT_TRUE(CFMessagePortIsValid(client.Port()));
}

TEST_F(RequestTest, MessageThatHasBegunToLeaveArrivesWhole) {
    const platform_testing::TestClock clock;
    const Server server(
        "port", [](SInt32, const std::string& text) { return std::to_string(text.size()); },
        kPrivateMode);
    const Client client("port");
    const std::string large(5'000'000, 'x');
    EXPECT_EQ(client.Tell(large, 0.01), kCFMessagePortSuccess)
        << "a message of which a part is on its way cannot be called back";
    EXPECT_EQ(client.Tell("y", 0.01), kCFMessagePortSendTimeout) << "the queue is full";
    for (int i = 0; i < 1000 && server.Requests() == 0; ++i) {
        CFRunLoopRunInMode(kPrivateMode, 0, true);
        RunPasses(1);
    }
    EXPECT_EQ(server.Requests(), 1);
    EXPECT_EQ(client.Ask("four", 1, 5, kPrivateMode).reply, "4");
}

TEST_F(RequestTest, ThreadsShareARemotePort) {
    const Server server("port", Echo);
    const Client client("port");
    constexpr int kThreads = 4;
    constexpr int kRequests = 50;
    std::atomic<int> wrong = 0;
    std::atomic<int> running = kThreads;
    std::vector<std::thread> threads;
    const CFRunLoopRef loop = CFRunLoopGetCurrent();
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < kRequests; ++i) {
                const std::string text = std::to_string(thread) + "/" + std::to_string(i);
                wrong += client.Ask(text, 1, 20).reply == text ? 0 : 1;
            }
            if (--running == 0) {
                CFRunLoopStop(loop);
            }
        });
    }
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, false);
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(server.Requests(), kThreads * kRequests);
}

TEST_F(RequestTest, LeavesNoObjectBehind) {
    const Server server("port", Echo);
    const Client client("port");
    EXPECT_EQ(platform_testing::LeftOverBy([&] { client.Ask("x"); }), "");
    EXPECT_EQ(platform_testing::LeftOverBy([&] {
                  client.Tell("x");
                  RunPasses(3);
              }),
              "");
    const platform_testing::TestClock clock;
    EXPECT_EQ(platform_testing::LeftOverBy([&] {
                  client.Ask("x", 1, 0, kPrivateMode);
                  RunPasses(3);
              }),
              "");
    EXPECT_EQ(platform_testing::LeftOverBy([] {
                  const Server other("other", Echo);
                  const Client itsClient("other");
                  itsClient.Ask("x");
              }),
              "");
}

TEST_F(RequestTest, RequestThroughALocalPortStopsTheProcess) {
    const Server server("port", Echo);
    EXPECT_DEATH(CFMessagePortSendRequest(server.Port(), 1, nullptr, 1, 1, nullptr, nullptr),
                 "CFMessagePortSendRequest: the port is not remote");
}

#if __has_feature(address_sanitizer)
TEST(RequestDeathTest, DataKeptBeyondTheCallbackIsAnError) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    // The new program works in the session that this one made.
    std::optional<test_support::SessionFixture> session;
    if (std::getenv("KRT9_SESSION_DIR") == nullptr) {
        session.emplace();
    }
    EXPECT_DEATH(
        {
            static CFDataRef kept = nullptr;
            const CFMessagePortRef port = CFMessagePortCreateLocal(
                nullptr, CFSTR("port"),
                [](CFMessagePortRef, SInt32, CFDataRef data, void*) -> CFDataRef {
                    kept = static_cast<CFDataRef>(CFRetain(data));
                    return nullptr;
                },
                nullptr, nullptr);
            const CFRunLoopSourceRef source = CFMessagePortCreateRunLoopSource(nullptr, port, 0);
            CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
            Client("port").Ask("data");
            std::fputs(Text(kept).c_str(), stdout);
        },
        "heap-use-after-free");
}
#endif

}  // namespace
}  // namespace message_port_test
