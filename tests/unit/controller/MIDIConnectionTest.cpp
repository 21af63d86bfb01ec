#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/controller/FakeMIDI.h"

namespace {

using fake_midi::Bus;
using fake_midi::Device;
using fake_midi::TheBus;
using testing::ElementsAre;
using testing::IsEmpty;

const Device kController{"KRT-9 USB", {{"Private"}}};

// The driver signs in when it is made; a scene is set before that.
class MIDIConnection : public testing::Test {
  protected:
    MIDIConnection() { TheBus() = Bus(); }

    platform_testing::AutoreleasePool pool_;
    test_support::SessionFixture session_;
};

bool ConnectedWith(std::vector<Device> devices) {
    TheBus().devices = std::move(devices);
    test_support::TestDriver driver;
    return DriverInspector::Connected(*driver);
}

}  // namespace

TEST_F(MIDIConnection, SignsInUnderItsNamesAndConnectsTheControllersSource) {
    TheBus().devices = {{"Keyboard", {{"Private"}}}, {"KRT-9 USB", {{"Echo"}, {"Private"}}}};
    test_support::TestDriver driver;

    EXPECT_TRUE(DriverInspector::Connected(*driver));
    EXPECT_THAT(TheBus().calls, ElementsAre("client KRT9", "input Input from hardware",
                                            "output Output to hardware", "connect 2 to 2021"));
    EXPECT_EQ(TheBus().readProc, &CVEK_UserSpaceDriver::HardwareReadProcEntry);
    const MIDIEntityRef entity = fake_midi::EntityAt(1, 1);
    EXPECT_EQ(DriverInspector::MIDIClient(*driver), fake_midi::kClient);
    EXPECT_EQ(DriverInspector::SourceEndpoint(*driver), fake_midi::SourceOf(entity));
    EXPECT_EQ(DriverInspector::DestinationEndpoint(*driver), fake_midi::DestinationOf(entity));
}

TEST_F(MIDIConnection, GivesMIDINeitherNotificationProcedureNorContext) {
    EXPECT_TRUE(ConnectedWith({kController}));
    EXPECT_THAT(TheBus().notifyProcs, ElementsAre(nullptr));
    EXPECT_THAT(TheBus().contexts, ElementsAre(nullptr, nullptr, nullptr));
}

TEST_F(MIDIConnection, NamesAreConvertedToMacRomanIn256Bytes) {
    TheBus().devices = {kController};
    test_support::TestDriver driver;
    TheBus().conversions.clear();
    EXPECT_EQ(driver->LocateControllerDevice(), fake_midi::DeviceAt(0));
    EXPECT_THAT(TheBus().conversions,
                testing::Contains(std::pair(CFIndex{256}, kCFStringEncodingMacRoman)).Times(1));
    TheBus().conversions.clear();
    driver->LocateControllerPrivateEntity(fake_midi::DeviceAt(0));
    EXPECT_THAT(TheBus().conversions,
                testing::Contains(std::pair(CFIndex{256}, kCFStringEncodingMacRoman)).Times(1));
}

TEST_F(MIDIConnection, MakesBothPortsForItsClient) {
    ConnectedWith({});
    EXPECT_THAT(TheBus().portClients, ElementsAre(fake_midi::kClient, fake_midi::kClient));
}

TEST_F(MIDIConnection, SigningInAgainForgetsTheClientThatWas) {
    test_support::TestDriver driver;
    TheBus().clientStatus = kMIDIServerStartErr;
    TheBus().makesNoClient = true;
    TheBus().calls.clear();
    driver->MIDISignIn();
    EXPECT_EQ(DriverInspector::MIDIClient(*driver), 0u);
    EXPECT_THAT(TheBus().calls, ElementsAre("client KRT9")) << "the old one is not disposed of";
}

TEST_F(MIDIConnection, EntityThatIsNotUsedLeavesBothEndpointsAsTheyWere) {
    TheBus().devices = {{"KRT-9 USB", {{"Private", true, false}}}};
    test_support::TestDriver driver;
    DriverInspector::SourceEndpoint(*driver) = 7;
    DriverInspector::DestinationEndpoint(*driver) = 8;
    EXPECT_FALSE(driver->LocateController());
    EXPECT_EQ(DriverInspector::SourceEndpoint(*driver), 7u);
    EXPECT_EQ(DriverInspector::DestinationEndpoint(*driver), 8u);
}

TEST_F(MIDIConnection, EntityNamesAreComparedAsExactlyAsDeviceNames) {
    EXPECT_FALSE(ConnectedWith({{"KRT-9 USB", {{"private"}, {"Private "}, {"Privat"}, {""}}}}));
}

