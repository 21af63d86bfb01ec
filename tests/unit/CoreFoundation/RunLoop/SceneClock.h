// The clock of the scenes: the test clock on Linux, the real one on macOS.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>

namespace run_loop_test {

class SceneClock {
  public:
    SceneClock();
    SceneClock(const SceneClock&) = delete;
    SceneClock& operator=(const SceneClock&) = delete;
    ~SceneClock();

    // Lets that time pass without calling anything.
    void Advance(CFTimeInterval seconds);

  private:
    struct State;
    const std::unique_ptr<State> state_;
};

}  // namespace run_loop_test
