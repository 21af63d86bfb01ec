#include <algorithm>

#include "tests/unit/CoreFoundation/RunLoop/Scenarios.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

// Counts how deep a callback is inside itself.
class Depth {
  public:
    void Enter() { deepest_ = std::max(deepest_, ++depth_); }
    void Leave() { --depth_; }
    bool Inside() const { return depth_ > 0; }
    int Deepest() const { return deepest_; }

  private:
    int depth_ = 0;
    int deepest_ = 0;
};

Result SameTimer(double otherAfter, double outerSeconds) {
    Scene scene;
    Depth depth;
    int fires = 0;
    int otherInNested = 0;
    std::string nested;
    scene.AddTimer(0.1, 0.1, [&] {
        depth.Enter();
        if (++fires == 1) {
            nested = NameOf(scene.Run(0.35));
        }
        depth.Leave();
    });
    if (otherAfter > 0) {
        scene.AddTimer(otherAfter, 0.1, [&] { otherInNested += depth.Inside() ? 1 : 0; });
    }
    scene.Run(outerSeconds);
    return {{"same_timer_fires_in_nested_run", depth.Deepest() > 1},
            {"max_depth", depth.Deepest()},
            {"nested_return", nested},
            {"other_timer_fired_in_nested_run", otherInNested > 0},
            {"fires_total", fires}};
}

Result SameSource(bool signalsItself) {
    Scene scene;
    Depth depth;
    int performs = 0;
    std::string nested;
    CFRunLoopSourceRef source = nullptr;
    source = scene.AddSource([&] {
        depth.Enter();
        if (++performs == 1) {
            if (signalsItself) {
                CFRunLoopSourceSignal(source);
            }
            nested = NameOf(scene.Run(0.1, true));
        }
        depth.Leave();
    });
    CFRunLoopSourceSignal(source);
    const auto outer = scene.Run(0.5, true);
    return {{"outer_return", NameOf(outer)},
            {"nested_return", nested},
            {"max_depth", depth.Deepest()},
            {"performs", performs}};
}

}  // namespace

const Scenarios& NestingScenarios() {
    static const Scenarios scenarios = {
        {"nested-same-timer", [] { return SameTimer(0.15, 0.3); }},
        {"nested-same-timer-alone", [] { return SameTimer(0, 0.9); }},
        {"nested-same-source", [] { return SameSource(true); }},
        {"nested-source-not-resignaled", [] { return SameSource(false); }},
    };
    return scenarios;
}

}  // namespace run_loop_test
