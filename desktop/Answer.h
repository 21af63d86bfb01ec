// The result of reading an attribute.
#pragma once

#include <cstdint>

#include "scenes/notation/Answer.h"

namespace desktop {

using desktop_link::Value;
using scene_notation::Answer;

// Numbers as in AXError.
enum AccessibilityError : std::int32_t {
    kSuccess = 0,
    kFailure = -25200,
    kIllegalArgument = -25201,
    kInvalidElement = -25202,
    kCannotComplete = -25204,
    kAttributeUnsupported = -25205,
    kActionUnsupported = -25206,
    kAPIDisabled = -25211,
    kNoValue = scene_notation::kNoValueError,
};

}  // namespace desktop
