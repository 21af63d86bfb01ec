#include <CoreMIDI/CoreMIDI.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/Testing/LiveObjects.h"
#include "platform/Variants/Variants.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"

namespace {

using desktop_link::Operation;
using test_support::ScriptedDesktop;
using OwnedString = test_support::OwnedObject<CFStringRef>;

// Two devices; the second has an entity with two sources and no destination, and a name that cannot
// be read.
constexpr char kBus[] = R"({"devices": [
    {"id": 1, "name": "KRT-9 USB", "entities": [
        {"id": 2, "name": "Private", "sources": [{"id": 3, "name": "In \u00e9"}],
         "destinations": [{"id": 4, "name": "Out"}]},
        {"id": 5, "name": "Echo", "sources": [], "destinations": []}]},
    {"id": 6, "name": {"error": -10841}, "entities": [
        {"id": 7, "name": "Port", "sources": [{"id": 8, "name": "a"}, {"id": 9, "name": "b"}],
         "destinations": []}]}]})";

std::string SceneWithBus() {
    return std::string(R"({"midi": )") + kBus + "}";
}

// A desktop that describes its bus in these words.
class OddBus {
  public:
    explicit OddBus(const std::string& description) {
        desktop_.onReply = [description](std::size_t, auto& exchange) {
            EXPECT_EQ(exchange.request.operation, Operation::midiDevices);
            exchange.reply->text = description;
        };
    }

  private:
    ScriptedDesktop desktop_;
};

std::string NameOf(MIDIObjectRef object) {
    OwnedString name;
    if (MIDIObjectGetStringProperty(object, kMIDIPropertyName, name.Out()) != 0) {
        return "(unreadable)";
    }
    char text[64];
    CFStringGetCString(name, text, sizeof text, kCFStringEncodingUTF8);
    return text;
}

TEST(MidiDevices, AreEnumeratedInOrderDownToTheirEndpoints) {
    const ScriptedDesktop desktop(SceneWithBus());
    ASSERT_EQ(MIDIGetNumberOfDevices(), 2u);
    const MIDIDeviceRef device = MIDIGetDevice(0);
    ASSERT_EQ(MIDIDeviceGetNumberOfEntities(device), 2u);
    const MIDIEntityRef entity = MIDIDeviceGetEntity(device, 0);
    EXPECT_EQ(NameOf(device), "KRT-9 USB");
    EXPECT_EQ(NameOf(entity), "Private");
    EXPECT_EQ(NameOf(MIDIEntityGetSource(entity, 0)), "In \xC3\xA9");
    EXPECT_EQ(NameOf(MIDIEntityGetDestination(entity, 0)), "Out");
    EXPECT_EQ(NameOf(MIDIDeviceGetEntity(device, 1)), "Echo");
    const MIDIEntityRef second = MIDIDeviceGetEntity(MIDIGetDevice(1), 0);
    EXPECT_EQ(NameOf(MIDIEntityGetSource(second, 1)), "b");
}

TEST(MidiDevices, EachCallIsOneExchange) {
    ScriptedDesktop desktop(SceneWithBus());
    desktop.Restart();
    MIDIGetNumberOfDevices();
    EXPECT_EQ(desktop.Exchanges().size(), 1u);
    MIDIEntityGetSource(2, 0);
    EXPECT_EQ(desktop.Exchanges().size(), 2u);
    NameOf(4);
    EXPECT_EQ(desktop.Exchanges().size(), 3u);
}

TEST(MidiDevices, CountsAndReferencesOfWhatIsNotThereAreZero) {
    const ScriptedDesktop desktop(SceneWithBus());
    EXPECT_EQ(MIDIGetDevice(2), 0u);
    EXPECT_EQ(MIDIGetDevice(~ItemCount{0}), 0u);
    EXPECT_EQ(MIDIDeviceGetNumberOfEntities(0), 0u);
    EXPECT_EQ(MIDIDeviceGetNumberOfEntities(2), 0u) << "an entity is not a device";
    EXPECT_EQ(MIDIDeviceGetEntity(1, 2), 0u);
    EXPECT_EQ(MIDIDeviceGetEntity(99, 0), 0u);
    EXPECT_EQ(MIDIEntityGetSource(1, 0), 0u) << "a device is not an entity";
    EXPECT_EQ(MIDIEntityGetSource(2, 1), 0u);
    EXPECT_EQ(MIDIEntityGetSource(5, 0), 0u);
    EXPECT_EQ(MIDIEntityGetDestination(7, 0), 0u);
    EXPECT_EQ(MIDIEntityGetDestination(99, 0), 0u);
}

TEST(MidiDevices, WithoutADesktopThereAreNone) {
    const test_support::SessionFixture session;
    desktop_link::SetTransport(nullptr);
    EXPECT_EQ(MIDIGetNumberOfDevices(), 0u);
    EXPECT_EQ(MIDIGetDevice(0), 0u);
    CFStringRef name = nullptr;
    EXPECT_EQ(MIDIObjectGetStringProperty(1, kMIDIPropertyName, &name), kMIDIObjectNotFound);
    EXPECT_EQ(name, nullptr);
    desktop_link::SetTransport(nullptr);
}

