// The result of reading an attribute.
#pragma once

#include <cstdint>

#include "platform/DesktopLink/Value.h"

namespace desktop {

using desktop_link::Value;

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
    kNoValue = -25212,
};

struct Answer {
    Value value;             // meaningless when there is an error or nothing
    std::int32_t error = 0;  // AXError; 0 is success
    bool nothing = false;    // success without a value, as some applications reply

    static Answer Of(Value value) { return {std::move(value)}; }
    static Answer Error(std::int32_t code) { return {{}, code}; }
    bool HasValue() const { return error == 0 && !nothing; }

    friend bool operator==(const Answer&, const Answer&) = default;
};

}  // namespace desktop
