#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "platform/Variants/MidiFaults.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/controller/MIDICalls.h"

namespace {

using nlohmann::json;
using platform_testing::FailMidiCreation;
using platform_testing::MidiCreation;
using testing::ElementsAre;
using testing::IsEmpty;

using Name = std::optional<std::string>;  // UTF-8; none: the object's name cannot be read

struct Entity {
    Name name;
    bool hasSource = true;
    bool hasDestination = true;
};

struct Device {
    Name name;
    std::vector<Entity> entities;
};

const Device kController{"KRT-9 USB", {{"Private"}}};

// Devices are 1000, 2000, ...; their entities 1010, 1020, ...; an entity's endpoints follow it.
MIDIDeviceRef DeviceAt(unsigned device) {
    return 1000 * (device + 1);
}
MIDIEntityRef EntityAt(unsigned device, unsigned entity) {
    return DeviceAt(device) + 10 * (entity + 1);
}
MIDIEndpointRef SourceOf(MIDIEntityRef entity) {
    return entity + 1;
}
MIDIEndpointRef DestinationOf(MIDIEntityRef entity) {
    return entity + 2;
}

json Object(MIDIObjectRef reference, const Name& name) {
    json object = {{"id", reference}};
    object["name"] = name ? json(*name) : json{{"error", kMIDIUnknownProperty}};
    return object;
}

// A scene with these devices, whose sources refuse connections with that error unless it is 0.
std::string SceneOf(const std::vector<Device>& devices, OSStatus connectError) {
    json bus = json::array();
    for (const Device& device : devices) {
        const auto number = static_cast<unsigned>(bus.size());
        json written = Object(DeviceAt(number), device.name);
        written["entities"] = json::array();
        for (const Entity& entity : device.entities) {
            const MIDIEntityRef reference =
                EntityAt(number, static_cast<unsigned>(written["entities"].size()));
            json each = Object(reference, entity.name);
            if (entity.hasSource) {
                each["sources"] = json::array({Object(SourceOf(reference), "in")});
                each["sources"][0]["connectError"] = connectError;
            }
            if (entity.hasDestination) {
                each["destinations"] = json::array({Object(DestinationOf(reference), "out")});
            }
            written["entities"].push_back(each);
        }
        bus.push_back(written);
    }
    return json{{"midi", {{"devices", bus}}}}.dump();
}

MIDICalls& Calls() {
    return MIDICalls::Current();
}

// The driver signs in when it is made; what is plugged in is set before that.
class MIDIConnection : public testing::Test {
  protected:
    MIDIConnection() { Calls() = MIDICalls(); }
    ~MIDIConnection() override { platform_testing::ForgetMidiFaults(); }

    void Plug(const std::vector<Device>& devices, OSStatus connectError = 0) {
        desktop_.Load(SceneOf(devices, connectError));
    }

    bool ConnectedWith(const std::vector<Device>& devices, OSStatus connectError = 0) {
        Plug(devices, connectError);
        test_support::TestDriver driver;
        return DriverInspector::Connected(*driver);
    }

    platform_testing::AutoreleasePool pool_;
    test_support::SessionFixture session_;
    test_support::ScriptedDesktop desktop_;
};

}  // namespace

TEST_F(MIDIConnection, SignsInUnderItsNamesAndConnectsTheControllersSource) {
    Plug({{"Keyboard", {{"Private"}}}, {"KRT-9 USB", {{"Echo"}, {"Private"}}}});
    test_support::TestDriver driver;

    EXPECT_TRUE(DriverInspector::Connected(*driver));
    EXPECT_THAT(Calls().calls, ElementsAre("client KRT9", "input Input from hardware",
                                           "output Output to hardware", "connect to 2021"));
    EXPECT_EQ(Calls().readProc, &CVEK_UserSpaceDriver::HardwareReadProcEntry);
    const MIDIEntityRef entity = EntityAt(1, 1);
    EXPECT_EQ(DriverInspector::MIDIClient(*driver), Calls().client);
    EXPECT_EQ(DriverInspector::SourceEndpoint(*driver), SourceOf(entity));
    EXPECT_EQ(DriverInspector::DestinationEndpoint(*driver), DestinationOf(entity));
}

TEST_F(MIDIConnection, GivesMIDINeitherNotificationProcedureNorContext) {
    EXPECT_TRUE(ConnectedWith({kController}));
    EXPECT_THAT(Calls().notifyProcs, ElementsAre(nullptr));
    EXPECT_THAT(Calls().contexts, ElementsAre(nullptr, nullptr, nullptr));
}

