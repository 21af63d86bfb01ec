// The queue of a port: 5 messages that nobody has taken yet, as on macOS.
#include <gtest/gtest.h>

#include "platform/Testing/TestClock.h"
#include "platform/Variants/Variants.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/CoreFoundation/MessagePort/Ports.h"

namespace message_port_test {
namespace {

constexpr int kQueueLimit = 5;

class Queue : public testing::Test {
  protected:
    // Until one is not taken; at most `most`.
    int Fill(int most = 100) const {
        int sent = 0;
        while (sent < most && client_.Tell("message", 0.01) == kCFMessagePortSuccess) {
            ++sent;
        }
        return sent;
    }

    test_support::SessionFixture session_;
    platform_testing::TestClock clock_;
    Server server_{"port", Echo};
    Client client_{"port"};
};

TEST_F(Queue, HoldsFiveMessages) {
    EXPECT_EQ(Fill(), kQueueLimit);
}

TEST_F(Queue, FullMakesASendWaitForItsTimeOut) {
    Fill();
    const CFAbsoluteTime start = CFAbsoluteTimeGetCurrent();
    EXPECT_EQ(client_.Tell("one more", 2), kCFMessagePortSendTimeout);
    EXPECT_NEAR(CFAbsoluteTimeGetCurrent() - start, 2, 0.001);
    EXPECT_EQ(client_.Ask("one more", 1, 5, kCFRunLoopDefaultMode, 1).result,
              kCFMessagePortSendTimeout);
}

TEST_F(Queue, HasRoomForAsManyAsWereTaken) {
    Fill();
    RunPasses();
    EXPECT_EQ(server_.Requests(), kQueueLimit);
    EXPECT_EQ(Fill(), kQueueLimit);
}

TEST_F(Queue, LargeMessagesCountAsOneEach) {
    const std::string large(20'000, 'x');
    for (int i = 0; i < kQueueLimit; ++i) {
        EXPECT_EQ(client_.Tell(large, 0.01), kCFMessagePortSuccess) << i;
    }
    EXPECT_EQ(client_.Tell(large, 0.01), kCFMessagePortSendTimeout);
}

TEST_F(Queue, HoldsMoreUnderTheVariant) {
    const platform_testing::UnderVariant longQueue(platform_testing::Variant::longPortQueue);
    EXPECT_EQ(Fill(50), 50);
}

}  // namespace
}  // namespace message_port_test
