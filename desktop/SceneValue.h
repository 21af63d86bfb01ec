// Attribute values as a scene writes them. See docs/scenes.md for the notation.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "desktop/Answer.h"
#include "desktop/Misbehaviour.h"

namespace desktop {

// Finds the element that {"element": ADDRESS, "application": KEY} names; the key is empty when it
// is not given. Throws SceneError.
using ElementResolver = std::function<desktop_link::ElementReference(
    const std::string& address, const std::string& application, const std::string& place)>;

// The opposite: the whole tagged form.
using ElementDescriber =
    std::function<nlohmann::ordered_json(const desktop_link::ElementReference& reference)>;

// Reads the value of an attribute; the attribute's name decides what a plain array means. Throws
// SceneError.
Answer ReadAnswer(const nlohmann::json& json, std::string_view attribute, const std::string& place,
                  const ElementResolver& resolve);

// True when reading needs the resolver.
bool MentionsElement(const nlohmann::json& json);

Misbehaviour ReadMisbehaviour(const nlohmann::json& json, const std::string& place,
                              const ElementResolver& resolve);

nlohmann::ordered_json WriteAnswer(const Answer& answer, std::string_view attribute,
                                   const ElementDescriber& describe);

nlohmann::ordered_json WriteMisbehaviour(const Misbehaviour& misbehaviour,
                                         const ElementDescriber& describe);

// [x, y], as a position is written in scenes, logs and replies.
nlohmann::ordered_json WritePosition(const desktop_link::Point& point);

}  // namespace desktop