TEST_F(MIDIConnection, NamesAreConvertedToMacRomanIn256Bytes) {
    Plug({kController});
    test_support::TestDriver driver;
    Calls().conversions.clear();
    EXPECT_EQ(driver->LocateControllerDevice(), DeviceAt(0));
    EXPECT_THAT(Calls().conversions,
                testing::Contains(std::pair(CFIndex{256}, kCFStringEncodingMacRoman)).Times(1));
    Calls().conversions.clear();
    driver->LocateControllerPrivateEntity(DeviceAt(0));
    EXPECT_THAT(Calls().conversions,
                testing::Contains(std::pair(CFIndex{256}, kCFStringEncodingMacRoman)).Times(1));
}

TEST_F(MIDIConnection, MakesBothPortsForItsClient) {
    ConnectedWith({});
    EXPECT_THAT(Calls().portClients, ElementsAre(Calls().client, Calls().client));
}

TEST_F(MIDIConnection, SigningInAgainForgetsTheClientThatWas) {
    test_support::TestDriver driver;
    FailMidiCreation(MidiCreation::client, 1);
    Calls().calls.clear();
    driver->MIDISignIn();
    EXPECT_EQ(DriverInspector::MIDIClient(*driver), 0u);
    EXPECT_THAT(Calls().calls, ElementsAre("client KRT9")) << "the old one is not disposed of";
}

TEST_F(MIDIConnection, EntityThatIsNotUsedLeavesBothEndpointsAsTheyWere) {
    Plug({{"KRT-9 USB", {{"Private", true, false}}}});
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
    Plug({kController});
    test_support::TestDriver driver;
    DriverInspector::SpareMIDIReferences(*driver)[0] = 5;
    DriverInspector::SpareMIDIReferences(*driver)[1] = 6;
    Calls().calls.clear();

    driver->MIDISignOut();

    EXPECT_EQ(DriverInspector::MIDIClient(*driver), 0u);
    EXPECT_EQ(DriverInspector::SpareMIDIReferences(*driver)[0], 0u);
    EXPECT_EQ(DriverInspector::SpareMIDIReferences(*driver)[1], 0u);
    EXPECT_FALSE(DriverInspector::Connected(*driver));
    EXPECT_THAT(Calls().calls, IsEmpty()) << "nothing is disposed of or disconnected";
}

TEST_F(MIDIConnection, WithoutControllerTheDriverIsMadeAndNotConnected) {
    EXPECT_FALSE(ConnectedWith({}));
    EXPECT_FALSE(ConnectedWith({{"Keyboard", {{"Private"}}}}));
}

TEST_F(MIDIConnection, NothingIsAskedOfWhatWasNotFound) {
    ConnectedWith({{"Keyboard", {{"Private"}}}});
    EXPECT_THAT(Calls().parents, IsEmpty()) << "no device";
    ConnectedWith({{"KRT-9 USB", {{"Echo"}}}});
    EXPECT_THAT(Calls().parents, ElementsAre(DeviceAt(0))) << "no entity";
    Calls() = MIDICalls();
    ConnectedWith({{"KRT-9 USB", {{"Private", false, true}}}});
    EXPECT_THAT(Calls().parents, ElementsAre(DeviceAt(0), EntityAt(0, 0)))
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
    Plug({{"KRT-9 USB", {{"Private", true, false}, {"Private"}}}});
    test_support::TestDriver driver;
    EXPECT_FALSE(DriverInspector::Connected(*driver)) << "the first entity of the name is the one";
    EXPECT_EQ(DriverInspector::SourceEndpoint(*driver), 0u);
    EXPECT_EQ(DriverInspector::DestinationEndpoint(*driver), 0u);
}

TEST_F(MIDIConnection, PrivateEntityWithoutSourceIsNotUsed) {
    EXPECT_FALSE(ConnectedWith({{"KRT-9 USB", {{"Private", false, true}}}}));
}

TEST_F(MIDIConnection, OfTwoControllersTheOneWithTheLowerIndexIsUsed) {
    Plug({{"Keyboard", {}}, kController, kController});
    test_support::TestDriver driver;
    EXPECT_EQ(DriverInspector::SourceEndpoint(*driver), SourceOf(EntityAt(1, 0)));
    EXPECT_EQ(driver->LocateControllerDevice(), DeviceAt(1));
}

