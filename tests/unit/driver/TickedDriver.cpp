#include "tests/unit/driver/TickedDriver.h"

#include "frontapplication/FrontApplication.h"
#include "tests/support/LateActivation.h"
#include "tests/support/SentMessages.h"

namespace {

const std::string kApplications = R"("front": "com.apple.FinalCut", "applications": [
    { "bundleID": "com.apple.FinalCut", "name": "Editor", "pid": 501,
      "info": { "CFBundleShortVersionString": "10.4.1" },
      "windows": [ { "AXRole": "AXWindow", "AXChildren": [
        { "AXRole": "AXStaticText", "AXIdentifier": "_NS:100", "AXValue": "Clip" },
        { "AXRole": "AXLayoutArea", "AXIdentifier": "_NS:352", "AXChildren": [
          { "AXRole": "AXValueIndicator", "AXDescription": "Playhead",
            "AXValueDescription": "01:00:00:00" } ] } ] } ] },
    { "bundleID": "com.apple.FinalCutX", "name": "Longer", "pid": 502,
      "info": { "CFBundleShortVersionString": "10.3.2" } },
    { "bundleID": "com.apple.finalcut", "name": "Lower", "pid": 503,
      "info": { "CFBundleShortVersionString": "10.3.4" } },
    { "bundleID": "com.example.player", "name": "Player", "pid": 504,
      "info": { "CFBundleShortVersionString": "10.2.7" } },
    { "bundleID": "com.example.unversioned", "name": "Unversioned", "pid": 505, "info": {} },
    { "name": "Tool", "pid": 506 } ] })";

}  // namespace

std::string SceneWithoutController() {
    return "{" + kApplications;
}

std::string SceneWithController() {
    return R"({"midi": {"devices": [{"name": "KRT-9 USB", "entities": [
        {"name": "Private", "sources": ["Private"], "destinations": ["Private"]}]}]}, )" +
           kApplications;
}

void RunLoopFor(CFTimeInterval seconds) {
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds, false);
}

TickedDriver::TickedDriver(const std::string& scene) : desktop_(scene) {
    LanguageTag::Current() = LanguageTag();
    CFWorkspace_StartObservingFrontApplication();
}

TickedDriver::~TickedDriver() = default;

void TickedDriver::Activate(const std::string& application) {
    desktop_.Run(R"({"command": "activate", "application": ")" + application + "\"}");
    test_support::AwaitActivations();
}

void TickedDriver::RunTicks(int count) {
    for (int tick = 0; tick < count; ++tick) {
        CVEK_UserSpaceDriver::TimeoutCounterEntry(nullptr, nullptr);
    }
}

void TickedDriver::ObserveBoth() {
    driver_->ObserveFCPXClipSelectionChange();
    driver_->ObserveFCPXTimelineTimecode();
}

std::vector<SInt32> TickedDriver::Sent() {
    return test_support::CodesOf(test_support::TakeSent(*driver_, *companion_));
}
