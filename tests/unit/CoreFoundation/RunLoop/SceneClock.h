// The clock that the scenes play by: one that tests move on Linux, the real one on macOS.
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

    // Lets time go by without calling anything.
    void Advance(CFTimeInterval seconds);

  private:
    struct State;
    const std::unique_ptr<State> state_;
};

}  // namespace run_loop_test
