#include "tests/reliability/RequestMix.h"

namespace test_support {

// The pointer is outside every gesture's end, so that where it is depends on the gestures alone:
// all of them end at one place, where it is from the beginning.
const char* const kMixScene = R"({
  "trusted": true,
  "messagingTimeout": 0.5,
  "screens": [ { "frame": [0, 0, 1440, 900] } ],
  "pointer": [100, 200],
  "front": "com.apple.FinalCut",
  "applications": [
    { "bundleID": "com.apple.FinalCut", "name": "Final Cut Pro", "pid": 501,
      "info": { "CFBundleShortVersionString": "10.4.6" },
      "windows": [
        { "AXRole": "AXWindow", "AXTitle": "Final Cut Pro", "AXPosition": [-3, 22],
          "AXSize": [1440.9, 878],
          "AXChildren": [ { "AXRole": "AXGroup", "AXPosition": [5, -6], "AXChildren": [
            { "AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 1, "AXPosition": [40, 50] },
            { "AXRole": "AXButton", "AXIdentifier": "_NS:58" },
            { "AXRole": "AXTextField", "AXIdentifier": "_NS:60", "AXValue": "-7" },
            { "AXRole": "AXRadioGroup", "AXIdentifier": "_NS:61", "AXChildren": [
              { "AXRole": "AXRadioButton", "AXValue": 0 },
              { "AXRole": "AXRadioButton", "AXValue": 1 } ] },
            { "AXRole": "AXStaticText", "AXIdentifier": "_NS:100", "AXValue": "Interview" },
            { "AXRole": "AXLayoutArea", "AXIdentifier": "_NS:393", "AXChildren": [
              { "AXRole": "AXValueIndicator", "AXDescription": "Playhead",
                "AXValueDescription": "01:00:00:00" } ] } ] } ] } ] } ] })";

const std::vector<MixedRequest>& RequestMix() {
    static const std::vector<MixedRequest> requests = {
        {"JElV", {59, 0, 0, 0}, {1, 0, 0, 0}},
        {"JBtP", {58, 0, 0, 0}, {}},
        {"JESI", {60, 0, 0, 0}, {0xF9, 0xFF, 0xFF, 0xFF}},
        {"JSIS", {60, 0, 0, 0, 0xF9, 0xFF, 0xFF, 0xFF}, {}},
        {"JElP", {59, 0, 0, 0}, {57, 0, 0, 0, 67, 0, 0, 0}},
        {"JEPp", {59, 0, 0, 0}, {5, 0, 0, 0, 0xFA, 0xFF, 0xFF, 0xFF}},
        {"JGRV", {61, 0, 0, 0}, {1, 0, 0, 0}},
        {"JElV", {0x0F, 0x27, 0, 0}, {}},  // _NS:9999 is not there
        {"JCPK", {49, 0, 0, 0, 0, 9, 0, 0, 1, 0, 0, 0}, {}},
        {"JCPK", {49, 0, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0}, {}},
        {"JPMS", {100, 0, 0, 0, 200, 0, 0, 0, 0, 2, 0, 0, 1, 0, 0, 0}, {}},
        {"JPMC", {100, 0, 0, 0, 200, 0, 0, 0, 0, 2, 0, 0, 1, 0, 0, 0}, {}},
        {"JPME", {100, 0, 0, 0, 200, 0, 0, 0, 0, 2, 0, 0, 1, 0, 0, 0}, {}},
        {"JGlM", {}, {100, 0, 0, 0, 200, 0, 0, 0}},
        {"JStO", {}, {}},
        {"JObE", {}, {}},
        {"JObT", {}, {}},
        {"JAcF", {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}, {}},
        {"JXRs", {}, {}},
        {"JPth", {0}, {}},
        {"JWiP",
         {1, 0, 0, 0, 'F', 'i', 'n', 'a', 'l', 0},
         {0xFD, 0xFF, 0xFF, 0xFF, 22, 0, 0, 0, 0xA0, 5, 0, 0, 0x6E, 3, 0, 0}},
        {"JTWP",
         {1, 0, 0, 0, 'F', 'i', 'n', 'a', 'l', 0, 0, 0, 0, 0, 0, 0, 0,
          0, 0, 0, 0, 0,   0,   0,   0,   0,   0, 0, 0, 0, 0, 0, 0, 0},
         {0, 0, 0, 0, 0xFD, 0xFF, 0xFF, 0xFF, 22, 0, 0, 0, 0xA0, 5, 0, 0, 0x6E, 3, 0, 0}},
        {"JBtP", {58, 0, 0}, {}},  // cut short
        {"ABCD", {1, 2, 3}, {}},   // no request
    };
    return requests;
}

}  // namespace test_support