TEST_F(MIDIConnection, SigningOutOnlyClearsFields) {
    TheBus().devices = {kController};
    test_support::TestDriver driver;
    DriverInspector::SpareMIDIReferences(*driver)[0] = 5;
    DriverInspector::SpareMIDIReferences(*driver)[1] = 6;
    TheBus().calls.clear();

    driver->MIDISignOut();

    EXPECT_EQ(DriverInspector::MIDIClient(*driver), 0u);
    EXPECT_EQ(DriverInspector::SpareMIDIReferences(*driver)[0], 0u);
    EXPECT_EQ(DriverInspector::SpareMIDIReferences(*driver)[1], 0u);
    EXPECT_FALSE(DriverInspector::Connected(*driver));
    EXPECT_THAT(TheBus().calls, IsEmpty()) << "nothing is disposed of or disconnected";
}

TEST_F(MIDIConnection, WithoutControllerTheDriverIsMadeAndNotConnected) {
    EXPECT_FALSE(ConnectedWith({}));
    EXPECT_FALSE(ConnectedWith({{"Keyboard", {{"Private"}}}}));
}

TEST_F(MIDIConnection, NothingIsAskedOfWhatWasNotFound) {
    ConnectedWith({{"Keyboard", {{"Private"}}}});
    EXPECT_THAT(TheBus().parents, IsEmpty()) << "no device";
    ConnectedWith({{"KRT-9 USB", {{"Echo"}}}});
    EXPECT_THAT(TheBus().parents, ElementsAre(fake_midi::DeviceAt(0))) << "no entity";
    TheBus() = Bus();
    ConnectedWith({{"KRT-9 USB", {{"Private", false, true}}}});
    EXPECT_THAT(TheBus().parents, ElementsAre(fake_midi::DeviceAt(0), fake_midi::EntityAt(0, 0)))
        << "no source, so that the destination does not matter";
}

TEST_F(MIDIConnection, DeviceNameFollowedByABlankIsNotTheController) {
    EXPECT_FALSE(ConnectedWith({{"KRT-9 USB ", {{"Private"}}}}));
}

TEST_F(MIDIConnection, DeviceNameInLowerCaseIsNotTheController) {
    EXPECT_FALSE(ConnectedWith({{"krt-9 usb", {{"Private"}}}}));
}

TEST_F(MIDIConnection, DeviceNameThatIsOnlyABeginningIsNotTheController) {
    EXPECT_FALSE(ConnectedWith({{"KRT-9", {{"Private"}}}, {"", {{"Private"}}}}));
}

TEST_F(MIDIConnection, PrivateEntityWithoutDestinationIsNotUsed) {
    TheBus().devices = {{"KRT-9 USB", {{"Private", true, false}, {"Private"}}}};
    test_support::TestDriver driver;
    EXPECT_FALSE(DriverInspector::Connected(*driver)) << "the first entity of the name is the one";
    EXPECT_EQ(DriverInspector::SourceEndpoint(*driver), 0u);
    EXPECT_EQ(DriverInspector::DestinationEndpoint(*driver), 0u);
}

TEST_F(MIDIConnection, PrivateEntityWithoutSourceIsNotUsed) {
    EXPECT_FALSE(ConnectedWith({{"KRT-9 USB", {{"Private", false, true}}}}));
}

TEST_F(MIDIConnection, OfTwoControllersTheOneWithTheLowerIndexIsUsed) {
    TheBus().devices = {{"Keyboard", {}}, kController, kController};
    test_support::TestDriver driver;
    EXPECT_EQ(DriverInspector::SourceEndpoint(*driver),
              fake_midi::SourceOf(fake_midi::EntityAt(1, 0)));
    EXPECT_EQ(driver->LocateControllerDevice(), fake_midi::DeviceAt(1));
}

TEST_F(MIDIConnection, FirstControllerIsTheOneEvenWhenItHasNoPrivateEntity) {
    EXPECT_FALSE(ConnectedWith({{"KRT-9 USB", {{"Echo"}}}, kController}));
}

TEST_F(MIDIConnection, EchoEntityIsFoundByItsOwnLocator) {
    TheBus().devices = {{"KRT-9 USB", {{"Private"}, {"Echo"}}}};
    test_support::TestDriver driver;
    EXPECT_EQ(driver->LocateControllerEchoEntity(fake_midi::DeviceAt(0)),
              fake_midi::EntityAt(0, 1));
    EXPECT_EQ(driver->LocateControllerPrivateEntity(fake_midi::DeviceAt(0)),
              fake_midi::EntityAt(0, 0));
    EXPECT_EQ(driver->LocateControllerEchoEntity(0), 0u) << "no such device";
}

TEST_F(MIDIConnection, ObjectWhoseNameCannotBeReadMatchesNothing) {
    TheBus().devices = {{std::nullopt, {{"Private"}}},
                        {"KRT-9 USB", {{std::nullopt}, {"Private"}}}};
    test_support::TestDriver driver;
    EXPECT_EQ(driver->LocateControllerDevice(), fake_midi::DeviceAt(1));
    EXPECT_EQ(driver->LocateControllerPrivateEntity(fake_midi::DeviceAt(1)),
              fake_midi::EntityAt(1, 1));
    EXPECT_TRUE(DriverInspector::Connected(*driver));
}

