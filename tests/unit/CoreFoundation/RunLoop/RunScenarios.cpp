#include "tests/unit/CoreFoundation/RunLoop/Scenarios.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"
#include "tests/unit/CoreFoundation/RunLoop/Watchdog.h"

namespace run_loop_test {
namespace {

Result Empty() {
    Scene scene;
    const auto inDefault = scene.Run(1);
    const bool atOnce = scene.Time() < 0.01;
    return {{"return", NameOf(inDefault)},
            {"at_once", atOnce},
            {"return_custom", NameOf(scene.Run(1, true, scene.Custom()))}};
}

Result TimedOut() {
    Scene scene;
    scene.AddIdleSource();
    const auto first = scene.Run(0.2);
    const double after = scene.Time();
    return {{"return", NameOf(first)},
            {"after_about_0_2_s", after > 0.19 && after < 0.21},
            {"return_rash", NameOf(scene.Run(0.1, true))}};
}

Result RunOnceFor(double seconds) {
    Scene scene;
    scene.AddIdleSource();
    const auto result = scene.Run(seconds);
    return {{"return", NameOf(result)}, {"at_once", scene.Time() < 0.01}};
}

Result ZeroSignalled() {
    Scene scene;
    int performs = 0;
    const auto source = scene.AddSource([&] { ++performs; });
    CFRunLoopSourceSignal(source);
    const auto first = scene.Run(0);
    const int performsFirst = performs;
    CFRunLoopSourceSignal(source);
    const auto second = scene.Run(0, true);
    return {{"return_no_rash", NameOf(first)},
            {"performs", performsFirst},
            {"return_rash", NameOf(second)},
            {"performs2", performs}};
}

Result HandledSource() {
    Scene scene;
    int performs = 0;
    const auto source = scene.AddSource([&] { ++performs; });
    CFRunLoopSourceSignal(source);
    const auto first = scene.Run(0.2, true);
    const bool atOnce = scene.Time() < 0.01;
    CFRunLoopSourceSignal(source);
    const auto second = scene.Run(0.2);
    return {{"return_rash_true", NameOf(first)},
            {"at_once", atOnce},
            {"return_rash_false", NameOf(second)},
            {"full_time", scene.Time() > 0.19},
            {"performs", performs}};
}

Result TimerIsNoSource() {
    Scene scene;
    int fires = 0;
    scene.AddTimer(0.05, 0, [&] { ++fires; });
    scene.AddIdleSource();
    const auto result = scene.Run(0.25, true);
    return {{"return_rash_true", NameOf(result)}, {"fires", fires}};
}

Result OneShotFinishes() {
    Scene scene;
    int fires = 0;
    const auto timer = scene.AddTimer(0.05, 0, [&] { ++fires; });
    const auto result = scene.Run(1);
    return {{"return", NameOf(result)},
            {"before_timeout", scene.Time() < 0.9},
            {"fires", fires},
            {"valid_after", CFRunLoopTimerIsValid(timer) != 0},
            {"contains_after",
             CFRunLoopContainsTimer(scene.Loop(), timer, kCFRunLoopDefaultMode) != 0}};
}

Result ReturnsOnStop() {
    Scene scene;
    int fires = 0;
    scene.AddTimer(0.02, 0.02, [&] {
        if (++fires == 3) {
            CFRunLoopStop(scene.Loop());
        }
    });
    const bool byItself = RunsToItsEnd(scene.Loop());
    return {{"returned_by_itself_within_1_s", byItself}, {"fires", fires}};
}

Result ReturnsWhenTheLastTimerGoes(bool invalidated) {
    Scene scene;
    int fires = 0;
    CFRunLoopTimerRef timer = nullptr;
    timer = scene.AddTimer(0.02, 0.02, [&] {
        if (++fires < 2) {
            return;
        }
        if (invalidated) {
            CFRunLoopTimerInvalidate(timer);
        } else {
            CFRunLoopRemoveTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
        }
    });
    const bool byItself = RunsToItsEnd(scene.Loop());
    return {{"returned_by_itself_within_1_s", byItself},
            {"fires", fires},
            {"valid", CFRunLoopTimerIsValid(timer) != 0},
            {"contains", CFRunLoopContainsTimer(scene.Loop(), timer, kCFRunLoopDefaultMode) != 0}};
}

Result ReturnsEmpty() {
    const Scene scene;
    return {{"returned_by_itself_within_1_s", RunsToItsEnd(scene.Loop())}};
}

Result StaysWithSource() {
    Scene scene;
    int fires = 0;
    scene.AddIdleSource(kCFRunLoopCommonModes);
    scene.AddTimer(0.05, 0, [&] { ++fires; });
    scene.AddTimer(0.3, 0, [&] {
        ++fires;
        CFRunLoopStop(scene.Loop());
    });
    const bool byItself = RunsToItsEnd(scene.Loop());
    return {{"returned_by_itself_within_1_s", byItself},
            {"fires", fires},
            {"returned_only_after_stop", scene.Time() > 0.29}};
}

}  // namespace

const Scenarios& RunScenarios() {
    static const Scenarios scenarios = {
        {"rc-empty", Empty},
        {"rc-timedout", TimedOut},
        {"rc-zero-seconds", [] { return RunOnceFor(0); }},
        {"rc-negative-seconds", [] { return RunOnceFor(-1); }},
        {"rc-zero-signaled", ZeroSignalled},
        {"rc-handledsource", HandledSource},
        {"rc-timer-not-source", TimerIsNoSource},
        {"rc-oneshot-finishes", OneShotFinishes},
        {"run-returns-on-stop", ReturnsOnStop},
        {"run-returns-last-timer-invalidated", [] { return ReturnsWhenTheLastTimerGoes(true); }},
        {"run-returns-last-timer-removed", [] { return ReturnsWhenTheLastTimerGoes(false); }},
        {"run-returns-empty", ReturnsEmpty},
        {"run-stays-with-source", StaysWithSource},
    };
    return scenarios;
}

}  // namespace run_loop_test
