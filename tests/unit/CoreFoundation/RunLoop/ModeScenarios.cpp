#include "tests/unit/CoreFoundation/RunLoop/Scenarios.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

Result DefaultTimerInCustom() {
    Scene scene;
    int fires = 0;
    scene.AddTimer(0.05, 0.05, [&] { ++fires; });
    scene.AddIdleSource(scene.Custom());
    const auto result = scene.Run(0.25, false, scene.Custom());
    const int during = fires;
    scene.Run(0.12);
    return {{"return_custom", NameOf(result)},
            {"fires_during_custom", during},
            {"fires_in_default_after", fires > during}};
}

Result DefaultTimerCustomEmpty() {
    Scene scene;
    int fires = 0;
    scene.AddTimer(0.05, 0.05, [&] { ++fires; });
    const auto result = scene.Run(0.25, false, scene.Custom());
    return {{"return_custom", NameOf(result)},
            {"return", NameOf(result)},
            {"returned_at_once", scene.Time() < 0.01},
            {"fires", fires}};
}

Result DueTimerFiresOnReturn() {
    Scene scene;
    int fires = 0;
    scene.AddTimer(0.05, 10, [&] { ++fires; });
    scene.AddIdleSource(scene.Custom());
    scene.Run(0.2, false, scene.Custom());
    const int inCustom = fires;
    scene.Run(0);
    return {{"fires_in_custom", inCustom},
            {"fires_after_one_zero_second_default_run", fires - inCustom}};
}

Result CommonSourceDefault() {
    Scene scene;
    int performs = 0;
    CFRunLoopSourceSignal(scene.AddSource([&] { ++performs; }, kCFRunLoopCommonModes));
    const auto result = scene.Run(0.2, true);
    return {{"return", NameOf(result)}, {"performs", performs}};
}

Result CommonSourceCustomBefore() {
    Scene scene;
    int performs = 0;
    CFRunLoopSourceSignal(scene.AddSource([&] { ++performs; }, kCFRunLoopCommonModes));
    const auto custom = scene.Run(0.2, true, scene.Custom());
    const int inCustom = performs;
    const auto inDefault = scene.Run(0.2, true);
    return {{"return", NameOf(custom)},
            {"performs", inCustom},
            {"return_default", NameOf(inDefault)},
            {"performs_after_default", performs}};
}

Result CommonSourceCustomAddedBefore() {
    Scene scene;
    int performs = 0;
    scene.MakeCustomCommon();
    CFRunLoopSourceSignal(scene.AddSource([&] { ++performs; }, kCFRunLoopCommonModes));
    const auto result = scene.Run(0.2, true, scene.Custom());
    return {{"return", NameOf(result)}, {"performs", performs}};
}

Result CommonSourceCustomAddedAfter() {
    Scene scene;
    int performs = 0;
    const auto source = scene.AddSource([&] { ++performs; }, kCFRunLoopCommonModes);
    scene.MakeCustomCommon();
    CFRunLoopSourceSignal(source);
    const auto result = scene.Run(0.2, true, scene.Custom());
    const auto contains = [&](CFRunLoopMode mode) {
        return CFRunLoopContainsSource(scene.Loop(), source, mode) != 0;
    };
    return {{"return", NameOf(result)},
            {"performs", performs},
            {"contains_in_custom", contains(scene.Custom())},
            {"contains_in_default", contains(kCFRunLoopDefaultMode)},
            {"contains_in_common", contains(kCFRunLoopCommonModes)}};
}

Result CommonTimerCustom() {
    Scene scene;
    int fires = 0;
    const auto timer = scene.AddTimer(
        0.05, 0.05, [&] { ++fires; }, kCFRunLoopCommonModes);
    scene.MakeCustomCommon();
    const auto result = scene.Run(0.22, false, scene.Custom());
    return {
        {"return", NameOf(result)},
        {"fires", fires >= 2},
        {"contains_in_custom", CFRunLoopContainsTimer(scene.Loop(), timer, scene.Custom()) != 0}};
}

Result RunCommonAsMode() {
    Scene scene;
    int performs = 0;
    CFRunLoopSourceSignal(scene.AddSource([&] { ++performs; }, kCFRunLoopCommonModes));
    const auto result = scene.Run(0.2, true, kCFRunLoopCommonModes);
    return {{"return", NameOf(result)}, {"performs", performs}};
}

Result InvalidRemovedFromCommon() {
    Scene scene;
    int fires = 0;
    const auto timer = scene.AddTimer(
        0.05, 0.05, [&] { ++fires; }, kCFRunLoopCommonModes);
    scene.RemoveFromAddedCommonModes(timer);
    const auto contains = [&](CFRunLoopMode mode) {
        return CFRunLoopContainsTimer(scene.Loop(), timer, mode) != 0;
    };
    Result result = {{"in_common", contains(kCFRunLoopCommonModes)},
                     {"in_default", contains(kCFRunLoopDefaultMode)}};
    CFRunLoopRemoveTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    result["in_default_after_remove_default"] = contains(kCFRunLoopDefaultMode);
    result["in_common_after_remove_default"] = contains(kCFRunLoopCommonModes);
    result["return"] = NameOf(scene.Run(0.2));
    result["fires"] = fires;
    return result;
}

Result CurrentMode() {
    Scene scene;
    std::vector<std::string> modes;
    const auto note = [&] {
        const CFRunLoopMode mode = CFRunLoopCopyCurrentMode(scene.Loop());
        modes.push_back(scene.NameOf(mode));
        CFRelease(mode);
    };
    const bool nullOutside = CFRunLoopCopyCurrentMode(scene.Loop()) == nullptr;
    scene.AddTimer(0.01, 0, note, scene.Custom());
    scene.AddTimer(0.01, 0, note);
    scene.Run(0.05, false, scene.Custom());
    scene.Run(0.05);
    return {{"null_outside", nullOutside},
            {"modes", modes},
            {"default_mode_name", scene.NameOf(kCFRunLoopDefaultMode)},
            {"common_modes_name", scene.NameOf(kCFRunLoopCommonModes)}};
}

Result IsWaiting() {
    return {{"waiting_when_not_running", CFRunLoopIsWaiting(CFRunLoopGetCurrent()) != 0},
            {"main_is_current", CFRunLoopGetMain() == CFRunLoopGetCurrent()},
            {"same_each_time", CFRunLoopGetCurrent() == CFRunLoopGetCurrent() &&
                                   CFRunLoopGetMain() == CFRunLoopGetMain()}};
}

}  // namespace

const Scenarios& ModeScenarios() {
    static const Scenarios scenarios = {
        {"default-timer-in-custom", DefaultTimerInCustom},
        {"default-timer-custom-empty", DefaultTimerCustomEmpty},
        {"due-timer-fires-on-return", DueTimerFiresOnReturn},
        {"common-source-default", CommonSourceDefault},
        {"common-source-custom-before", CommonSourceCustomBefore},
        {"common-source-custom-added-before", CommonSourceCustomAddedBefore},
        {"common-source-custom-added-after", CommonSourceCustomAddedAfter},
        {"common-timer-custom", CommonTimerCustom},
        {"run-common-as-mode", RunCommonAsMode},
        {"invalid-removed-from-common", InvalidRemovedFromCommon},
        {"current-mode", CurrentMode},
        {"is-waiting", IsWaiting},
    };
    return scenarios;
}

}  // namespace run_loop_test