TEST_F(MIDIConnection, FirstControllerIsTheOneEvenWhenItHasNoPrivateEntity) {
    EXPECT_FALSE(ConnectedWith({{"KRT-9 USB", {{"Echo"}}}, kController}));
}

TEST_F(MIDIConnection, EchoEntityIsFoundByItsOwnLocator) {
    Plug({{"KRT-9 USB", {{"Private"}, {"Echo"}}}});
    test_support::TestDriver driver;
    EXPECT_EQ(driver->LocateControllerEchoEntity(DeviceAt(0)), EntityAt(0, 1));
    EXPECT_EQ(driver->LocateControllerPrivateEntity(DeviceAt(0)), EntityAt(0, 0));
    EXPECT_EQ(driver->LocateControllerEchoEntity(0), 0u) << "no such device";
}

TEST_F(MIDIConnection, ObjectWhoseNameCannotBeReadMatchesNothing) {
    Plug({{std::nullopt, {{"Private"}}}, {"KRT-9 USB", {{std::nullopt}, {"Private"}}}});
    test_support::TestDriver driver;
    EXPECT_EQ(driver->LocateControllerDevice(), DeviceAt(1));
    EXPECT_EQ(driver->LocateControllerPrivateEntity(DeviceAt(1)), EntityAt(1, 1));
    EXPECT_TRUE(DriverInspector::Connected(*driver));
}

TEST_F(MIDIConnection, NameOutsideTheDriversEncodingOrBeyondItsBufferMatchesNothing) {
    EXPECT_TRUE(ConnectedWith({{"鍵盤", {}}, {std::string(300, 'K'), {}}, kController}));
}

TEST_F(MIDIConnection, NameReadWithoutAStringMatchesNothing) {
    Calls().nullNames = true;
    EXPECT_FALSE(ConnectedWith({kController}));
}

TEST_F(MIDIConnection, FailedClientIsDisposedOf) {
    Calls().clientStatus = kMIDIServerStartErr;
    Plug({kController});
    test_support::TestDriver driver;
    EXPECT_THAT(Calls().calls, ElementsAre("client KRT9", "dispose"));
    EXPECT_EQ(DriverInspector::MIDIClient(*driver), 0u);
    EXPECT_FALSE(DriverInspector::Connected(*driver));
}

TEST_F(MIDIConnection, ClientThatWasNeverMadeIsNotDisposedOf) {
    FailMidiCreation(MidiCreation::client, 1);
    test_support::TestDriver driver;
    EXPECT_THAT(Calls().calls, ElementsAre("client KRT9"));
    EXPECT_FALSE(DriverInspector::Connected(*driver));
}

TEST_F(MIDIConnection, MissingInputPortLeavesItUnconnected) {
    FailMidiCreation(MidiCreation::inputPort, 1);
    EXPECT_FALSE(ConnectedWith({kController}));
    EXPECT_THAT(Calls().calls, ElementsAre("client KRT9", "input Input from hardware",
                                           "output Output to hardware"));
    EXPECT_THAT(Calls().namesRead, IsEmpty()) << "the controller is not even sought";
}

TEST_F(MIDIConnection, MissingOutputPortLeavesItUnconnected) {
    FailMidiCreation(MidiCreation::outputPort, 1);
    EXPECT_FALSE(ConnectedWith({kController}));
}

TEST_F(MIDIConnection, FailedConnectionReadsTheSourcesNameAndStaysUnconnected) {
    EXPECT_FALSE(ConnectedWith({kController}, kMIDIUnknownEndpoint));
    EXPECT_THAT(Calls().namesRead, ElementsAre("name of 1000", "name of 1010", "name of 1011"));
}

TEST_F(MIDIConnection, ConnectionThatSucceedsDoesNotReadTheSourcesName) {
    EXPECT_TRUE(ConnectedWith({kController}));
    EXPECT_THAT(Calls().namesRead, ElementsAre("name of 1000", "name of 1010"));
}

TEST_F(MIDIConnection, NoFailureIsLogged) {
    const auto linesWith = [this](const std::vector<Device>& devices, OSStatus connectError = 0) {
        Plug(devices, connectError);
        const platform_testing::LogCapture log;
        test_support::TestDriver driver;
        return log.Lines();
    };
    const auto usual = linesWith({kController});
    EXPECT_EQ(linesWith({kController}, kMIDIUnknownEndpoint), usual) << "refused";
    EXPECT_EQ(linesWith({}), usual) << "no controller";
    Calls().clientStatus = kMIDIServerStartErr;
    EXPECT_EQ(linesWith({kController}), usual) << "no client";
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