TEST_F(MIDIConnection, NameOutsideTheDriversEncodingOrBeyondItsBufferMatchesNothing) {
    EXPECT_TRUE(ConnectedWith({{"鍵盤", {}}, {std::string(300, 'K'), {}}, kController}));
}

TEST_F(MIDIConnection, NameReadWithoutAStringMatchesNothing) {
    TheBus().nullNames = true;
    EXPECT_FALSE(ConnectedWith({kController}));
}

TEST_F(MIDIConnection, FailedClientIsDisposedOf) {
    TheBus().clientStatus = kMIDIServerStartErr;
    TheBus().devices = {kController};
    test_support::TestDriver driver;
    EXPECT_THAT(TheBus().calls, ElementsAre("client KRT9", "dispose 1"));
    EXPECT_EQ(DriverInspector::MIDIClient(*driver), 0u);
    EXPECT_FALSE(DriverInspector::Connected(*driver));
}

TEST_F(MIDIConnection, ClientThatWasNeverMadeIsNotDisposedOf) {
    TheBus().clientStatus = kMIDIServerStartErr;
    TheBus().makesNoClient = true;
    test_support::TestDriver driver;
    EXPECT_THAT(TheBus().calls, ElementsAre("client KRT9"));
    EXPECT_FALSE(DriverInspector::Connected(*driver));
}

TEST_F(MIDIConnection, MissingInputPortLeavesItUnconnected) {
    TheBus().makesNoInputPort = true;
    EXPECT_FALSE(ConnectedWith({kController}));
    EXPECT_THAT(TheBus().calls, ElementsAre("client KRT9", "input Input from hardware",
                                            "output Output to hardware"));
    EXPECT_THAT(TheBus().namesRead, IsEmpty()) << "the controller is not even sought";
}

TEST_F(MIDIConnection, MissingOutputPortLeavesItUnconnected) {
    TheBus().makesNoOutputPort = true;
    EXPECT_FALSE(ConnectedWith({kController}));
}

TEST_F(MIDIConnection, FailedConnectionReadsTheSourcesNameAndStaysUnconnected) {
    TheBus().connectStatus = kMIDIUnknownEndpoint;
    EXPECT_FALSE(ConnectedWith({kController}));
    EXPECT_THAT(TheBus().namesRead, ElementsAre("name of 1000", "name of 1010", "name of 1011"));
}

TEST_F(MIDIConnection, ConnectionThatSucceedsDoesNotReadTheSourcesName) {
    EXPECT_TRUE(ConnectedWith({kController}));
    EXPECT_THAT(TheBus().namesRead, ElementsAre("name of 1000", "name of 1010"));
}

TEST_F(MIDIConnection, NoFailureIsLogged) {
    const auto linesWith = [](const Bus& bus) {
        TheBus() = bus;
        const platform_testing::LogCapture log;
        test_support::TestDriver driver;
        return log.Lines();
    };
    Bus connected;
    connected.devices = {kController};
    Bus withoutClient;
    withoutClient.clientStatus = kMIDIServerStartErr;
    Bus refused = connected;
    refused.connectStatus = kMIDIUnknownEndpoint;
    const auto usual = linesWith(connected);
    EXPECT_EQ(linesWith(withoutClient), usual);
    EXPECT_EQ(linesWith(refused), usual);
    EXPECT_EQ(linesWith(Bus()), usual) << "no controller";
}

TEST(MIDINameComparison, EqualNamesMatchWithTheirWholeLength) {
    EXPECT_TRUE(CVEK_UserSpaceDriver::NameCmp("Echo", "Echo", 128));
    EXPECT_TRUE(CVEK_UserSpaceDriver::NameCmp("", "", 128));
    EXPECT_FALSE(CVEK_UserSpaceDriver::NameCmp("Echo", "Ech", 128));
    EXPECT_FALSE(CVEK_UserSpaceDriver::NameCmp("Ech", "Echo", 128));
    EXPECT_FALSE(CVEK_UserSpaceDriver::NameCmp("Echo", "echo", 128));
}

TEST(MIDINameComparison, NamesOfTheLimitOrMoreNeverMatch) {
    const std::string below(127, 'n');
    const std::string limit(128, 'n');
    EXPECT_TRUE(CVEK_UserSpaceDriver::NameCmp(below.c_str(), below.c_str(), 128));
    EXPECT_FALSE(CVEK_UserSpaceDriver::NameCmp(limit.c_str(), limit.c_str(), 128));
    EXPECT_FALSE(CVEK_UserSpaceDriver::NameCmp("", "", 0));
}
