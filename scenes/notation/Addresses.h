// How a scene names an element: by the path of its positions, "/0/3/1" for child 1 of child 3 of
// window 0 and "/" for the application.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "scenes/notation/Json.h"

namespace scene_notation {

// `upwards` has the position of the element among its parent's children, that of its parent, and so
// on up to the position of the window; nothing for the application.
std::string PathAddress(std::span<const std::size_t> upwards);

// {"element": ADDRESS}, with the application's name unless that is empty.
Json WriteElement(const std::string& address, const std::string& application = {});

// An element that is not in the scene.
Json WriteNoElement();

}  // namespace scene_notation
