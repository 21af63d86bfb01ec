// What reading a well-behaved element returns: stored attributes first, then those that come from
// the tree.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "desktop/Model.h"

namespace desktop {

Answer ReadAttribute(const Model& model, const Application& application, const Element& element,
                     std::string_view name);

// In the order in which dumps write them.
std::vector<std::string> AttributeNames(const Model& model, const Application& application,
                                        const Element& element);

}  // namespace desktop
