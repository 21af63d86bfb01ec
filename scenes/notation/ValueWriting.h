// Attribute values as a scene writes them. An attribute's name decides which values need no tag.
#pragma once

#include <functional>
#include <string_view>

#include "scenes/notation/Answer.h"
#include "scenes/notation/Json.h"

namespace scene_notation {

// Writes an element: WriteElement or WriteNoElement (Addresses.h).
using ElementDescriber = std::function<Json(const desktop_link::ElementReference& reference)>;

Json WriteAnswer(const Answer& answer, std::string_view attribute,
                 const ElementDescriber& describe);

// A whole number stands without a fraction, so that coordinates read well.
Json WriteCoordinate(double number);

// [x, y], as a position is written in scenes, logs and replies.
Json WritePosition(const desktop_link::Point& point);

}  // namespace scene_notation
