#include <CoreMIDI/CoreMIDI.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "VEKCommon/MessageCodes.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "platform/Testing/TestClock.h"
#include "tests/support/Companion.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/SentMessages.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"

namespace {

using test_support::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// Seven words, most significant byte first; the last five are noise.
Bytes Status(unsigned int units, unsigned int channels) {
    Bytes bytes;
    for (const unsigned int word : {units, channels, 0xDEADBEEFu, 1u, 2u, 3u, 0xFFFFFFFFu}) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            bytes.push_back(static_cast<unsigned char>(word >> shift));
        }
    }
    return bytes;
}

class ControllerStatus : public testing::Test {
  protected:
    platform_testing::AutoreleasePool pool_;
    platform_testing::TestClock clock_;  // no time-out comes before what is ready
    test_support::SessionFixture session_;
    test_support::Companion companion_;
    test_support::TestDriver driver_;
};

}  // namespace

TEST_F(ControllerStatus, CountsAreZeroBeforeAnyReplyAlthoughTheFieldHoldsOneUnit) {
    EXPECT_EQ(DriverInspector::UnitCount(*driver_), 1);
    EXPECT_EQ(CVEK_UserSpaceDriver::GetUnitCount(), 0);
    EXPECT_EQ(CVEK_UserSpaceDriver::GetChannelCount(), 0);
}

TEST_F(ControllerStatus, IsAskedForWithoutBodyAndTakenFromTheReply) {
    companion_.reply = Status(2, 16);
    driver_->RequestKRTStatus();
    EXPECT_THAT(CodesOf(companion_.received), ElementsAre(kStus));
    EXPECT_EQ(companion_.received[0].body, Bytes());
    EXPECT_TRUE(DriverInspector::StatusValid(*driver_));
    EXPECT_EQ(CVEK_UserSpaceDriver::GetUnitCount(), 2);
    EXPECT_EQ(CVEK_UserSpaceDriver::GetChannelCount(), 16);
    EXPECT_EQ(DriverInspector::StatusReserved(*driver_), 0);
}

TEST_F(ControllerStatus, UnitCountOf65537IsKeptAsOne) {
    const Bytes status = Status(65537, 0x12340003);
    driver_->SetKRTStatus(status.data());
    EXPECT_EQ(CVEK_UserSpaceDriver::GetUnitCount(), 1);
    EXPECT_EQ(CVEK_UserSpaceDriver::GetChannelCount(), 3);
}

TEST_F(ControllerStatus, WithoutReplyStaysAsItIs) {
    const platform_testing::LogCapture log;
    driver_->RequestKRTStatus();
    EXPECT_THAT(CodesOf(companion_.received), ElementsAre(kStus));
    EXPECT_FALSE(DriverInspector::StatusValid(*driver_));
    EXPECT_EQ(DriverInspector::UnitCount(*driver_), 1);
    EXPECT_THAT(log.SystemTexts(), IsEmpty());
}

TEST_F(ControllerStatus, EmptyReplyIsNoReply) {
    companion_.reply = Bytes();
    const platform_testing::LogCapture log;
    driver_->RequestKRTStatus();
    EXPECT_FALSE(DriverInspector::StatusValid(*driver_));
    EXPECT_THAT(log.SystemTexts(), IsEmpty());
}

TEST_F(ControllerStatus, ReplyShorterThan28BytesIsIgnoredWithOneLineAndAskedForAgain) {
    for (std::size_t length = 1; length < 28; ++length) {
        const Bytes whole = Status(2, 16);
        companion_.reply = Bytes(whole.begin(), whole.begin() + static_cast<long>(length));
        const platform_testing::LogCapture log;
        driver_->RequestKRTStatus();
        EXPECT_FALSE(DriverInspector::StatusValid(*driver_)) << length << " bytes";
        EXPECT_EQ(DriverInspector::UnitCount(*driver_), 1) << length << " bytes";
        EXPECT_THAT(log.Lines(), ElementsAre(platform_testing::LogLine{
                                     platform_testing::LogLine::Log::system, 0,
                                     "controller status ignored: reply of " +
                                         std::to_string(length) + " bytes, 28 are needed\n"}));
    }
    companion_.reply = Status(2, 16);
    driver_->RequestKRTStatus();
    EXPECT_TRUE(DriverInspector::StatusValid(*driver_));
    EXPECT_EQ(companion_.received.size(), 28u);
}

