// Bodies of requests as the companion's library writes them.
#pragma once

#include <cstdint>
#include <utility>

#include "companion/KRT9Companion.h"
#include "tools/Bytes.h"

namespace krt9ctl {

// The 32-bit pattern of a number from -2147483648 to 4294967295: two's complement when negative.
inline std::uint32_t Pattern(std::int64_t value) {
    return static_cast<std::uint32_t>(value);
}

inline Bytes OneNumberBody(std::int64_t value) {
    return krt9::IntegersBody({Pattern(value)});
}

inline Bytes TwoNumbersBody(std::int64_t identifier, std::int64_t value) {
    return krt9::IntegersBody({Pattern(identifier), Pattern(value)});
}

// The body of a step of a gesture, moved to another point. Its numbers are unsigned, so a negative
// coordinate becomes 0.
Bytes MovedMouseBody(const Bytes& body, std::int64_t x, std::int64_t y);
// The point of such a body.
std::pair<std::int64_t, std::int64_t> PointOfMouseBody(const Bytes& body);

}  // namespace krt9ctl
