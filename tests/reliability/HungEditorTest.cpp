// An editing application that hangs, seen from the companion: how long a request takes.

#include <gtest/gtest.h>

#include <chrono>

#include "tests/process/Stage.h"
#include "tests/reliability/WireClient.h"

namespace {

using test_support::Bytes;
using test_support::Stage;
using test_support::WireClient;
using Clock = std::chrono::steady_clock;

constexpr double kTimeOut = 0.5;  // seconds, of one call to the editor
constexpr double kSlack = 1.5;    // seconds, for a machine that has other things to do

std::string Scene(double messagingTimeout) {
    return R"({"messagingTimeout": )" + std::to_string(messagingTimeout) + R"(,
        "pointer": [100, 200], "front": "com.apple.FinalCut", "applications": [
          {"bundleID": "com.apple.FinalCut", "windows": [
            {"AXRole": "AXWindow", "AXTitle": "Only", "AXChildren": [
              {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 3}]}]}]})";
}

// The editor hangs as soon as it has told a hundred controls, which then are all still to be asked.
std::string SceneThatHangsInASearch() {
    std::string buttons;
    for (int i = 0; i < 100; ++i) {
        buttons += R"({"AXRole": "AXButton"},)";
    }
    return R"({"messagingTimeout": )" + std::to_string(kTimeOut) + R"(,
        "front": "com.apple.FinalCut", "applications": [
          {"bundleID": "com.apple.FinalCut", "windows": [
            {"AXRole": "AXWindow", "AXTitle": "Only", "AXChildren": [)" +
           buttons + R"({"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 3}],
             "misbehaviour": {"read": {"AXChildren": {"after": 1, "then": [
               {"command": "hang", "application": "com.apple.FinalCut"}]}}}}]}]})";
}

class HungEditor : public testing::Test {
  protected:
    void Begin(const std::string& scene) {
        stage.StartDesktop(scene);
        stage.StartDriver();
        client.emplace();
        EXPECT_EQ(Ask("JElV", {59, 0, 0, 0}).data, (Bytes{3, 0, 0, 0}));
    }

    void Desktop(const std::string& verb) {
        EXPECT_EQ(stage.Companion({"desktop", verb, "com.apple.FinalCut"}).status, 0);
    }

    struct Timed {
        Bytes data;
        double seconds = 0;
    };
    Timed Ask(std::string_view code, const Bytes& body) {
        const auto begin = Clock::now();
        EXPECT_TRUE(client->Send(WireClient::Request(code, body, ++sequence)));
        const auto reply = client->Receive(30);
        const std::chrono::duration<double> taken = Clock::now() - begin;
        EXPECT_TRUE(reply) << code << " was never answered";
        return {reply ? reply->data : Bytes{}, taken.count()};
    }

    Stage stage;
    std::optional<WireClient> client;
    std::uint32_t sequence = 0;
};

TEST_F(HungEditor, CostsARequestOneTimeOutAndARequestWithoutItNothing) {
    Begin(Scene(kTimeOut));
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

// Each tick then waits once and is due again when it ends; requests have their turn in between.
TEST_F(HungEditor, LetsARequestWaitForOneTickAtMostWhileBothObservationsAreOn) {
    Begin(Scene(kTimeOut));
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

TEST_F(HungEditor, ThatDiesMeanwhileCostsNothingMore) {
    constexpr double kUsualTimeOut = 6;
    Begin(Scene(kUsualTimeOut));
    Desktop("hang");
    Desktop("kill");
    for (int i = 0; i < 3; ++i) {
        const Timed value = Ask("JElV", {59, 0, 0, 0});
        EXPECT_EQ(value.data, Bytes{});
        EXPECT_LT(value.seconds, kUsualTimeOut / 2);
    }
}

}  // namespace
