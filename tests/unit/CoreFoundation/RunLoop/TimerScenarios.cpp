#include <cmath>

#include "tests/unit/CoreFoundation/RunLoop/Scenarios.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

constexpr double kHair = 1e-6;

int Tenths(double seconds) {
    return static_cast<int>(std::lround(seconds * 10 + kHair));
}

bool Contains(const Scene& scene, CFRunLoopTimerRef timer, CFRunLoopMode mode) {
    return CFRunLoopContainsTimer(scene.Loop(), timer, mode) != 0;
}

Result CatchUp() {
    Scene scene;
    std::vector<double> fires;
    const double firstDate = scene.Time() + 0.1;
    const auto timer = scene.AddTimer(0.1, 0.1, [&] {
        fires.push_back(scene.Time() - firstDate);
        if (fires.size() == 1) {
            scene.Spend(0.35);
        }
        if (fires.size() == 3) {
            CFRunLoopStop(scene.Loop());
        }
    });
    scene.Run(2);
    const double next = CFRunLoopTimerGetNextFireDate(timer) - CFAbsoluteTimeGetCurrent() +
                        scene.Time() - firstDate;
    return {{"fires", fires.size()},
            {"first_fire_tenths_after_first_date", Tenths(fires.at(0))},
            {"second_fire_tenths_after_first_date", Tenths(fires.at(1))},
            {"third_fire_tenths_after_first_date", Tenths(fires.at(2))},
            {"next_date_tenths", Tenths(next)},
            {"next_date_on_grid", std::fabs(next * 10 - std::round(next * 10)) < 1e-5}};
}

Result CatchUpCount() {
    Scene scene;
    int fires = 0;
    scene.AddTimer(0.1, 0.1, [&] {
        if (++fires == 1) {
            scene.Spend(0.52);
        }
    });
    scene.Run(0.95);
    return {{"fires_in_0_95_s_with_first_lasting_0_52_s", fires}};
}

Result Grid() {
    Scene scene;
    std::vector<double> fires;
    const auto timer = scene.AddTimer(0.1, 0.1, [&] { fires.push_back(scene.Time()); });
    scene.Run(0.55);
    bool early = false;
    for (std::size_t i = 0; i < fires.size(); ++i) {
        early = early || fires[i] < 0.1 * static_cast<double>(i + 1) - kHair;
    }
    const double next =
        CFRunLoopTimerGetNextFireDate(timer) - CFAbsoluteTimeGetCurrent() + scene.Time() - 0.1;
    return {{"fires_in_0_55_s", fires.size()},
            {"next_date_tenths", Tenths(next)},
            {"any_fire_early", early}};
}

Result PastDate() {
    Scene scene;
    int fires = 0;
    const auto timer = scene.AddTimer(-0.25, 0.1, [&] { ++fires; });
    scene.Run(0);
    const double next = CFRunLoopTimerGetNextFireDate(timer) - CFAbsoluteTimeGetCurrent() + 0.25;
    return {{"fires_in_zero_second_run", fires},
            {"next_date_tenths_after_first_date", Tenths(next)}};
}

Result PastDateOneShot() {
    Scene scene;
    int fires = 0;
    const auto timer = scene.AddTimer(-5, 0, [&] { ++fires; });
    const auto result = scene.Run(0.2);
    return {
        {"return", NameOf(result)}, {"fires", fires}, {"valid", CFRunLoopTimerIsValid(timer) != 0}};
}

Result NegativeInterval() {
    Scene scene;
    int fires = 0;
    const auto timer = scene.AddTimer(0.02, -1, [&] { ++fires; });
    const bool isZero = CFRunLoopTimerGetInterval(timer) == 0;
    const auto result = scene.Run(0.2);
    return {{"return", NameOf(result)}, {"fires", fires}, {"interval_is_zero", isZero}};
}

Result Info() {
    Scene scene;
    const auto timer = scene.MakeTimer(10, 0.1, [] {});
    const CFIndex retainCount = CFGetRetainCount(timer);
    CFRunLoopAddTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    return {{"interval_0_1", CFRunLoopTimerGetInterval(timer) == 0.1},
            {"valid", CFRunLoopTimerIsValid(timer) != 0},
            {"retain_count_new", retainCount},
            {"retained_by_add", CFGetRetainCount(timer) > retainCount}};
}

Result RemoveAndInvalidate() {
    Scene scene;
    const auto timer = scene.AddTimer(10, 0.1, [] {});
    const CFIndex added = CFGetRetainCount(timer);
    CFRunLoopRemoveTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    Result result = {{"valid_after_remove", CFRunLoopTimerIsValid(timer) != 0},
                     {"retain_dropped_by_remove", CFGetRetainCount(timer) < added},
                     {"retain_count_after_remove", CFGetRetainCount(timer)}};
    CFRunLoopAddTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    result["contains_after_readd"] = Contains(scene, timer, kCFRunLoopDefaultMode);
    CFRunLoopTimerInvalidate(timer);
    result["valid_after_invalidate"] = CFRunLoopTimerIsValid(timer) != 0;
    result["contains_after_invalidate"] = Contains(scene, timer, kCFRunLoopDefaultMode);
    result["retain_count_after_invalidate"] = CFGetRetainCount(timer);
    CFRunLoopAddTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    result["contains_after_adding_invalid"] = Contains(scene, timer, kCFRunLoopDefaultMode);
    CFRunLoopTimerInvalidate(timer);
    result["still_invalid"] = CFRunLoopTimerIsValid(timer) == 0;
    return result;
}