TEST_F(ControllerStatus, ShortReplyIsLoggedOnceUntilItsLengthChanges) {
    const platform_testing::LogCapture log;
    const auto askTenTimes = [this](std::optional<Bytes> reply) {
        companion_.reply = std::move(reply);
        for (int i = 0; i < 10; ++i) {
            driver_->RequestKRTStatus();
        }
    };
    askTenTimes(Bytes(5, 1));
    EXPECT_THAT(log.SystemTexts(), SizeIs(1));
    askTenTimes(Bytes());
    askTenTimes(std::nullopt);
    askTenTimes(Bytes(5, 2));
    EXPECT_THAT(log.SystemTexts(), SizeIs(1)) << "what came between was not logged";
    askTenTimes(Bytes(6, 1));
    askTenTimes(Bytes(5, 1));
    EXPECT_THAT(log.SystemTexts(), SizeIs(3));
    EXPECT_EQ(companion_.received.size(), 60u) << "it is asked for all the same";
}

TEST_F(ControllerStatus, ReservedWordIsCleared) {
    DriverInspector::StatusReserved(*driver_) = 7;
    const Bytes status = Status(1, 2);
    driver_->SetKRTStatus(status.data());
    EXPECT_EQ(DriverInspector::StatusReserved(*driver_), 0);
}

TEST_F(ControllerStatus, ReplyOf28BytesIsRead) {
    const platform_testing::LogCapture log;
    companion_.reply = Status(7, 9);
    ASSERT_EQ(companion_.reply->size(), 28u);
    driver_->RequestKRTStatus();
    EXPECT_EQ(CVEK_UserSpaceDriver::GetUnitCount(), 7);
    EXPECT_EQ(CVEK_UserSpaceDriver::GetChannelCount(), 9);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ControllerStatus, CountsStayZeroWhileTheFieldsHoldSomethingThatIsNotValid) {
    DriverInspector::UnitCount(*driver_) = 5;
    DriverInspector::ChannelCount(*driver_) = 6;
    EXPECT_EQ(CVEK_UserSpaceDriver::GetUnitCount(), 0);
    EXPECT_EQ(CVEK_UserSpaceDriver::GetChannelCount(), 0);
}

TEST_F(ControllerStatus, LongerReplyIsReadAtItsFront) {
    companion_.reply = Status(3, 4);
    companion_.reply->push_back(9);
    driver_->RequestKRTStatus();
    EXPECT_EQ(CVEK_UserSpaceDriver::GetUnitCount(), 3);
}

TEST_F(ControllerStatus, WithoutCompanionStaysAsItIs) {
    CACFRemoteMessagePort*& remotePort = DriverInspector::RemotePort(*driver_);
    delete remotePort;
    remotePort = nullptr;
    driver_->RequestKRTStatus();
    EXPECT_FALSE(DriverInspector::StatusValid(*driver_));
}

TEST_F(ControllerStatus, IsNeverAskedForWithoutController) {
    DriverInspector::LocaleSent(*driver_) = true;
    ASSERT_FALSE(DriverInspector::Connected(*driver_));
    companion_.reply = Status(2, 16);
    for (int tick = 0; tick < 10; ++tick) {
        driver_->TimeoutCounter();
    }
    EXPECT_THAT(TakeSent(*driver_, companion_), IsEmpty());
}

