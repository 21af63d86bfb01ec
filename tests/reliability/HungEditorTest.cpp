// An editing application that hangs, seen from the companion: how long a request takes.

#include <gtest/gtest.h>

#include <chrono>

#include "tests/reliability/WireClient.h"
#include "tests/support/Stage.h"

namespace {

using test_support::Bytes;
using test_support::Stage;
using test_support::WireClient;
using Clock = std::chrono::steady_clock;

constexpr double kTimeOut = 0.5;        // seconds, of one call of the impatient driver
constexpr double kTimeOutOfDriver = 6;  // seconds, of one call of the driver itself
constexpr double kSlack = 1.5;          // seconds, for a machine that has other things to do

const char* const kScene = R"({"pointer": [100, 200], "front": "com.apple.FinalCut",
    "applications": [{"bundleID": "com.apple.FinalCut", "windows": [
      {"AXRole": "AXWindow", "AXTitle": "Only", "AXChildren": [
        {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 3}]}]}]})";

// The editor hangs when the first of the controls that it has listed is read for the second time:
// that one and a hundred others are then still to be read.
std::string SceneThatHangsInASearch() {
    std::string buttons;
    for (int i = 0; i < 100; ++i) {
        buttons += R"({"AXRole": "AXButton"},)";
    }
    return R"({"front": "com.apple.FinalCut", "applications": [
          {"bundleID": "com.apple.FinalCut", "windows": [
            {"AXRole": "AXWindow", "AXTitle": "Only", "AXChildren": [
              {"AXRole": "AXButton", "misbehaviour": {"read": {"AXRole": {"after": 1, "then": [
                {"command": "hang", "application": "com.apple.FinalCut"}]}}}},)" +
           buttons + R"({"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 3}]}]}]})";
}

// The first child of the editor's window belongs to a process that hangs.
const char* const kSceneWithHungView = R"({"front": "com.apple.FinalCut", "applications": [
    {"bundleID": "com.apple.FinalCut", "windows": [
      {"AXRole": "AXWindow", "AXTitle": "Only", "AXChildren": [
        {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 3}],
       "misbehaviour": {"read": {"AXChildren": {"answer": {"array": [
         {"element": "/0", "application": "com.example.extension"}, {"element": "/0/0"}]}}}}}]},
    {"bundleID": "com.example.extension", "windows": [{"AXRole": "AXGroup"}]}]})";

class HungEditor : public testing::Test {
  protected:
    void Begin(const std::string& scene, const std::string& driver = Stage::ImpatientDriverPath()) {
        stage.StartDesktop(scene);
        stage.StartDriver({}, driver);
        client.emplace();
        EXPECT_EQ(Ask("JElV", {59, 0, 0, 0}).data, (Bytes{3, 0, 0, 0}));
    }

    void Desktop(const std::string& verb, const std::string& application = "com.apple.FinalCut") {
        EXPECT_EQ(stage.Control({"desktop", verb, application}).status, 0);
    }

    struct Timed {
        Bytes data;
        double seconds = 0;
    };
    Timed Ask(std::string_view code, const Bytes& body) {
        const auto begin = Clock::now();
        EXPECT_TRUE(client->SendBytes(WireClient::Request(code, body, ++sequence)));
        const auto reply = client->ReceiveReply(30);
        const std::chrono::duration<double> taken = Clock::now() - begin;
        EXPECT_TRUE(reply) << code << " was never answered";
        return {reply ? reply->data : Bytes{}, taken.count()};
    }

    Stage stage;
    std::optional<WireClient> client;
    std::uint32_t sequence = 0;
};

TEST_F(HungEditor, CostsARequestOneTimeOutAndARequestWithoutItNothing) {
    Begin(kScene);
    Desktop("hang");
    for (int i = 0; i < 3; ++i) {
        const Timed value = Ask("JElV", {59, 0, 0, 0});
        EXPECT_EQ(value.data, Bytes{});
        EXPECT_GE(value.seconds, 0.9 * kTimeOut);
        EXPECT_LT(value.seconds, kTimeOut + kSlack);
        const Timed pointer = Ask("JGlM", {});
        EXPECT_EQ(pointer.data, (Bytes{100, 0, 0, 0, 200, 0, 0, 0}));
        EXPECT_LT(pointer.seconds, kSlack);
    }
    Desktop("unhang");
    EXPECT_EQ(Ask("JElV", {59, 0, 0, 0}).data, (Bytes{3, 0, 0, 0}));
}

// Each tick then waits once and is due again when it ends; requests are served in between.
TEST_F(HungEditor, LetsARequestWaitForOneTickAtMostWhileBothObservationsAreOn) {
    Begin(kScene);
    Ask("JObE", {});
    Ask("JObT", {});
    Desktop("hang");
    for (int i = 0; i < 4; ++i) {
        const Timed value = Ask("JElV", {59, 0, 0, 0});
        EXPECT_EQ(value.data, Bytes{});
        EXPECT_LT(value.seconds, 2 * kTimeOut + kSlack);
        EXPECT_LT(Ask("JGlM", {}).seconds, kTimeOut + kSlack);
    }
    Desktop("unhang");
    EXPECT_EQ(Ask("JElV", {59, 0, 0, 0}).data, (Bytes{3, 0, 0, 0}));
}

TEST_F(HungEditor, CostsASearchUnderWayOneTimeOut) {
    Begin(SceneThatHangsInASearch());
    const Timed value = Ask("JElV", {59, 0, 0, 0});
    EXPECT_EQ(value.data, Bytes{});
    EXPECT_GE(value.seconds, 0.9 * kTimeOut);
    EXPECT_LT(value.seconds, kTimeOut + kSlack);
}

// The session itself would end the calls earlier.
TEST_F(HungEditor, IsWaitedForSixSecondsByTheDriverItself) {
    Begin(R"({"messagingTimeout": 1, )" + std::string(kScene).substr(1), Stage::DriverPath());
    Desktop("hang");
    const Timed value = Ask("JElV", {59, 0, 0, 0});
    EXPECT_EQ(value.data, Bytes{});
    EXPECT_GE(value.seconds, 0.9 * kTimeOutOfDriver);
    EXPECT_LT(value.seconds, kTimeOutOfDriver + kSlack);
}

TEST_F(HungEditor, IsNotOneThatShowsAViewOfAHungProcess) {
    Begin(kSceneWithHungView);
    Desktop("hang", "com.example.extension");
    for (int i = 0; i < 3; ++i) {
        const Timed value = Ask("JElV", {59, 0, 0, 0});
        EXPECT_EQ(value.data, (Bytes{3, 0, 0, 0}));
        EXPECT_GE(value.seconds, 0.9 * kTimeOut);
        EXPECT_LT(value.seconds, kTimeOut + kSlack);
    }
}

TEST_F(HungEditor, ThatDiesMeanwhileCostsNothingMore) {
    Begin(kScene, Stage::DriverPath());
    Desktop("hang");
    Desktop("kill");
    for (int i = 0; i < 3; ++i) {
        const Timed value = Ask("JElV", {59, 0, 0, 0});
        EXPECT_EQ(value.data, Bytes{});
        EXPECT_LT(value.seconds, kTimeOutOfDriver / 2);
    }
}

}  // namespace
