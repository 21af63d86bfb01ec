// The elements of an application as a scene writes them.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "tools/ElementList.h"

namespace krt9ctl {

using SceneJson = nlohmann::json;

// The member when it is a text: attributes may have values of any type.
std::optional<std::string> TextIn(const SceneJson& object, const char* key);

// Whether the scene means this application by the name: its bundle identifier, or "pid:" and its
// process id.
bool IsNamed(const SceneJson& application, const std::string& name);

// The scene must have an array "applications" with objects, of which `application` is the index.
// The list is that of ListElements for the scene's application when it runs, except for what rules
// of misbehaviour would give. Throws scene_notation::SceneError.
ElementList ListSceneElements(const SceneJson& scene, std::size_t application);

}  // namespace krt9ctl
