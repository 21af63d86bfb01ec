#include "tests/unit/CoreFoundation/RunLoop/Scenarios.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

std::string ActivityName(CFRunLoopActivity activity) {
    switch (activity) {
        case kCFRunLoopEntry:
            return "entry";
        case kCFRunLoopBeforeTimers:
            return "beforeTimers";
        case kCFRunLoopBeforeSources:
            return "beforeSources";
        case kCFRunLoopBeforeWaiting:
            return "beforeWaiting";
        case kCFRunLoopAfterWaiting:
            return "afterWaiting";
        case kCFRunLoopExit:
            return "exit";
        default:
            return "activity " + std::to_string(activity);
    }
}

Result AloneIsEmpty() {
    Scene scene;
    int callbacks = 0;
    scene.AddObserver(kCFRunLoopAllActivities, [&](CFRunLoopActivity) { ++callbacks; });
    const auto result = scene.Run(0.2);
    return {{"return", NameOf(result)}, {"at_once", scene.Time() < 0.1}, {"callbacks", callbacks}};
}

// Writes down what the observer is told, and what the run returns.
Result Sequence(Scene& scene, std::vector<std::string>& sequence, bool returnAfterSourceHandled) {
    scene.AddObserver(kCFRunLoopAllActivities, [&](CFRunLoopActivity activity) {
        sequence.push_back(ActivityName(activity));
    });
    const auto result = scene.Run(0.5, returnAfterSourceHandled);
    return {{"return", NameOf(result)}, {"sequence", sequence}};
}

Result SequenceOfATimer() {
    Scene scene;
    std::vector<std::string> sequence;
    scene.AddTimer(0.08, 0, [&] { sequence.emplace_back("timer"); });
    return Sequence(scene, sequence, false);
}

Result SequenceOfASource() {
    Scene scene;
    std::vector<std::string> sequence;
    CFRunLoopSourceSignal(scene.AddSource([&] { sequence.emplace_back("source"); }));
    return Sequence(scene, sequence, true);
}

}  // namespace

const Scenarios& ObserverScenarios() {
    static const Scenarios scenarios = {
        {"observer-only-is-empty", AloneIsEmpty},
        {"observer-sequence", SequenceOfATimer},
        {"observer-sequence-source", SequenceOfASource},
    };
    return scenarios;
}

}  // namespace run_loop_test
