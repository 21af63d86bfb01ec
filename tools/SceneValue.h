// Attribute values as a scene writes them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>
#include <optional>
#include <string_view>

#include "tools/Output.h"

namespace krt9ctl {

// {"element": ADDRESS}; null for an element that is not in the scene.
using DescribeElement = std::function<Json(CFTypeRef element)>;

// The attribute's name decides which values need no tag. Nothing for a value that a scene cannot
// hold: an object of another type, text with unpaired surrogates, nesting beyond the scene's limit.
std::optional<Json> SceneValueOf(CFTypeRef value, std::string_view attribute,
                                 const DescribeElement& describe);

}  // namespace krt9ctl
