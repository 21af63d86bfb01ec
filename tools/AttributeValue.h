// Attribute values of the Accessibility interface, as a scene holds them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <functional>
#include <optional>

#include "scenes/notation/Answer.h"

namespace krt9ctl {

// The id by which the scene's values refer to an element.
using IdOfElement = std::function<std::uint64_t(CFTypeRef element)>;

// An error in place of the value is the answer's error. Nothing for a value that a scene cannot
// hold: an object of another type, text with unpaired surrogates, nesting beyond the scene's limit.
std::optional<scene_notation::Answer> AnswerOf(CFTypeRef value, const IdOfElement& idOf);

}  // namespace krt9ctl
