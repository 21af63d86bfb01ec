#include "tools/SceneFile.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "scenes/notation/Fields.h"
#include "scenes/notation/SceneError.h"
#include "scenes/notation/ValueReading.h"
#include "tools/Text.h"

namespace krt9ctl {

using scene_notation::ExpectArray;
using scene_notation::ExpectObject;
using scene_notation::Field;
using scene_notation::Place;

namespace {

using SceneJson = nlohmann::json;

std::string ContentOf(const std::string& path) {
    const std::ifstream file(path);
    if (!file) {
        throw std::runtime_error(
            fmt::format("'{}' cannot be read: {}", Printable(path), std::strerror(errno)));
    }
    std::ostringstream text;
    text << file.rdbuf();  // of a folder: nothing
    return text.str();
}

// Attributes may have values of any type; only texts count here.
std::optional<std::string> TextIn(const SceneJson& object, const char* key) {
    const SceneJson* field = Field(object, key);
    return field != nullptr && field->is_string() ? std::optional(field->get<std::string>())
                                                  : std::nullopt;
}

std::optional<Json> ValueIn(const SceneJson& element, const std::string& place) {
    const SceneJson* field = Field(element, "AXValue");
    if (field == nullptr) {
        return std::nullopt;
    }
    const auto anyElement = [](const std::string&, const std::string&, const std::string&) {
        return desktop_link::ElementReference{};
    };
    return ListedValue(
        scene_notation::ReadAnswer(*field, "AXValue", Place(place, "AXValue"), anyElement));
}

ListedElement Listed(const SceneJson& element, const std::string& place) {
    ListedElement listed;
    listed.role = TextIn(element, "AXRole").value_or("");
    listed.subrole = TextIn(element, "AXSubrole").value_or("");
    listed.identifier = TextIn(element, "AXIdentifier");
    listed.title = TextIn(element, "AXTitle");
    listed.description = TextIn(element, "AXDescription");
    listed.value = ValueIn(element, place);
    return listed;
}

bool HasPid(const SceneJson& application, std::int64_t pid) {
    const SceneJson* given = Field(application, "pid");
    return given != nullptr && given->is_number_integer() && *given == pid;
}

bool IsNamed(const SceneJson& application, const std::string& name) {
    const SceneJson* pid = Field(application, "pid");
    return TextIn(application, "bundleID") == name ||
           (pid != nullptr && pid->is_number_integer() && name == "pid:" + pid->dump());
}

bool IsChosen(const SceneJson& application, const SceneJson& scene, const Arguments& arguments) {
    if (arguments.Has("--pid")) {
        return HasPid(application, arguments.Number("--pid"));
    }
    if (arguments.Has("--application")) {
        return TextIn(application, "bundleID") == arguments.Text("--application");
    }
    const auto front = TextIn(scene, "front");
    return front && IsNamed(application, *front);
}

// The application's index.
std::size_t Choose(const SceneJson& scene, const Arguments& arguments) {
    const SceneJson& applications =
        ExpectArray(scene_notation::Required(scene, "applications", ""), "applications");
    for (std::size_t i = 0; i < applications.size(); ++i) {
        if (IsChosen(ExpectObject(applications[i], Place("applications", i)), scene, arguments)) {
            return i;
        }
    }
    if (arguments.Has("--pid") || arguments.Has("--application")) {
        throw std::runtime_error("it has no such application");
    }
    if (applications.size() != 1) {
        throw std::runtime_error(
            "none of its applications is in front: choose one with --application or --pid");
    }
    return 0;
}

// An array of children that are being listed.
struct Level {
    const SceneJson* children;
    std::size_t next, parent;
    std::string place;
};

ElementList ElementsOf(const SceneJson& application, const std::string& applicationPlace) {
    ElementList list(1);
    list.front().role = "AXApplication";
    list.front().title = TextIn(application, "name");
    std::vector<Level> open;
    const auto openAll = [&open](const SceneJson* children, std::size_t parent,
                                 const std::string& place) {
        if (children != nullptr && children->is_array()) {
            open.push_back({children, 0, parent, place});
        }
    };
    openAll(Field(application, "windows"), 0, Place(applicationPlace, "windows"));
    while (!open.empty()) {
        Level& level = open.back();
        if (level.next == level.children->size()) {
            open.pop_back();
            continue;
        }
        const std::size_t position = level.next++;
        const std::string place = Place(level.place, position);
        const SceneJson& element = ExpectObject((*level.children)[position], place);
        ListedElement listed = Listed(element, place);
        listed.parent = level.parent;
        listed.position = position;
        AddElement(list, std::move(listed));
        openAll(Field(element, "AXChildren"), list.size() - 1, Place(place, "AXChildren"));
    }
    return list;
}

ElementList ElementsIn(const std::string& text, const Arguments& arguments) {
    const SceneJson scene = scene_notation::ParseJson(text, "");
    ExpectObject(scene, "");
    const std::size_t chosen = Choose(scene, arguments);
    return ElementsOf(scene["applications"][chosen], Place("applications", chosen));
}

}  // namespace

ElementList ReadSceneFile(const std::string& path, const Arguments& arguments) {
    const std::string text = ContentOf(path);
    try {
        return ElementsIn(text, arguments);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(fmt::format("'{}': {}", Printable(path), Printable(error.what())));
    }
}

}  // namespace krt9ctl
