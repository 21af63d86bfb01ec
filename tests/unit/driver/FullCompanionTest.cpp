// A companion that exists but takes no message: the queue of its port fills.

#include "tests/unit/driver/TickedDriver.h"

namespace {

class FullCompanion : public TickedDriver {
  protected:
    SInt32 Send(bool wantReply = false) {
        unsigned char body[] = {'x', 0};
        CFDataRef reply = nullptr;
        return driver_->SendMessage(kJFSC, body, sizeof body, wantReply, &reply);
    }

    // Five messages are in the queue.
    void FillQueue() {
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(Send(), kCFMessagePortSuccess);
        }
    }
};

TEST_F(FullCompanion, TakesFiveMessagesAndThenEachSendGivesUpAfterAHundredthOfASecond) {
    FillQueue();
    for (const bool wantReply : {false, true}) {
        const CFAbsoluteTime start = CFAbsoluteTimeGetCurrent();
        EXPECT_EQ(Send(wantReply), kCFMessagePortSendTimeout);
        EXPECT_NEAR(CFAbsoluteTimeGetCurrent() - start, 0.01, 0.0001);
    }
}

TEST_F(FullCompanion, IsToldAgainOnceItHasTakenThem) {
    FillQueue();
    EXPECT_EQ(Send(), kCFMessagePortSendTimeout);
    for (int pass = 0; pass < 20; ++pass) {
        RunLoopFor(0);
    }
    EXPECT_THAT(companion_->received, testing::SizeIs(5));
    EXPECT_EQ(Send(), kCFMessagePortSuccess);
}

TEST_F(FullCompanion, DelaysATickByNoMoreThanAHundredthOfASecondForEachMessage) {
    FillQueue();
    ObserveBoth();
    const CFAbsoluteTime start = CFAbsoluteTimeGetCurrent();
    driver_->TimeoutCounter();
    EXPECT_NEAR(CFAbsoluteTimeGetCurrent() - start, 0.03, 0.0001)
        << "the language, the clip's name and the timecode";
}

}  // namespace
