#include <chrono>
#include <thread>

#include "tests/unit/CoreFoundation/RunLoop/SceneClock.h"

namespace run_loop_test {

struct SceneClock::State {};

SceneClock::SceneClock() = default;

SceneClock::~SceneClock() = default;

void SceneClock::Advance(CFTimeInterval seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

}  // namespace run_loop_test
