// The position of a virtual operation in its class's table.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>

namespace test_support {

// Counted from 0, the two destructors included. macOS and Linux share the C++ ABI: a pointer to a
// virtual member holds the offset in the table, plus 1 on x86-64. Nothing on other processors.
template <class Operation>
std::optional<std::intptr_t> VirtualSlot([[maybe_unused]] Operation operation) {
#if defined(__x86_64__) || defined(__aarch64__)
    std::intptr_t offset = 0;
    std::memcpy(&offset, &operation, sizeof offset);
#if defined(__x86_64__)
    --offset;
#endif
    return offset / static_cast<std::intptr_t>(sizeof(void*));
#else
    return std::nullopt;
#endif
}

}  // namespace test_support