TEST(MidiDevices, FailedReadOfAPropertySaysWhyAndWritesNothing) {
    const ScriptedDesktop desktop(SceneWithBus());
    CFStringRef name = nullptr;
    EXPECT_EQ(MIDIObjectGetStringProperty(6, kMIDIPropertyName, &name), -10841)
        << "the name that cannot be read";
    EXPECT_EQ(MIDIObjectGetStringProperty(99, kMIDIPropertyName, &name), kMIDIObjectNotFound);
    EXPECT_EQ(MIDIObjectGetStringProperty(0, kMIDIPropertyName, &name), kMIDIObjectNotFound);
    EXPECT_EQ(MIDIObjectGetStringProperty(1, CFSTR("manufacturer"), &name), kMIDIUnknownProperty);
    EXPECT_NE(MIDIObjectGetStringProperty(1, kMIDIPropertyName, nullptr), 0);
    EXPECT_NE(MIDIObjectGetStringProperty(1, nullptr, &name), 0);
    EXPECT_EQ(name, nullptr);
}

TEST(MidiDevices, DescriptionThatMakesNoSenseIsAnEmptyBus) {
    for (const char* json : {"", "[]", "null", "{", "{\"devices\": 5}", "{\"devices\": [1, null]}",
                             "{\"devices\": [{}, {\"id\": 0}, {\"id\": -3}, {\"id\": \"1\"}]}",
                             "{\"devices\": [{\"id\": 99999999999}]}", "\xFF\xFE"}) {
        const OddBus desktop(json);
        EXPECT_EQ(MIDIGetNumberOfDevices(), 0u) << json;
    }
}

TEST(MidiDevices, DeviceWithoutNameOrEntitiesHasNone) {
    const OddBus desktop(R"({"devices": [{"id": 1, "name": 7, "entities": {}}]})");
    EXPECT_EQ(MIDIGetNumberOfDevices(), 1u);
    EXPECT_EQ(MIDIDeviceGetNumberOfEntities(1), 0u);
    CFStringRef name = nullptr;
    EXPECT_EQ(MIDIObjectGetStringProperty(1, kMIDIPropertyName, &name), kMIDIUnknownProperty);
}

TEST(MidiDevices, NameThatIsNeitherTextNorErrorIsUnknown) {
    const OddBus desktop(R"({"devices": [{"id": 1}, {"id": 2, "name": {"code": 1}},
        {"id": 3, "name": {"error": "much"}}, {"id": 4, "name": {"error": -1}}]})");
    ASSERT_EQ(MIDIGetNumberOfDevices(), 4u);
    CFStringRef name = nullptr;
    for (const MIDIObjectRef device : {1u, 2u, 3u}) {
        EXPECT_EQ(MIDIObjectGetStringProperty(device, kMIDIPropertyName, &name),
                  kMIDIUnknownProperty)
            << device;
    }
    EXPECT_EQ(MIDIObjectGetStringProperty(4, kMIDIPropertyName, &name), -1);
    EXPECT_EQ(name, nullptr);
}

TEST(MidiDevices, EntitiesAndEndpointsThatMakeNoSenseAreLeftOut) {
    const OddBus desktop(R"({"devices": [{"id": 1, "entities": [{}, {"id": "x"}, 7,
        {"id": 2}, {"id": 3, "sources": [{"id": 0}, {"id": 4}], "destinations": "none"}]},
        {"id": 5}]})");
    EXPECT_EQ(MIDIDeviceGetNumberOfEntities(1), 2u);
    EXPECT_EQ(MIDIDeviceGetEntity(1, 0), 2u);
    EXPECT_EQ(MIDIEntityGetSource(2, 0), 0u);
    EXPECT_EQ(MIDIEntityGetSource(3, 0), 4u);
    EXPECT_EQ(MIDIEntityGetDestination(3, 0), 0u);
    EXPECT_EQ(MIDIDeviceGetNumberOfEntities(5), 0u);
}

TEST(MidiDevices, DesktopThatCannotTellHasNone) {
    ScriptedDesktop desktop(SceneWithBus());
    desktop.onReply = [](std::size_t, auto& exchange) { exchange.reply->error = -50; };
    EXPECT_EQ(MIDIGetNumberOfDevices(), 0u);
}

TEST(MidiDevices, OfflineOnesAreListedFirstUnderThatVariant) {
    const platform_testing::UnderVariant offline(platform_testing::Variant::offlineDevices);
    const ScriptedDesktop desktop(SceneWithBus());
    ASSERT_EQ(MIDIGetNumberOfDevices(), 3u);
    EXPECT_EQ(NameOf(MIDIGetDevice(0)), "KRT-9 USB (offline)");
    EXPECT_EQ(NameOf(MIDIDeviceGetEntity(MIDIGetDevice(0), 0)), "Private");
    EXPECT_EQ(NameOf(MIDIGetDevice(1)), "KRT-9 USB");
}

TEST(MidiDevices, LeaveNoObjectBehind) {
    const ScriptedDesktop desktop(SceneWithBus());
    EXPECT_EQ(platform_testing::LeftOverBy([] {
                  MIDIGetDevice(0);
                  NameOf(1);
                  NameOf(99);
              }),
              "");
}

}  // namespace
