// A companion that is missing, starts late, ends and restarts: the driver keeps running.

#include "tests/unit/driver/TickedDriver.h"

namespace {

using platform_testing::LogCapture;
using platform_testing::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr SInt32 kNoCompanion = -2;
constexpr SInt32 kPortInvalid = -3;

class WithoutCompanion : public testing::Test {
  protected:
    WithoutCompanion() { LanguageTag::Current() = LanguageTag(); }

    platform_testing::AutoreleasePool pool_;
    platform_testing::TestClock clock_;
    test_support::SessionFixture session_;
    test_support::ScriptedDesktop desktop_{SceneWithController()};
    LogCapture log_;
    test_support::TestDriver driver_;
};

TEST_F(WithoutCompanion, StartSaysSoOnceAtTheHighestPriorityAndIsWholeOtherwise) {
    EXPECT_THAT(log_.SystemTexts(), ElementsAre("remotePort is not valid"));
    for (const LogLine& line : log_.Lines()) {
        EXPECT_EQ(line.priority, 0);
    }
    ASSERT_NE(DriverInspector::RemotePort(*driver_), nullptr);
    EXPECT_FALSE(DriverInspector::RemotePort(*driver_)->IsValid());
    EXPECT_TRUE(DriverInspector::Connected(*driver_));
}

TEST_F(WithoutCompanion, EverySendOfATickFailsWithOneLine) {
    log_.Clear();
    driver_->TimeoutCounter();
    EXPECT_THAT(log_.SystemTexts(), ElementsAre(StartsWith("SendMessage no remote port"),
                                                StartsWith("SendMessage no remote port")))
        << "the language and the status";
    log_.Clear();
    driver_->TimeoutCounter();
    EXPECT_THAT(log_.SystemTexts(), SizeIs(1)) << "the status alone";
}

TEST_F(WithoutCompanion, OneThatComesLaterIsNeverFound) {
    driver_->TimeoutCounter();
    test_support::Companion companion;
    for (int tick = 0; tick < 10; ++tick) {
        driver_->TimeoutCounter();
        RunLoopFor(0);
    }
    EXPECT_THAT(companion.received, IsEmpty());
    EXPECT_EQ(driver_->SendMessage(kStus, nullptr, 0, false, nullptr), kNoCompanion);
    EXPECT_FALSE(DriverInspector::RemotePort(*driver_)->IsValid());
}

class CompanionThatDies : public TickedDriver {
  protected:
    CompanionThatDies() : TickedDriver(SceneWithController()) {
        RunTicks();
        EXPECT_THAT(Sent(), ElementsAre(kJSLg, kStus));
    }

    void Kill() {
        companion_.reset();
        RunLoopFor(0);
    }

    SInt32 SendStatusRequest() {
        CFDataRef reply = nullptr;
        const SInt32 status = driver_->SendMessage(kStus, nullptr, 0, true, &reply);
        EXPECT_EQ(reply, nullptr);
        return status;
    }
};

TEST_F(CompanionThatDies, SendsAnswerThatThePortIsInvalidWithoutAWord) {
    Kill();
    const LogCapture log;
    EXPECT_EQ(SendStatusRequest(), kPortInvalid);
    EXPECT_EQ(driver_->SendMessage(kJSLg, nullptr, 0, false, nullptr), kPortInvalid);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(CompanionThatDies, PortObjectStaysAndStillCountsAsValid) {
    CACFRemoteMessagePort* const port = DriverInspector::RemotePort(*driver_);
    Kill();
    RunTicks(10);
    EXPECT_EQ(DriverInspector::RemotePort(*driver_), port);
    EXPECT_TRUE(port->IsValid());
}

TEST_F(CompanionThatDies, TicksGoOnAndTheObservedNameCountsAsSent) {
    ObserveBoth();
    Kill();
    RunTicks(10);
    EXPECT_STREQ(DriverInspector::LastClipName(*driver_), "Clip");
    EXPECT_EQ(DriverInspector::Profile(*driver_), 4);
    EXPECT_FALSE(DriverInspector::StatusValid(*driver_));
}

TEST_F(CompanionThatDies, OneThatComesBackIsNotFoundByTheSamePort) {
    Kill();
    companion_.emplace();
    companion_->reply = test_support::Bytes(28);
    ObserveBoth();
    RunTicks(10);
    RunLoopFor(0);
    EXPECT_EQ(SendStatusRequest(), kPortInvalid);
    EXPECT_THAT(companion_->received, IsEmpty());
}

TEST_F(CompanionThatDies, OneThatComesBackUnnoticedIsNotFoundEither) {
    companion_.reset();
    companion_.emplace();
    RunTicks(10);
    RunLoopFor(0);
    EXPECT_NE(SendStatusRequest(), 0);
    EXPECT_THAT(companion_->received, IsEmpty());
}

TEST_F(CompanionThatDies, RequestsAreStillServed) {
    Kill();
    CFDataRef reply = CVEK_UserSpaceDriver::MessageCallbackEntry(nullptr, kJGlM, nullptr, nullptr);
    ASSERT_NE(reply, nullptr);
    EXPECT_EQ(CFDataGetLength(reply), 8);
    CFRelease(reply);
}

}  // namespace