Result ReleaseWhileAdded() {
    Scene scene;
    int fires = 0;
    const auto timer = scene.MakeTimerForCaller(0.05, 0.05, [&] {
        if (++fires == 2) {
            CFRunLoopStop(scene.Loop());
        }
    });
    CFRunLoopAddTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    CFRelease(timer);
    const auto result = scene.Run(1);
    CFRunLoopTimerInvalidate(timer);
    return {{"return", NameOf(result)}, {"fires", fires}};
}

Result ContextReleasedWithTimer() {
    int releases = 0;
    CFRunLoopTimerContext context{};
    context.info = &releases;
    context.release = [](const void* info) { ++*static_cast<int*>(const_cast<void*>(info)); };
    CFRelease(CFRunLoopTimerCreate(
        kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + 10, 0.1, 0, 0,
        [](CFRunLoopTimerRef, void*) {}, &context));
    return {{"release_calls_after_last_release", releases}};
}

Result AddTwice() {
    Scene scene;
    int fires = 0;
    const auto timer = scene.AddTimer(0.05, 0.05, [&] { ++fires; });
    CFRunLoopAddTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    scene.Run(0.07);
    CFRunLoopRemoveTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    return {{"fires", fires},
            {"contains_after_one_remove", Contains(scene, timer, kCFRunLoopDefaultMode)}};
}

Result RemoveNotAdded() {
    Scene scene;
    const auto timer = scene.MakeTimer(10, 0.1, [] {});
    CFRunLoopRemoveTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    CFRunLoopAddTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    CFRunLoopRemoveTimer(scene.Loop(), timer, scene.Custom());
    return {{"valid", CFRunLoopTimerIsValid(timer) != 0},
            {"contains_default", Contains(scene, timer, kCFRunLoopDefaultMode)}};
}

Result TwoModes() {
    Scene scene;
    int fires = 0;
    const auto timer = scene.AddTimer(0.05, 0.05, [&] { ++fires; });
    CFRunLoopAddTimer(scene.Loop(), timer, scene.Custom());
    scene.Run(0.08);
    const int inDefault = fires;
    scene.Run(0.08, false, scene.Custom());
    Result result = {{"fires_in_default", inDefault > 0}, {"fires_in_custom", fires > inDefault}};
    CFRunLoopRemoveTimer(scene.Loop(), timer, kCFRunLoopDefaultMode);
    result["still_in_custom"] = Contains(scene, timer, scene.Custom());
    CFRunLoopTimerInvalidate(timer);
    result["in_custom_after_invalidate"] = Contains(scene, timer, scene.Custom());
    return result;
}

Result ByDate(double later, double sooner, double runAfter) {
    Scene scene;
    std::vector<std::string> fired;
    scene.AddTimer(later, 0, [&] { fired.push_back("later"); });
    scene.AddTimer(sooner, 0, [&] { fired.push_back("sooner"); });
    scene.Spend(runAfter);
    scene.Run(0.4);
    return {{"fired", fired}};
}

Result AddInCallback() {
    Scene scene;
    std::vector<std::string> fired;
    scene.AddTimer(0.05, 0, [&] { scene.AddTimer(-1, 0, [&] { fired.push_back("added"); }); });
    const auto result = scene.Run(0.5);
    return {{"return", NameOf(result)}, {"fired", fired}, {"before_timeout", scene.Time() < 0.4}};
}

}  // namespace

const Scenarios& TimerScenarios() {
    static const Scenarios scenarios = {
        {"catchup", CatchUp},
        {"catchup-count", CatchUpCount},
        {"grid", Grid},
        {"past-date", PastDate},
        {"past-date-oneshot", PastDateOneShot},
        {"negative-interval", NegativeInterval},
        {"timer-info", Info},
        {"remove-vs-invalidate", RemoveAndInvalidate},
        {"release-while-added", ReleaseWhileAdded},
        {"context-release-dealloc", ContextReleasedWithTimer},
        {"add-twice", AddTwice},
        {"remove-not-added", RemoveNotAdded},
        {"two-modes", TwoModes},
        {"timers-by-date", [] { return ByDate(0.15, 0.05, 0); }},
        {"timers-by-date-both-due", [] { return ByDate(0.1, 0.05, 0.2); }},
        {"add-in-callback", AddInCallback},
    };
    return scenarios;
}

}  // namespace run_loop_test
