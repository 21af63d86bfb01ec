#include <algorithm>

#include "tests/unit/CoreFoundation/RunLoop/Scenarios.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

// Sources of order 5, -1 and 0, all signalled, that write their order down.
void AddThreeSignalled(Scene& scene, std::vector<std::string>& performed) {
    std::vector<CFRunLoopSourceRef> sources;
    for (const CFIndex order : {5, -1, 0}) {
        sources.push_back(scene.AddSource(
            [&performed, order] { performed.push_back("order" + std::to_string(order)); },
            kCFRunLoopDefaultMode, order));
    }
    for (const auto source : sources) {
        CFRunLoopSourceSignal(source);
    }
}

Result Order() {
    Scene scene;
    std::vector<std::string> performed;
    AddThreeSignalled(scene, performed);
    const auto result = scene.Run(0.1);
    return {{"return", NameOf(result)}, {"performed", performed}};
}

Result OrderOneByOne() {
    Scene scene;
    std::vector<std::string> performed;
    AddThreeSignalled(scene, performed);
    Result result;
    for (const char* run : {"1", "2", "3", "4"}) {
        performed.clear();
        result[std::string("return_") + run] = NameOf(scene.Run(0.1, true));
        result[std::string("performed_") + run] = performed;
    }
    return result;
}

Result SignalBeforeAdd() {
    Scene scene;
    int performs = 0;
    const auto source = scene.MakeSource([&] { ++performs; });
    CFRunLoopSourceSignal(source);
    CFRunLoopAddSource(scene.Loop(), source, kCFRunLoopDefaultMode);
    scene.Run(0.1);
    return {{"performs", performs}};
}

Result Invalidate() {
    Scene scene;
    int performs = 0;
    const auto source = scene.AddSource([&] { ++performs; });
    CFRunLoopSourceSignal(source);
    CFRunLoopSourceInvalidate(source);
    const auto result = scene.Run(0.1);
    return {{"valid", CFRunLoopSourceIsValid(source) != 0},
            {"contains", CFRunLoopContainsSource(scene.Loop(), source, kCFRunLoopDefaultMode) != 0},
            {"return", NameOf(result)},
            {"performs", performs}};
}

Result Remove() {
    Scene scene;
    int performs = 0;
    const auto source = scene.AddSource([&] { ++performs; });
    CFRunLoopSourceSignal(source);
    CFRunLoopRemoveSource(scene.Loop(), source, kCFRunLoopDefaultMode);
    const auto result = scene.Run(0.1);
    const int whileRemoved = performs;
    CFRunLoopAddSource(scene.Loop(), source, kCFRunLoopDefaultMode);
    scene.Run(0.1);
    return {{"valid", CFRunLoopSourceIsValid(source) != 0},
            {"return", NameOf(result)},
            {"performs", whileRemoved},
            {"performs_after_readd", performs}};
}

Result ScheduleAndCancel() {
    Scene scene;
    std::vector<std::string> calls;
    const auto source = scene.MakeReportingSource([&](auto call) { calls.push_back(call); });
    CFRunLoopAddSource(scene.Loop(), source, kCFRunLoopDefaultMode);
    CFRunLoopAddSource(scene.Loop(), source, scene.Custom());
    CFRunLoopRemoveSource(scene.Loop(), source, scene.Custom());
    CFRunLoopAddSource(scene.Loop(), source, kCFRunLoopDefaultMode);
    CFRunLoopSourceInvalidate(source);
    return {{"calls", calls}};
}

Result ScheduleInCommonModes() {
    Scene scene;
    std::vector<std::string> calls;
    const auto source = scene.MakeReportingSource([&](auto call) { calls.push_back(call); });
    CFRunLoopAddSource(scene.Loop(), source, kCFRunLoopCommonModes);
    scene.MakeCustomCommon();
    // Modes that earlier scenes added to the common set do not matter here.
    const auto ownCalls = [&calls] {
        std::erase_if(calls, [](const auto& call) {
            return !call.ends_with(":custom") && !call.ends_with(":kCFRunLoopDefaultMode");
        });
        return std::exchange(calls, {});
    };
    Result result = {{"calls", ownCalls()}};
    CFRunLoopRemoveSource(scene.Loop(), source, kCFRunLoopCommonModes);
    auto onRemove = ownCalls();
    std::sort(onRemove.begin(), onRemove.end());  // within one call their order is free
    result["calls_on_remove"] = onRemove;
    return result;
}

Result BeforeTimer() {
    Scene scene;
    std::vector<std::string> order;
    scene.AddTimer(-0.1, 0, [&] { order.push_back("timer"); });
    CFRunLoopSourceSignal(scene.AddSource([&] { order.push_back("source"); }));
    scene.Run(0.1);
    return {{"order", order}};
}

Result SignalledByTimer() {
    Scene scene;
    std::vector<std::string> events;
    const auto source = scene.AddSource([&] { events.push_back("source"); });
    scene.AddTimer(0.05, 0, [&] {
        events.push_back("timer");
        CFRunLoopSourceSignal(source);
    });
    const auto result = scene.Run(0.5, true);
    return {{"return_rash", NameOf(result)},
            {"events", events},
            {"before_timeout", scene.Time() < 0.4}};
}

}  // namespace

const Scenarios& SourceScenarios() {
    static const Scenarios scenarios = {
        {"source-order", Order},
        {"source-order-rash", OrderOneByOne},
        {"source-signal-before-add", SignalBeforeAdd},
        {"source-invalidate", Invalidate},
        {"source-remove", Remove},
        {"source-schedule-cancel", ScheduleAndCancel},
        {"source-schedule-common", ScheduleInCommonModes},
        {"source-before-timer", BeforeTimer},
        {"timer-signals-source", SignalledByTimer},
    };
    return scenarios;
}

}  // namespace run_loop_test
