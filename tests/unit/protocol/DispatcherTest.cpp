#include "tests/unit/protocol/DispatcherTest.h"

#include <cstring>

#include "VEKCommon/MessageCodes.h"
#include "frontapplication/FrontApplication.h"
#include "tests/support/LeakAllowance.h"
#include "tests/support/OwnedObject.h"

namespace {

constexpr char kScene[] = R"({
  "trusted": true,
  "screens": [ { "frame": [0, 0, 1440, 900] } ],
  "pointer": [100.75, 200.25],
  "front": "com.apple.FinalCut",
  "applications": [
    { "bundleID": "com.apple.FinalCut", "name": "Final Cut Pro", "pid": 501,
      "info": { "CFBundleShortVersionString": "10.4.6" },
      "windows": [
        { "AXRole": "AXWindow", "AXTitle": "Final Cut Pro",
          "AXPosition": [0.9, 22.9], "AXSize": [1440.9, 878.9],
          "AXChildren": [
            { "AXRole": "AXGroup", "AXPosition": [100.5, -7.5], "AXChildren": [
              { "AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 1,
                "AXPosition": [10.75, -20.75] } ] },
            { "AXRole": "AXTextField", "AXIdentifier": "_NS:60", "AXValue": "12 fps" },
            { "AXRole": "AXTextField", "AXIdentifier": "_NS:61", "AXValue": "none" },
            { "AXRole": "AXTextField", "AXIdentifier": "_NS:64", "AXValue": "99999999999" },
            { "AXRole": "AXRadioGroup", "AXIdentifier": "_NS:62", "AXChildren": [
              { "AXRole": "AXRadioButton", "AXValue": 0 },
              { "AXRole": "AXRadioButton", "AXValue": 1 },
              { "AXRole": "AXRadioButton", "AXValue": 0 } ] },
            { "AXRole": "AXRadioGroup", "AXIdentifier": "_NS:63", "AXChildren": [
              { "AXRole": "AXRadioButton", "AXValue": 0 } ] },
            { "AXRole": "AXCheckBox", "AXIdentifier": "_NS:989855744", "AXValue": 7 },
            { "AXRole": "AXCheckBox", "AXIdentifier": "_NS:4294967295", "AXValue": 8 } ] },
        { "AXRole": "AXWindow", "AXTitle": "Color Board",
          "AXPosition": [50, 60], "AXSize": [300, 200] } ] } ]
})";

}  // namespace

DispatcherTest::DispatcherTest() : DispatcherTest(kScene) {}

DispatcherTest::DispatcherTest(const std::string& scene) : desktop_(scene) {
    CFWorkspace_StartObservingFrontApplication();
    log_.Clear();
}

std::optional<Bytes> DispatcherTest::Ask(SInt32 code, const Bytes& body) {
    const test_support::OwnedObject<CFDataRef> data =
        CFDataCreate(kCFAllocatorDefault, body.data(), static_cast<CFIndex>(body.size()));
    return AskWith(code, data);
}

std::optional<Bytes> DispatcherTest::AskWithoutBody(SInt32 code) {
    return AskWith(code, nullptr);
}

// In an autorelease pool, as a pass of the run loop may be.
std::optional<Bytes> DispatcherTest::AskWith(SInt32 code, CFDataRef body) {
    const platform_testing::AutoreleasePool pool;
    std::optional<test_support::LeakAllowance> groupAndChildren;
    if (code == kJSRV) {
        groupAndChildren.emplace();  // deliberately never released
    }
    CFDataRef reply = CVEK_UserSpaceDriver::MessageCallbackEntry(nullptr, code, body, nullptr);
    if (reply == nullptr) {
        return std::nullopt;
    }
    Bytes bytes(CFDataGetBytePtr(reply), CFDataGetBytePtr(reply) + CFDataGetLength(reply));
    CFRelease(reply);
    return bytes;
}

void DispatcherTest::Translate(const std::map<std::string, std::string>& translations) {
    std::string document = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)";
    for (const auto& [key, text] : translations) {
        document += "<key>" + key + "</key><string>" + text + "</string>";
    }
    home_.WriteTranslations("xx", document + "</dict></plist>");
    std::strcpy(DriverInspector::Language(*driver_), "xx");
}
