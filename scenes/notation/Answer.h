// What a scene says of an attribute: the value that reading it gives, or what it gives instead.
#pragma once

#include <cstdint>
#include <utility>

#include "platform/DesktopLink/Value.h"

namespace scene_notation {

using desktop_link::Value;

// The error of a reading that finds no value (as in AXError), which is written as null.
inline constexpr std::int32_t kNoValueError = -25212;

struct Answer {
    Value value;             // meaningless when there is an error or nothing
    std::int32_t error = 0;  // AXError; 0 is success
    bool nothing = false;    // success without a value, as some applications reply

    static Answer Of(Value value) { return {std::move(value)}; }
    static Answer Error(std::int32_t code) { return {{}, code}; }
    bool HasValue() const { return error == 0 && !nothing; }

    friend bool operator==(const Answer&, const Answer&) = default;
};

}  // namespace scene_notation
