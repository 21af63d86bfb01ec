// From what a scene writes for an attribute to its value. All functions throw SceneError.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "scenes/notation/Answer.h"

namespace scene_notation {

// Finds the element that {"element": ADDRESS, "application": NAME} names. The name is empty when it
// is not given, and the address when an element that was destroyed is meant. Throws SceneError.
using ElementResolver = std::function<desktop_link::ElementReference(
    const std::string& address, const std::string& application, const std::string& place)>;

// The attribute's name decides what a plain array means.
Answer ReadAnswer(const nlohmann::json& json, std::string_view attribute, const std::string& place,
                  const ElementResolver& resolve);

// True when reading needs the resolver.
bool MentionsElement(const nlohmann::json& json);

}  // namespace scene_notation