TEST_F(ControllerStatus, IsAskedForOnEveryTickUntilItIsThere) {
    DriverInspector::LocaleSent(*driver_) = true;
    DriverInspector::Connected(*driver_) = true;
    driver_->TimeoutCounter();
    companion_.reply = Bytes(27, 1);  // too short to be one
    driver_->TimeoutCounter();
    companion_.reply = Status(2, 16);
    driver_->TimeoutCounter();
    driver_->TimeoutCounter();
    EXPECT_THAT(CodesOf(companion_.received), ElementsAre(kStus, kStus, kStus));
    EXPECT_TRUE(DriverInspector::StatusValid(*driver_));
}

TEST_F(ControllerStatus, ConnectStateIsTheFieldThatNothingSets) {
    EXPECT_FALSE(driver_->RequestConnectState());
    DriverInspector::ConnectState(*driver_) = true;
    EXPECT_TRUE(driver_->RequestConnectState());
}

TEST_F(ControllerStatus, HardwareInputIsDeliberatelyDropped) {
    const auto contentOf = [](const void* object, std::size_t size) {
        const auto* const start = static_cast<const unsigned char*>(object);
        return Bytes(start, start + size);
    };
    MIDIPacketList packets = {};
    packets.numPackets = 1;
    packets.packet[0].length = 3;
    packets.packet[0].data[0] = 0x90;
    packets.packet[0].data[1] = 60;
    packets.packet[0].data[2] = 100;
    const platform_testing::LogCapture log;
    const Bytes driver = contentOf(&*driver_, sizeof *driver_);
    const Bytes input = contentOf(&packets, sizeof packets);

    CVEK_UserSpaceDriver::HardwareReadProcEntry(&packets, &*driver_, &*driver_);
    CVEK_UserSpaceDriver::HardwareReadProcEntry(nullptr, nullptr, nullptr);

    EXPECT_TRUE(contentOf(&*driver_, sizeof *driver_) == driver) << "no byte of it has changed";
    EXPECT_TRUE(contentOf(&packets, sizeof packets) == input);
    EXPECT_THAT(TakeSent(*driver_, companion_), IsEmpty());
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(ControllerStatusOfASlowCompanion, TimeOutChangesNothingAndTheNextTickAsksAgain) {
    const platform_testing::AutoreleasePool pool;
    const platform_testing::TestClock clock;
    const test_support::SessionFixture session;
    // A port that is there, and that no run loop serves.
    CFMessagePortRef port = CFMessagePortCreateLocal(
        nullptr, CFSTR("VEK_KRT9"),
        [](CFMessagePortRef, SInt32, CFDataRef, void*) -> CFDataRef { return nullptr; }, nullptr,
        nullptr);
    {
        test_support::TestDriver driver;
        DriverInspector::LocaleSent(*driver) = true;
        DriverInspector::Connected(*driver) = true;
        const platform_testing::LogCapture log;
        for (int tick = 0; tick < 3; ++tick) {
            const CFAbsoluteTime before = CFAbsoluteTimeGetCurrent();
            driver->TimeoutCounter();
            EXPECT_NEAR(CFAbsoluteTimeGetCurrent() - before, 0.01, 1e-6) << "it was asked";
        }
        EXPECT_FALSE(DriverInspector::StatusValid(*driver));
        EXPECT_EQ(DriverInspector::UnitCount(*driver), 1);
        EXPECT_THAT(log.Lines(), IsEmpty());
    }
    CFMessagePortInvalidate(port);
    CFRelease(port);
}

TEST(ControllerStatusWithoutDriver, CountsAreZero) {
    CVEK_UserSpaceDriver* const driver = CVEK_UserSpaceDriver::sSelf;
    CVEK_UserSpaceDriver::sSelf = nullptr;
    EXPECT_EQ(CVEK_UserSpaceDriver::GetUnitCount(), 0);
    EXPECT_EQ(CVEK_UserSpaceDriver::GetChannelCount(), 0);
    CVEK_UserSpaceDriver::sSelf = driver;
}
