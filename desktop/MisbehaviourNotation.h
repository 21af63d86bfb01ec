// Misbehaviour as a scene writes it. See docs/scenes.md.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "desktop/Misbehaviour.h"
#include "scenes/notation/ValueReading.h"
#include "scenes/notation/ValueWriting.h"

namespace desktop {

// Throws SceneError.
Misbehaviour ReadMisbehaviour(const nlohmann::json& json, const std::string& place,
                              const scene_notation::ElementResolver& resolve);

nlohmann::ordered_json WriteMisbehaviour(const Misbehaviour& misbehaviour,
                                         const scene_notation::ElementDescriber& describe);

}  // namespace desktop
