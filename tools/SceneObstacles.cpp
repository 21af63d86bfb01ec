#include "tools/SceneObstacles.h"

#include <vector>

#include "scenes/notation/Fields.h"
#include "scenes/notation/SceneError.h"
#include "scenes/notation/ValueReading.h"

namespace krt9ctl {

using scene_notation::Answer;
using scene_notation::Field;
using scene_notation::Place;
using SceneJson = nlohmann::json;

namespace {

bool IsTrue(const SceneJson& object, const char* key, bool otherwise) {
    const SceneJson* field = Field(object, key);
    return field != nullptr && field->is_boolean() ? field->get<bool>() : otherwise;
}

// Nothing for a list, and for what no scene can hold: the rest of the file may still be of use.
std::optional<CallFailure> FailureOfList(const SceneJson& list, const char* attribute,
                                         const std::string& place) {
    if (list.is_array()) {
        return std::nullopt;
    }
    const auto anyElement = [](const std::string&, const std::string&, const std::string&) {
        return desktop_link::ElementReference{};
    };
    Answer answer;
    try {
        answer = scene_notation::ReadAnswer(list, attribute, place, anyElement);
    } catch (const scene_notation::SceneError&) {
        return std::nullopt;
    }
    if (answer.error != kAXErrorSuccess) {
        return FailureOf(static_cast<AXError>(answer.error));
    }
    if (answer.nothing) {
        return FailureOf(kAXErrorFailure);
    }
    return std::holds_alternative<desktop_link::Array>(answer.value.content)
               ? std::nullopt
               : std::optional(CallFailure{CallFailureKind::wrongType});
}

std::optional<CallFailure> FailureOfApplication(const SceneJson& scene,
                                                const SceneJson& application) {
    if (!IsTrue(scene, "trusted", true)) {
        return FailureOf(kAXErrorAPIDisabled);
    }
    if (IsTrue(application, "dead", false)) {
        return FailureOf(kAXErrorInvalidUIElement);
    }
    if (IsTrue(application, "hung", false)) {
        return FailureOf(kAXErrorCannotComplete);
    }
    return std::nullopt;
}

void LookAtWindows(const SceneJson& windows, const std::string& place, SceneObstacles& obstacles) {
    obstacles.windowsFailure = FailureOfList(windows, "AXWindows", place);
    if (!windows.is_array()) {
        return;
    }
    obstacles.windows = windows.size();
    for (std::size_t i = 0; i < windows.size() && !obstacles.unreadWindow; ++i) {
        const std::string here = Place(place, i);
        const SceneJson* children =
            Field(scene_notation::ExpectObject(windows[i], here), "AXChildren");
        const auto failure =
            children == nullptr ? std::optional(FailureOf(kAXErrorAttributeUnsupported))
                                : FailureOfList(*children, "AXChildren", Place(here, "AXChildren"));
        if (failure) {
            obstacles.unreadWindow = i;
            obstacles.windowFailure = *failure;
        }
    }
}

bool HasRules(const SceneJson& application) {
    std::vector<const SceneJson*> pending = {&application};
    while (!pending.empty()) {
        const SceneJson& json = *pending.back();
        pending.pop_back();
        if (json.is_object() && json.contains("misbehaviour")) {
            return true;
        }
        if (json.is_structured()) {
            for (const SceneJson& each : json) {
                pending.push_back(&each);
            }
        }
    }
    return false;
}

}  // namespace

SceneObstacles ObstaclesIn(const SceneJson& scene, std::size_t application) {
    const std::string place = Place("applications", application);
    const SceneJson& json = scene.at("applications").at(application);
    SceneObstacles obstacles;
    obstacles.hasRules = HasRules(json);
    if (const SceneJson* windows = Field(json, "windows")) {
        LookAtWindows(*windows, Place(place, "windows"), obstacles);
    }
    if (const auto failure = FailureOfApplication(scene, json)) {
        obstacles.windowsFailure = failure;
    }
    return obstacles;
}

}  // namespace krt9ctl
