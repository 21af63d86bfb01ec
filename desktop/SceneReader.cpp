#include "desktop/SceneReader.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "desktop/Address.h"
#include "desktop/ApplicationReader.h"
#include "desktop/MisbehaviourNotation.h"
#include "desktop/Selection.h"
#include "scenes/notation/Fields.h"
#include "scenes/notation/Json.h"
#include "scenes/notation/Names.h"
#include "scenes/notation/ValueReading.h"

namespace desktop {

using namespace scene_notation;
using nlohmann::json;

namespace {

// Read before the attributes that need the whole tree; the order has no other effect.
bool NeedsWholeTree(const std::string& key, const json& source) {
    return key == "AXSelectedRows" || key == "misbehaviour" || MentionsElement(source);
}

std::vector<std::string> ReadNames(const json& source, const std::string& place) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < ExpectArray(source, place).size(); ++i) {
        names.push_back(ExpectText(source[i], Place(place, i)));
    }
    return names;
}

desktop_link::Rect ReadScreen(const json& source, const std::string& place) {
    ExpectOnly(source, place, {"frame"});
    const json& frame = Required(source, "frame", place);
    const Answer answer = ReadAnswer(frame, "AXFrame", Place(place, "frame"), {});
    const auto* rect = std::get_if<desktop_link::Rect>(&answer.value.content);
    if (rect == nullptr) {
        throw SceneError(Place(place, "frame"), "expected an array of 4 numbers");
    }
    return *rect;
}

desktop_link::Point ReadPointer(const json& source, const std::string& place) {
    const Answer answer = ReadAnswer(source, "AXPosition", place, {});
    const auto* point = std::get_if<desktop_link::Point>(&answer.value.content);
    if (point == nullptr) {
        throw SceneError(place, "expected an array of 2 numbers");
    }
    return *point;
}

void ReadSession(Model& model, const json& scene) {
    if (const json* trusted = Field(scene, "trusted")) {
        model.trusted = ExpectBoolean(*trusted, "trusted");
    }
    if (const json* timeout = Field(scene, "messagingTimeout")) {
        model.messagingTimeout = ExpectDuration(*timeout, "messagingTimeout");
    }
    if (const json* gap = Field(scene, "activationGap")) {
        model.activationGap = ExpectDuration(*gap, "activationGap");
    }
    if (const json* pointer = Field(scene, "pointer")) {
        model.pointer = ReadPointer(*pointer, "pointer");
    }
    model.screens = {{{0, 0}, {1440, 900}}};
    if (const json* screens = Field(scene, "screens")) {
        model.screens.clear();
        for (std::size_t i = 0; i < ExpectArray(*screens, "screens").size(); ++i) {
            model.screens.push_back(ReadScreen((*screens)[i], Place("screens", i)));
        }
    }
}

void ReadMidi(Model& model, const json& source) {
    ExpectShallow(source, "midi");
    ExpectOnly(source, "midi", {"devices"});
    const json* devices = Field(source, "devices");
    for (std::size_t i = 0; devices && i < ExpectArray(*devices, "midi.devices").size(); ++i) {
        model.midi.Plug((*devices)[i], Place("midi.devices", i));
    }
}

void ReadScript(Model& model, const json& source) {
    ExpectShallow(source, "script");
    for (std::size_t i = 0; i < ExpectArray(source, "script").size(); ++i) {
        model.script.push_back(ExpectObject(source[i], Place("script", i)));
    }
}

void ReadFront(Model& model, const json& source) {
    if (source.is_null()) {
        return;
    }
    model.front = model.ApplicationNamed(ExpectText(source, "front"));
    if (model.front == nullptr) {
        throw SceneError("front", "no application " + OneLine(source));
    }
}

}  // namespace

void SceneReader::ReadScene(json scene) {
    ExpectOnly(scene, "",
               {"trusted", "screens", "pointer", "front", "applications", "midi",
                "messagingTimeout", "activationGap", "script"});
    ReadSession(model_, scene);
    if (const json* midi = Field(scene, "midi")) {
        ReadMidi(model_, *midi);
    }
    if (const json* script = Field(scene, "script")) {
        ReadScript(model_, *script);
    }
    if (scene.contains("applications")) {
        json& applications = scene["applications"];
        ExpectArray(applications, "applications");
        for (std::size_t i = 0; i < applications.size(); ++i) {
            json application = std::move(applications[i]);
            ReadApplication(application, Place("applications", i));
        }
    }
    if (const json* front = Field(scene, "front")) {
        ReadFront(model_, *front);
    }
    ResolveDeferred();
}

Application& SceneReader::AddApplication(json application, const std::string& place) {
    const std::size_t before = model_.applications.size();
    try {
        Application& added = ReadApplication(application, place);
        ResolveDeferred();
        return added;
    } catch (const SceneError&) {
        deferred_.clear();
        if (model_.applications.size() > before) {
            model_.arena.DestroyChildren(model_.applications.back()->root);
            model_.applications.pop_back();
        }
        throw;
    }
}

Element& SceneReader::AddElement(Element& parent, std::size_t position, json element,
                                 const std::string& place) {
    const bool hadChildren = parent.hasChildren;
    Element holder;
    holder.pid = parent.pid;
    Element* added = nullptr;
    try {
        json::array_t sources;
        sources.push_back(std::move(element));
        ReadChildren(holder, std::move(sources), place);
        added = holder.children.front();
        Detach(*added);
        ElementArena::Insert(parent, position, *added);
        ResolveDeferred();
    } catch (const SceneError&) {
        deferred_.clear();
        model_.arena.DestroyChildren(holder);
        if (added != nullptr) {
            model_.arena.Destroy(*added);
        }
        parent.hasChildren = hadChildren;
        throw;
    }
    if (parent.id == 0) {
        TakeMainWindow(*model_.ApplicationWithPid(parent.pid), *added);
    }
    return *added;
}

