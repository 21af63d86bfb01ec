// Where a virtual operation stands in its class's table.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>

namespace test_support {

// Counted from 0, the two destructors included. Nothing where a member pointer does not tell it:
// this reads it as the C++ ABI that macOS and Linux share lays it out on x86-64.
template <class Operation>
std::optional<std::intptr_t> VirtualSlot(Operation operation) {
#if defined(__x86_64__)
    std::intptr_t offset = 0;
    std::memcpy(&offset, &operation, sizeof offset);
    return (offset - 1) / static_cast<std::intptr_t>(sizeof(void*));
#else
    return std::nullopt;
#endif
}

}  // namespace test_support
