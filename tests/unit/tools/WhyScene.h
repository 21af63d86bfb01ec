// A scene with an element for each place where the driver's search may end.
#pragma once

#include <string>

namespace krt9ctl {

inline std::string SceneWith(const std::string& windows) {
    return R"({"front": "com.apple.FinalCut", "applications": [
        {"bundleID": "com.apple.FinalCut", "pid": 501, "windows": )" +
           windows + "}]}";
}

inline constexpr char kWindows[] = R"([
    {"AXRole": "AXWindow", "AXIdentifier": "_NS:1", "AXChildren": [
      {"AXRole": "AXSlider", "AXIdentifier": "_NS:33"},
      {"AXRole": "AXTextField", "AXSubrole": "AXSearchField", "AXIdentifier": "_NS:8"},
      {"AXRole": "AXLayoutArea", "AXIdentifier": "_NS:393"},
      {"AXRole": "AXTable", "AXIdentifier": "_NS:139", "AXChildren": [
        {"AXRole": "AXRow", "AXChildren": [
          {"AXRole": "AXButton", "AXIdentifier": "_NS:171"}]}]}]},
    {"AXRole": "AXWindow", "AXChildren": [
      {"AXRole": "AXGroup", "AXChildren": [
        {"AXRole": "AXImage"}, {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:159"}]}]}])";

}  // namespace krt9ctl
