// Everything that a scene describes: what surrounds a process in a log-in session.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/Element.h"
#include "desktop/MidiBus.h"
#include "platform/DesktopLink/Messages.h"

namespace desktop {

// Where an editing application shows its state, so that a script can speak of clips and timecodes.
// Addresses as in Address.h.
struct EditorPlaces {
    std::string clipTable;               // a table with one row for each clip
    std::vector<std::string> clipNames;  // texts that show the selected clip's name
    std::string playhead;                // an element whose AXValueDescription is the timecode
    std::int64_t framesPerSecond = 25;
    friend bool operator==(const EditorPlaces&, const EditorPlaces&) = default;
};

struct Application {
    std::int32_t pid = 0;
    std::optional<std::string> bundleIdentifier;
    std::string name;
    std::optional<nlohmann::json> info;  // keys of Info.plist; none: no bundle on disk
    std::map<std::string, nlohmann::json> localizations;  // language -> key -> text
    std::optional<std::string> bundlePath;                // set once the bundle was written
    bool hung = false;
    bool dead = false;
    Element root;  // AXApplication; its children are the windows
    Element* mainWindow = nullptr;
    std::optional<EditorPlaces> editor;

    // "com.example.editor", or "pid:501" for one without bundle identifier.
    std::string Key() const;
    desktop_link::Application Description() const;
};

struct Model {
    bool trusted = true;
    double messagingTimeout = 6.0;  // seconds
    double activationGap = 0;       // seconds with nothing in front between two applications
    std::vector<desktop_link::Rect> screens;
    desktop_link::Point pointer;
    ElementArena arena;
    std::vector<std::unique_ptr<Application>> applications;
    Application* front = nullptr;
    MidiBus midi;
    std::vector<nlohmann::json> script;  // timed or stepped commands, see Script.h

    Application* ApplicationWithPid(std::int32_t pid);
    // By Key(), or by "pid:501"; the first one when several have that name.
    Application* ApplicationNamed(std::string_view key);
    // The name by which ApplicationNamed returns this application.
    std::string NameOf(const Application& application);
    // Null when it was destroyed, or its application died.
    Element* Find(const desktop_link::ElementReference& reference);
    // Index of the screen that holds the middle of the main window in front; 0 without one.
    std::size_t KeyScreen() const;
};

}  // namespace desktop
