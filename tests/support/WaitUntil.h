// Waits for what other threads and processes do, where no descriptor announces it.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

#include "tests/support/Patience.h"

namespace test_support {

// Looks again and again until the condition holds; false when it does not within `seconds`.
inline bool WaitUntil(const std::function<bool()>& condition, double seconds = kPatience) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (Clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    return true;
}

}  // namespace test_support
