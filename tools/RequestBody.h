// Bodies of requests as the protocol's records write them.
#pragma once

#include <cstdint>
#include <utility>

#include "protocol/MessageSpec.h"
#include "tools/Bytes.h"

namespace krt9ctl {

inline Bytes BodyOf(SMessageSpec&& record) {
    const unsigned char* bytes = record.Serialize();
    return {bytes, bytes + record.SerialBufferSize()};
}

// The 32-bit pattern of a number from -2147483648 to 4294967295: two's complement when negative.
inline unsigned int Pattern(std::int64_t value) {
    return static_cast<unsigned int>(value);
}

Bytes OneNumberBody(std::int64_t value);
Bytes TwoNumbersBody(std::int64_t identifier, std::int64_t value);
Bytes ThreeFlagsBody(bool a, bool b, bool c);

// The body of a step of a gesture, moved to another point. The record's numbers are unsigned, so a
// negative coordinate becomes 0.
Bytes MovedMouseBody(const Bytes& body, std::int64_t x, std::int64_t y);
// The point of such a body.
std::pair<std::int64_t, std::int64_t> PointOfMouseBody(const Bytes& body);

}  // namespace krt9ctl
