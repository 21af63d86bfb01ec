#include "tests/unit/CoreFoundation/RunLoop/Scenarios.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"
#include "tests/unit/CoreFoundation/RunLoop/Watchdog.h"

namespace run_loop_test {
namespace {

using std::chrono::milliseconds;

Result StoppedInTimer() {
    Scene scene;
    int fires = 0;
    const auto timer = scene.AddTimer(0.05, 0.05, [&] {
        if (++fires == 2) {
            CFRunLoopStop(scene.Loop());
        }
    });
    const auto first = scene.Run(2);
    const int firesFirst = fires;
    const bool validAfter = CFRunLoopTimerIsValid(timer) != 0;
    const auto second = scene.Run(0.12);
    return {{"return", NameOf(first)},
            {"fires", firesFirst},
            {"valid_after", validAfter},
            {"second_run_times_out", NameOf(second)},
            {"fires_again", fires > firesFirst}};
}

Result StoppedInSource() {
    Scene scene;
    const auto source = scene.AddSource([&] { CFRunLoopStop(scene.Loop()); });
    CFRunLoopSourceSignal(source);
    const auto first = scene.Run(1);
    CFRunLoopSourceSignal(source);
    const auto second = scene.Run(1, true);
    return {{"return_rash_false", NameOf(first)}, {"return_rash_true", NameOf(second)}};
}

Result StopBeforeRun() {
    Scene scene;
    scene.AddIdleSource();
    CFRunLoopStop(scene.Loop());
    const auto result = scene.Run(0.2);
    return {{"return", NameOf(result)}, {"full_time", scene.Time() > 0.19}};
}

Result StopBeforeRunEmpty() {
    const Scene scene;
    CFRunLoopStop(scene.Loop());
    return {{"return", NameOf(scene.Run(0.2))}};
}

Result StopAndFinished() {
    Scene scene;
    CFRunLoopTimerRef timer = nullptr;
    timer = scene.AddTimer(0.05, 0.05, [&] {
        CFRunLoopStop(scene.Loop());
        CFRunLoopTimerInvalidate(timer);
    });
    return {{"return", NameOf(scene.Run(1))}};
}

Result StopFromThread() {
    Scene scene(Scene::Clock::real);
    scene.AddIdleSource();
    const Watchdog stopper(milliseconds(20), [&] { CFRunLoopStop(scene.Loop()); });
    const auto result = scene.Run(1);
    return {{"return", NameOf(result)}, {"soon_after_stop", scene.Time() < 0.5}};
}

Result StopNested() {
    Scene scene;
    std::vector<std::string> events;
    std::string nested;
    scene.AddIdleSource();
    scene.AddTimer(0.05, 0, [&] {
        nested = NameOf(scene.Run(2));
        events.push_back("nested returned");
    });
    scene.AddTimer(0.15, 0, [&] {
        events.push_back("stop");
        CFRunLoopStop(scene.Loop());
    });
    const auto outer = scene.Run(0.5);
    return {{"outer_return", NameOf(outer)},
            {"nested_return", nested},
            {"events", events},
            {"outer_ran_full_time", scene.Time() > 0.49}};
}

Result WakeUpFromThread(bool returnAfterSourceHandled) {
    Scene scene(Scene::Clock::real);
    scene.AddIdleSource();
    const Watchdog waker(milliseconds(20), [&] { CFRunLoopWakeUp(scene.Loop()); });
    const auto result = scene.Run(0.06, returnAfterSourceHandled);
    return {{returnAfterSourceHandled ? "return_rash" : "return_no_rash", NameOf(result)},
            {"ran_full_time", scene.Time() > 0.059}};
}

Result SignalWithoutWakingUp() {
    Scene scene(Scene::Clock::real);
    int performs = 0;
    const auto source = scene.AddSource([&] { ++performs; });
    const Watchdog signaller(milliseconds(20), [&] { CFRunLoopSourceSignal(source); });
    const auto result = scene.Run(0.06, true);
    return {{"return_rash", NameOf(result)}, {"performed_before_timeout", performs > 0}};
}

Result WakeUpBeforeRun() {
    Scene scene;
    scene.AddIdleSource();
    CFRunLoopWakeUp(scene.Loop());
    const auto result = scene.Run(0.2, true);
    return {{"return_rash", NameOf(result)}, {"full_time", scene.Time() > 0.19}};
}

}  // namespace

const Scenarios& StopScenarios() {
    static const Scenarios scenarios = {
        {"rc-stopped-in-timer", StoppedInTimer},
        {"rc-stopped-in-source", StoppedInSource},
        {"stop-before-run", StopBeforeRun},
        {"stop-before-run-empty", StopBeforeRunEmpty},
        {"stop-and-finished", StopAndFinished},
        {"stop-thread", StopFromThread},
        {"stop-nested", StopNested},
        {"wakeup-thread", [] { return WakeUpFromThread(false); }},
        {"wakeup-thread-rash", [] { return WakeUpFromThread(true); }},
        {"signal-nowake-thread", SignalWithoutWakingUp},
        {"wakeup-before-run", WakeUpBeforeRun},
    };
    return scenarios;
}

}  // namespace run_loop_test
