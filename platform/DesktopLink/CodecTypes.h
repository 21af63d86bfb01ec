// The MessagePack extension types of values that MessagePack does not have. Numbers inside are
// least significant byte first.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace desktop_link {

static_assert(std::endian::native == std::endian::little,
              "values are copied as they lie in memory");

enum class Extension : std::int8_t {
    point = 1,    // x, y: 64-bit floats
    size = 2,     // width, height: 64-bit floats
    rect = 3,     // origin, then size
    range = 4,    // location, length: 64-bit integers
    error = 5,    // 32-bit integer
    element = 6,  // process id: 32-bit integer; id: 64-bit integer
};

// The envelope of a message: arrays around its values.
constexpr std::size_t kEnvelopeDepth = 4;

}  // namespace desktop_link
