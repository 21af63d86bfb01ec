#include "platform/Testing/TestClock.h"
#include "tests/unit/CoreFoundation/RunLoop/SceneClock.h"

namespace run_loop_test {

struct SceneClock::State {
    platform_testing::TestClock clock;
};

SceneClock::SceneClock() : state_(std::make_unique<State>()) {}

SceneClock::~SceneClock() = default;

void SceneClock::Advance(CFTimeInterval seconds) {
    state_->clock.Advance(seconds);
}

}  // namespace run_loop_test
