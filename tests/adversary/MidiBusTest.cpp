// MIDI buses with all kinds of errors: the driver starts nevertheless, connected or not.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "tests/adversary/AllocationMeter.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"

namespace adversary {

namespace {

using desktop_link::Operation;

const std::string kController = R"({"id": 1, "name": "KRT-9 USB", "entities": [
    {"id": 2, "name": "Private", "sources": [{"id": 3, "name": "in"}],
     "destinations": [{"id": 4, "name": "out"}]}]})";

std::string BusOf(const std::string& devices) {
    return R"({"devices": [)" + devices + "]}";
}

class MidiBus : public testing::Test {
  protected:
    // Whether a driver that starts with that bus connects to its controller.
    bool Connects(const std::string& bus, std::int32_t error = 0) {
        const platform_testing::AutoreleasePool pool;
        test_support::ScriptedDesktop desktop;
        desktop.onReply = [&](std::size_t, test_support::Exchange& exchange) {
            if (exchange.request.operation == Operation::midiDevices) {
                exchange.reply->text = bus;
                exchange.reply->error = error;
            } else if (exchange.request.operation == Operation::midiConnectSource) {
                exchange.reply->error = 0;
            }
        };
        test_support::TestDriver driver;
        return DriverInspector::Connected(*driver);
    }

    test_support::SessionFixture session_;
    platform_testing::LogCapture log_;
};

}  // namespace

TEST_F(MidiBus, WithTheControllerIsConnected) {
    EXPECT_TRUE(Connects(BusOf(kController)));
}

TEST_F(MidiBus, ThatIsNoneLeavesTheDriverUnconnected) {
    const std::string deep(50'000, '[');
    for (const std::string& bus :
         {std::string(), std::string("{"), std::string("null"), std::string("[]"), std::string("7"),
          std::string("\"text\""), std::string(R"({"devices": {}})"),
          std::string(R"({"devices": [[[]], null, 7, "device", true]})"), deep,
          deep + std::string(50'000, ']'), R"({"devices": )" + deep, std::string("\xFF\xFE{}"),
          std::string("{\"devices\": [\0]}", 16)}) {
        EXPECT_FALSE(Connects(bus)) << bus.substr(0, 40);
        EXPECT_FALSE(Connects(bus, -50));
    }
    EXPECT_FALSE(Connects(BusOf(kController), -10830));
}

TEST_F(MidiBus, WithHostileObjectsBeforeTheControllerIsConnectedAllTheSame) {
    for (const std::string& stranger : {
             std::string(R"({})"),
             std::string(R"({"id": 0, "name": "KRT-9 USB"})"),
             std::string(R"({"id": -1, "name": "KRT-9 USB"})"),
             std::string(R"({"id": 99999999999, "name": "KRT-9 USB"})"),
             std::string(R"({"id": 1.5, "name": "KRT-9 USB"})"),
             std::string(R"({"id": "1", "name": "KRT-9 USB"})"),
             std::string(R"({"id": 9})"),
             std::string(R"({"id": 9, "name": null})"),
             std::string(R"({"id": 9, "name": ["KRT-9 USB"]})"),
             std::string(R"({"id": 9, "name": {"error": "text"}})"),
             std::string(R"({"id": 9, "name": {"error": -10835}})"),
             std::string(R"({"id": 9, "name": "krt-9 usb"})"),
             R"({"id": 9, "name": ")" + std::string(255, 'n') + "\"}",
             R"({"id": 9, "name": ")" + std::string(256, 'n') + "\"}",
             R"({"id": 9, "name": ")" + std::string(1'000'000, 'n') + "\"}",
             std::string(R"({"id": 9, "name": "\ud83d\ude00"})"),
             std::string(R"({"id": 9, "name": ""})"),
         }) {
        EXPECT_TRUE(Connects(BusOf(stranger + "," + kController))) << stranger.substr(0, 60);
    }
}

TEST_F(MidiBus, WhoseControllerIsHollowLeavesTheDriverUnconnected) {
    const auto controller = [](const std::string& entities) {
        return BusOf(R"({"id": 1, "name": "KRT-9 USB", "entities": )" + entities + "}");
    };
    for (const char* entities :
         {"null", "{}", "[]", "[null]", R"([{"id": 2, "name": "Private"}])",
          R"([{"id": 2, "name": "Private", "sources": {}, "destinations": []}])",
          R"([{"id": 2, "name": "Private", "sources": [{"id": 3}], "destinations": []}])",
          R"([{"id": 2, "name": "Private", "sources": [], "destinations": [{"id": 4}]}])",
          R"([{"id": 2, "name": "Private", "sources": [{"id": 0}], "destinations": [{"id": 4}]}])",
          R"([{"id": 2, "name": "private", "sources": [{"id": 3}], "destinations": [{"id": 4}]}])",
          R"([{"name": "Private", "sources": [{"id": 3}], "destinations": [{"id": 4}]}])"}) {
        EXPECT_FALSE(Connects(controller(entities))) << entities;
    }
}

// The reference names the device, which is not called "Private".
TEST_F(MidiBus, WhoseObjectsAllHaveOneReferenceLeavesTheDriverUnconnected) {
    EXPECT_FALSE(Connects(BusOf(R"({"id": 1, "name": "KRT-9 USB", "entities": [
        {"id": 1, "name": "Private", "sources": [{"id": 1, "name": "in"}],
         "destinations": [{"id": 1, "name": "out"}]}]})")));
}

// Names are compared as 0-terminated texts.
TEST_F(MidiBus, NameEndsAtItsNullCharacter) {
    const std::string other = R"({"id": 9, "name": "KRT-9 USB\u0000 and more"})";
    EXPECT_FALSE(Connects(BusOf(other + "," + kController))) << "the first one counts";
    EXPECT_TRUE(Connects(BusOf(kController + "," + other)));
}

TEST_F(MidiBus, OfManyDevicesIsSearchedToItsEnd) {
    std::string devices;
    for (int id = 100; id < 150; ++id) {
        devices += R"({"id": )" + std::to_string(id) + R"(, "name": "other"},)";
    }
    EXPECT_TRUE(Connects(BusOf(devices + kController)));
}

TEST_F(MidiBus, IsNeverLogged) {
    Connects("{");
    const auto first = log_.Lines().size();
    Connects(BusOf(R"({"id": 1, "name": "KRT-9 USB", "entities": 7})"));
    EXPECT_EQ(log_.Lines().size(), 2 * first) << "what every start says, and nothing else";
}

}  // namespace adversary
