// Clients that misbehave harm only themselves: the driver serves the others, and keeps
// neither memory nor descriptors of clients that have ended.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <memory>
#include <vector>

#include "tests/reliability/WireClient.h"
#include "tests/support/ProcessState.h"
#include "tests/support/Stage.h"

namespace {

using test_support::Bytes;
using test_support::ProcessState;
using test_support::Stage;
using test_support::WireClient;

constexpr std::size_t kMegabyte = std::size_t{1024} * 1024;

class PeerFaults : public testing::Test {
  protected:
    PeerFaults() {
        stage.StartDesktop(R"({"pointer": [100, 200]})");
        stage.StartDriver();
        EXPECT_TRUE(Serves());
    }

    // A new client gets the right reply.
    static bool Serves() {
        WireClient client;
        return client.SendBytes(WireClient::Request("JGlM", {}, 7)) &&
               Expected(client.ReceiveReply(), 7);
    }
    static bool Expected(const std::optional<WireClient::Reply>& reply, std::uint32_t sequence) {
        return reply && reply->sequence == sequence &&
               reply->data == Bytes{100, 0, 0, 0, 200, 0, 0, 0};
    }
    ProcessState State() { return ProcessState::Of(stage.Driver().pid()); }

    // The driver notices a client's end in the order of events, so a later client's answer proves
    // it.
    void ExpectDescriptorsOf(const ProcessState& earlier) {
        EXPECT_TRUE(Serves());
        EXPECT_TRUE(Serves());
        EXPECT_LE(State().descriptors, earlier.descriptors + 1);  // the last of these two clients
    }

    Stage stage;
};

TEST_F(PeerFaults, ClientThatSendsNothingIsNoBurden) {
    const ProcessState before = State();
    {
        const WireClient silent;
        EXPECT_TRUE(Serves());
    }
    ExpectDescriptorsOf(before);
}

TEST_F(PeerFaults, HalfARequestIsWaitedForAndForgottenWithItsClient) {
    const ProcessState before = State();
    const Bytes request = WireClient::Request("JPMS", Bytes(16, 1), 1);
    for (std::size_t length = 1; length < request.size(); ++length) {
        WireClient client;
        EXPECT_TRUE(client.SendBytes({request.data(), length}));
        EXPECT_TRUE(Serves());
    }
    ExpectDescriptorsOf(before);
    EXPECT_EQ(stage.Control({"desktop", "log"}).standardOutput, "") << "nothing was posted";
}

TEST_F(PeerFaults, SecondHalfOfARequestMayComeLater) {
    WireClient client;
    const Bytes request = WireClient::Request("JGlM", {}, 3);
    EXPECT_TRUE(client.SendBytes({request.data(), 9}));
    EXPECT_TRUE(Serves());
    EXPECT_TRUE(client.SendBytes({request.data() + 9, request.size() - 9}));
    EXPECT_TRUE(Expected(client.ReceiveReply(), 3));
}

TEST_F(PeerFaults, BytesThatAreNoRequestEndTheConnection) {
    WireClient client;
    EXPECT_TRUE(client.SendBytes(Bytes(64, 0xFF)));
    EXPECT_TRUE(client.Ends());
    EXPECT_TRUE(Serves());
}

TEST_F(PeerFaults, ThousandRequestsAreAnsweredInOrderToAClientThatReadsOnlyThen) {
    constexpr std::uint32_t kRequests = 1000;
    WireClient client;
    for (std::uint32_t sequence = 1; sequence <= kRequests; ++sequence) {
        ASSERT_TRUE(client.SendBytes(WireClient::Request("JGlM", {}, sequence)));
    }
    EXPECT_TRUE(Serves());
    for (std::uint32_t sequence = 1; sequence <= kRequests; ++sequence) {
        ASSERT_TRUE(Expected(client.ReceiveReply(), sequence)) << sequence;
    }
}

// Both directions are full: the driver holds only a part of what the client has sent.
TEST_F(PeerFaults, FullSocketCostsTheOthersNothingAndIsServedOnOnceItIsRead) {
    const ProcessState before = State();
    WireClient client;
    std::uint32_t sequence = 0;
    Bytes request = WireClient::Request("JGlM", {}, sequence + 1);
    std::size_t sent = 0;  // of the request begun
    for (int idle = 0; idle < 20;) {
        const std::size_t taken = client.SendSome({request.data() + sent, request.size() - sent});
        sent += taken;
        if (sent == request.size()) {
            request = WireClient::Request("JGlM", {}, ++sequence + 1);
            sent = 0;
        }
        // The driver takes what it can in its own time: the answer to another shows that it had it.
        idle = taken > 0 ? 0 : idle + 1;
        if (taken == 0) {
            EXPECT_TRUE(Serves());
        }
        ASSERT_LT(sequence, 1'000'000u) << "the driver takes without end";
    }
    // One direction of a socket holds about 280 messages of this size when each is sent alone.
    EXPECT_GT(sequence, 500u);
    EXPECT_LT(State().residentBytes, before.residentBytes + 2 * kMegabyte);

    for (std::uint32_t read = 1; read <= sequence; ++read) {
        ASSERT_TRUE(Expected(client.ReceiveReply(), read)) << read << " of " << sequence;
    }
}

TEST_F(PeerFaults, ThousandClientsAreServedEach) {
    constexpr std::size_t kClients = 1000;
    const ProcessState before = State();
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    std::vector<std::unique_ptr<WireClient>> clients;
    for (std::size_t index = 0; index < kClients; ++index) {
        clients.push_back(std::make_unique<WireClient>());
        ASSERT_TRUE(clients.back()->Connected()) << index;
    }
    for (const auto& client : clients) {
        ASSERT_TRUE(client->SendBytes(WireClient::Request("JGlM", {}, 5)));
    }
    for (std::size_t index = 0; index < kClients; ++index) {
        ASSERT_TRUE(Expected(clients[index]->ReceiveReply(), 5)) << index;
    }
    clients.clear();
    ExpectDescriptorsOf(before);
}

TEST_F(PeerFaults, ClientsBeyondTheDescriptorsAreRefusedAndTheOthersServed) {
    const rlimit few = {32, 32};
    ASSERT_EQ(prlimit(stage.Driver().pid(), RLIMIT_NOFILE, &few, nullptr), 0);
    std::vector<std::unique_ptr<WireClient>> clients;
    for (int index = 0; index < 64; ++index) {
        clients.push_back(std::make_unique<WireClient>());
    }
    int served = 0;
    for (const auto& client : clients) {
        if (client->SendBytes(WireClient::Request("JGlM", {}, 5)) &&
            Expected(client->ReceiveReply(), 5)) {
            ++served;
        }
    }
    EXPECT_GT(served, 8);
    EXPECT_LT(served, 32);
    clients.clear();
    EXPECT_TRUE(Serves());
}

}  // namespace