Application& SceneReader::ReadApplication(json& source, const std::string& place) {
    auto made = ReadApplicationFacts(model_, source, place);
    Application& application = *made;
    model_.applications.push_back(std::move(made));
    if (json* misbehaviour = const_cast<json*>(Field(source, "misbehaviour"))) {
        deferred_.push_back({&application.root, "misbehaviour", std::move(*misbehaviour),
                             Place(place, "misbehaviour")});
    }
    if (!source.contains("windows") || application.dead) {
        return application;
    }
    json& windows = source["windows"];
    const std::string inside = Place(place, "windows");
    if (!windows.is_array()) {
        ReadAttribute(application.root, "AXWindows", windows, inside);
        return application;
    }
    const bool mainGiven = std::any_of(windows.begin(), windows.end(), [](const json& window) {
        return window.is_object() && window.contains("AXMain");
    });
    ReadChildren(application.root, std::move(windows.get_ref<json::array_t&>()), inside);
    for (Element* window : application.root.children) {
        TakeMainWindow(application, *window);
    }
    if (!mainGiven && !application.root.children.empty()) {
        application.mainWindow = application.root.children.front();
    }
    return application;
}

// Walks the JSON tree with an explicit stack. Sources are consumed as they are read.
void SceneReader::ReadChildren(Element& parent, json::array_t sources, const std::string& place) {
    struct Level {
        Element* parent;
        json::array_t sources;
        std::size_t next;
        std::string place;
    };
    std::vector<Level> levels;
    levels.push_back({&parent, std::move(sources), 0, place});
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.sources.size()) {
            levels.pop_back();
            continue;
        }
        const std::string here = Place(level.place, level.next);
        json source = std::move(level.sources[level.next++]);
        json::array_t children;
        Element& element = ReadElement(parent.pid, std::move(source), here, &children);
        ElementArena::Insert(*level.parent, level.parent->children.size(), element);
        if (!children.empty()) {
            levels.push_back({&element, std::move(children), 0, Place(here, "AXChildren")});
        }
    }
}

Element& SceneReader::ReadElement(std::int32_t pid, json source, const std::string& place,
                                  json::array_t* children) {
    ExpectObject(source, place);
    Element& element = model_.arena.Create(pid);
    try {
        for (auto& [key, value] : source.items()) {
            if (key == "AXChildren" && value.is_array()) {
                element.hasChildren = true;
                *children = std::move(value.get_ref<json::array_t&>());
            } else if (key == "actions") {
                element.Details().actions = ReadNames(value, Place(place, key));
            } else if (key == "settable") {
                element.Details().settable = ReadNames(value, Place(place, key));
            } else if (key != "comment") {
                ReadAttribute(element, key, value, Place(place, key));
            }
        }
    } catch (const SceneError&) {
        model_.arena.Destroy(element);
        throw;
    }
    return element;
}

// AXMain is not stored in each window: one window of an application has it.
void SceneReader::TakeMainWindow(Application& application, Element& window) {
    const Answer* main = window.Stored("AXMain");
    const auto* flag = main == nullptr ? nullptr : std::get_if<bool>(&main->value.content);
    if (flag == nullptr || !main->HasValue()) {
        return;
    }
    if (*flag) {
        application.mainWindow = &window;
    }
    model_.arena.Remove(window, "AXMain");
}

void SceneReader::ReadAttribute(Element& element, const std::string& key, json& source,
                                const std::string& place) {
    if (key != "misbehaviour") {
        ExpectAttributeName(key, place);
    }
    if (NeedsWholeTree(key, source)) {
        ExpectShallow(source, place);
        deferred_.push_back({&element, key, std::move(source), place});
    } else {
        model_.arena.Set(element, key, ReadAnswer(source, key, place, {}));
    }
}

void SceneReader::ResolveDeferred() {
    for (Deferred& deferred : std::exchange(deferred_, {})) {
        Resolve(deferred);
    }
}

void SceneReader::Resolve(Deferred& deferred) {
    Element& element = *deferred.element;
    if (deferred.key == "misbehaviour") {
        Application* home = model_.ApplicationWithPid(element.pid);
        element.Details().misbehaviour =
            ReadMisbehaviour(deferred.source, deferred.place, ResolverFor(model_, home));
        return;
    }
    SetFromScene(model_, element, deferred.key, deferred.source, deferred.place);
}

void ExpectAttributeName(const std::string& name, const std::string& place) {
    if (!IsAttributeName(name)) {
        throw SceneError(place, "no attribute; their names begin with a capital letter");
    }
}

void SetFromScene(Model& model, Element& element, const std::string& attribute, const json& source,
                  const std::string& place) {
    if (attribute == "AXSelectedRows" && source.is_array()) {
        SelectRows(element, source, place);
        model.arena.Remove(element, attribute);
        return;
    }
    Application* home = model.ApplicationWithPid(element.pid);
    model.arena.Set(element, attribute,
                    ReadAnswer(source, attribute, place, ResolverFor(model, home)));
}

ElementResolver ResolverFor(Model& model, Application* home) {
    return [&model, home](const std::string& address, const std::string& application,
                          const std::string& place) -> desktop_link::ElementReference {
        if (address.empty()) {
            return {home == nullptr ? 0 : home->pid, model.arena.UnusedId()};
        }
        return ResolveAddress(model, application, home, address, place).Reference();
    };
}

}  // namespace desktop
