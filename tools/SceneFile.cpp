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
#include "tools/SceneElements.h"
#include "tools/Text.h"

namespace krt9ctl {

using scene_notation::ExpectArray;
using scene_notation::ExpectObject;
using scene_notation::Field;
using scene_notation::Place;

namespace {

std::string ContentOf(const std::string& path) {
    std::ifstream file(path);
    if (file) {
        file.peek();  // a folder can be opened, but not read
    }
    if (!file && !file.eof()) {
        throw std::runtime_error(
            fmt::format("'{}' cannot be read: {}", Printable(path), std::strerror(errno)));
    }
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

bool HasPid(const SceneJson& application, std::int64_t pid) {
    const SceneJson* given = Field(application, "pid");
    return given != nullptr && given->is_number_integer() && *given == pid;
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

ApplicationFacts FactsOf(const SceneJson& application) {
    ApplicationFacts facts;
    if (const SceneJson* pid = Field(application, "pid");
        pid != nullptr && pid->is_number_integer()) {
        facts.pid = pid->get<pid_t>();
    }
    facts.bundleIdentifier = TextIn(application, "bundleID");
    const SceneJson* info = Field(application, "info");
    if (info != nullptr && info->is_object()) {
        facts.shortVersion = TextIn(*info, "CFBundleShortVersionString");
        facts.signature = TextIn(*info, "CFBundleSignature");
    }
    return facts;
}

Listing ListingIn(const std::string& text, const Arguments& arguments) {
    const SceneJson scene = scene_notation::ParseJson(text, "");
    ExpectObject(scene, "");
    const std::size_t chosen = Choose(scene, arguments);
    return {FactsOf(scene["applications"][chosen]), ListSceneElements(scene, chosen),
            ObstaclesIn(scene, chosen)};
}

}  // namespace

Listing ReadSceneFile(const std::string& path, const Arguments& arguments) {
    const std::string text = ContentOf(path);
    try {
        return ListingIn(text, arguments);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(fmt::format("'{}': {}", Printable(path), Printable(error.what())));
    }
}

}  // namespace krt9ctl
