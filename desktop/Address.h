// How scenes and scripts name one element of an application:
//   "_NS:159"                       the first element in pre-order with that AXIdentifier
//   "/"                             the application itself
//   "/0/3/1"                        child 1 of child 3 of window 0
//   "/AXWindow/AXSplitGroup[1]/0"   children by role: the first, or the one with that number
#pragma once

#include <string>
#include <string_view>

#include "desktop/Model.h"

namespace desktop {

// Throws SceneError naming `place` when there is no such element.
Element& ResolveAddress(Application& application, std::string_view address,
                        const std::string& place);

// The same by model and application key; an empty key is `byDefault`, if there is one.
Element& ResolveAddress(Model& model, const std::string& applicationKey, Application* byDefault,
                        std::string_view address, const std::string& place);

// The path of numbers, "/0/3/1".
std::string AddressOf(const Element& element);

// {"element": ADDRESS}, with "application" unless it is `home`; a destroyed element is null.
nlohmann::ordered_json DescribeElement(Model& model, const Application* home,
                                       const desktop_link::ElementReference& reference);

}  // namespace desktop
