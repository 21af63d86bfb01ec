// For conditions that no descriptor announces: polls for at most ten seconds.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace test_support {

inline bool WaitUntil(const std::function<bool()>& condition) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (Clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

}  // namespace test_support
