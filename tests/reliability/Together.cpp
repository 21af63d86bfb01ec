#include "tests/reliability/Together.h"

#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/reliability/WireClient.h"
#include "tests/support/Paths.h"
#include "tests/support/WaitUntil.h"

namespace test_support {

void StartTogether(Stage& stage) {
    auto scene = nlohmann::json::parse(std::ifstream(KRT9_SCENES "/editor-10.4.6.json"));
    scene["messagingTimeout"] = 1;
    stage.StartDesktop(scene.dump());
    // Its port must be there when the driver looks for it.
    stage.StartCompanion({"--units", "1", "--channels", "8"});
    stage.StartDriver({}, Stage::ImpatientDriverPath());
}

bool DriverAnswers() {
    WireClient client;
    return client.Connected() && client.SendBytes(WireClient::Request("JPth", {0}, 1)) &&
           client.ReceiveReply().has_value();
}

bool DriverSeesTheEditor() {
    return WaitUntil([] { return Stage::Control({"window", "Final Cut Pro"}).status == 0; });
}

bool CompanionHears(Stage& stage, const std::string& timecode) {
    return Stage::Control({"refresh", "--profile", "--timecode"}).status == 0 &&
           Stage::Control({"desktop", "playhead", timecode}).status == 0 &&
           stage.Companion().WaitForOutput("JFTC timecode: " + timecode, 5);
}

}  // namespace test_support
