// How a scene names an element: by the path of its positions, "/0/3/1" for child 1 of child 3 of
// window 0 and "/" for the application.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "scenes/notation/Json.h"

namespace scene_notation {

// `upwards` has the position of the element among its parent's children, that of its parent, and so
// on up to the position of the window; nothing for the application.
std::string PathAddress(std::span<const std::size_t> upwards);

// One step of a path: "3" is child number 3, "AXGroup[2]" number 2 of those with that role, and
// "AXGroup" the first of them.
struct AddressStep {
    std::optional<std::string_view> role;
    std::size_t number = 0;
};

// The steps of an address that is a path, from the window down; none for "/". They point into the
// address. Nothing for an address of another form.
std::optional<std::vector<AddressStep>> ParsePath(std::string_view address);

// {"element": ADDRESS}, with the application's name unless that is empty.
Json WriteElement(const std::string& address, const std::string& application = {});

// An element that is not in the scene.
Json WriteNoElement();

}  // namespace scene_notation
