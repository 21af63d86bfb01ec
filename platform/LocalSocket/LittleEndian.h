// Numbers of 32 bits as 4 bytes, the least significant one first: how lengths, identifiers and
// sequence numbers travel over the session's sockets.
#pragma once

#include <cstdint>

namespace local_socket {

inline void StoreLittleEndian(std::uint32_t number, std::uint8_t* bytes) {
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<std::uint8_t>(number >> (8 * i));
    }
}

inline std::uint32_t LoadLittleEndian(const std::uint8_t* bytes) {
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i) {
        number = number << 8 | bytes[i];
    }
    return number;
}

}  // namespace local_socket
