// What a scene says that keeps a search from its application's elements.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>

#include "accessibility/calls/CallResult.h"

namespace krt9ctl {

struct SceneObstacles {
    // The list of windows cannot be read: no permission, a dead or hung application, or what stands
    // in the place of the list.
    std::optional<CallFailure> windowsFailure;
    std::size_t windows = 0;  // that are written in a list

    // The first of these whose children cannot be read.
    std::optional<std::size_t> unreadWindow;
    CallFailure windowFailure{};

    bool hasRules = false;  // of misbehaviour, which only an application that runs can follow
};

// Of the application with this index, which the scene has. Throws scene_notation::SceneError.
SceneObstacles ObstaclesIn(const nlohmann::json& scene, std::size_t application);

}  // namespace krt9ctl
