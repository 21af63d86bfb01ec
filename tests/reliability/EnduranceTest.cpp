// Request after request with observation on: the driver's memory, descriptors and threads stay as
// they were after the first ones.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/reliability/RequestMix.h"
#include "tests/support/LongForm.h"
#include "tests/support/ProcessState.h"
#include "tests/support/Stage.h"

namespace {

using test_support::MixedRequest;
using test_support::ProcessState;
using test_support::RequestMix;
using test_support::Role;
using test_support::Stage;
using test_support::WireClient;

// AddressSanitizer keeps freed memory for a while, so that memory use means nothing under it; and a
// request takes several times as long.
#if __has_feature(address_sanitizer)
constexpr bool kMemoryIsMeaningful = false;
constexpr int kShortDay = 15'000;
#else
constexpr bool kMemoryIsMeaningful = true;
constexpr int kShortDay = 30'000;
#endif

constexpr std::uint32_t kMorning = 10'000;  // requests until everything is in place
constexpr std::uint32_t kWindow = 16;       // requests in flight at once
constexpr std::size_t kMostGrowth = 1'000'000;

class Endurance : public testing::Test {
  protected:
    Endurance() {
        stage.StartDesktop(test_support::kMixScene);
        stage.StartCompanion({"--units", "1"});
        stage.StartDriver();
        client.emplace();
        EXPECT_EQ(stage.Control({"refresh", "--profile", "--timecode", "--clip"}).status, 0);
    }

    static const MixedRequest& At(std::uint32_t number) {
        return RequestMix()[number % RequestMix().size()];
    }

    // Continues until `last` requests are sent and answered, each once, in order, and correctly.
    void WorkUntil(std::uint32_t last) {
        while (received < last) {
            while (sent < last && sent - received < kWindow) {
                const MixedRequest& request = At(sent);
                ASSERT_TRUE(
                    client->SendBytes(WireClient::Request(request.code, request.body, ++sent)));
            }
            const auto reply = client->ReceiveReply();
            ASSERT_TRUE(reply) << "request " << received << " got no reply";
            ASSERT_EQ(reply->sequence, received + 1) << "lost, reordered or answered twice";
            ASSERT_EQ(reply->data, At(received).reply) << At(received).code;
            ++received;
            if (received % 1000 == 0) {
                HouseKeeping();
            }
        }
    }

    // What would block the others in the end: the desktop's log, and full pipes without a reader.
    void HouseKeeping() {
        ASSERT_EQ(stage.Control({"desktop", "log", "--clear"}).status, 0);
        for (const Role role : test_support::kRoles) {
            stage.Process(role).ForgetOutput();
        }
    }

    Stage stage;
    std::optional<WireClient> client;
    std::uint32_t sent = 0;
    std::uint32_t received = 0;
};

TEST_F(Endurance, MixedRequestsWithObservationOnLeaveMemoryDescriptorsAndThreadsAsTheyWere) {
    WorkUntil(kMorning);
    const ProcessState morning = ProcessState::Of(stage.Driver().pid());
    ASSERT_FALSE(HasFatalFailure());

    const int requests = test_support::Repetitions(kShortDay, 1'000'000);
    WorkUntil(static_cast<std::uint32_t>(requests));
    const ProcessState evening = ProcessState::Of(stage.Driver().pid());

    EXPECT_EQ(evening.descriptors, morning.descriptors);
    EXPECT_EQ(evening.threads, morning.threads);
    const auto growth = static_cast<std::ptrdiff_t>(evening.residentBytes) -
                        static_cast<std::ptrdiff_t>(morning.residentBytes);
    RecordProperty("requests", requests);
    RecordProperty("resident_bytes_in_the_morning", std::to_string(morning.residentBytes));
    RecordProperty("growth_in_bytes", std::to_string(growth));
    if (kMemoryIsMeaningful) {
        EXPECT_LT(std::abs(growth), static_cast<std::ptrdiff_t>(kMostGrowth));
    }
    EXPECT_FALSE(client->ReceiveReply(0.2)) << "a reply too many";

    EXPECT_EQ(stage.Interrupt(Role::driver), 0) << stage.Driver().StandardError();
}

}  // namespace
