#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

#include <array>
#include <atomic>

#include "VEKCommon/OwnedReference.h"

namespace run_loop_test {
namespace {

CFRunLoopMode NewMode() {
    static std::atomic<int> number = 0;
    return CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("custom%d"), ++number);
}

// The modes that scenes added to the common set of this thread's loop; they stay in it.
std::deque<OwnedReference<CFRunLoopMode>>& AddedCommonModes() {
    thread_local std::deque<OwnedReference<CFRunLoopMode>> modes;
    return modes;
}

using Report = std::pair<const Scene*, std::function<void(std::string)>>;

}  // namespace

Scene::Scene(Clock clock) : custom_(NewMode()) {
    if (clock == Clock::test) {
        clock_.emplace();
    }
    start_ = CFAbsoluteTimeGetCurrent();
}

Scene::~Scene() {
    for (const CFRunLoopTimerRef timer : timers_) {
        CFRunLoopTimerInvalidate(timer);
        CFRelease(timer);
    }
    for (const CFRunLoopSourceRef source : sources_) {
        CFRunLoopSourceInvalidate(source);
        CFRelease(source);
    }
    for (const CFRunLoopObserverRef observer : observers_) {
        CFRunLoopObserverInvalidate(observer);
        CFRelease(observer);
    }
    CFRelease(custom_);
}

void Scene::MakeCustomCommon() {
    CFRunLoopAddCommonMode(loop_, custom_);
    AddedCommonModes().emplace_back(static_cast<CFRunLoopMode>(CFRetain(custom_)));
}

void Scene::RemoveFromAddedCommonModes(CFRunLoopTimerRef timer) const {
    for (const auto& mode : AddedCommonModes()) {
        CFRunLoopRemoveTimer(loop_, timer, mode.get());
    }
}

std::string Scene::NameOf(CFRunLoopMode mode) const {
    if (mode == nullptr) {
        return "";
    }
    if (CFEqual(mode, custom_)) {
        return "custom";
    }
    std::array<char, 100> name{};
    CFStringGetCString(mode, name.data(), name.size(), kCFStringEncodingUTF8);
    return name.data();
}

CFRunLoopTimerRef Scene::MakeTimerForCaller(double after, double interval, Callback fired) {
    CFRunLoopTimerContext context{};
    context.info = &callbacks_.emplace_back(std::move(fired));
    return CFRunLoopTimerCreate(
        kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + after, interval, 0, 0,
        [](CFRunLoopTimerRef, void* info) { (*static_cast<Callback*>(info))(); }, &context);
}

CFRunLoopTimerRef Scene::MakeTimer(double after, double interval, Callback fired) {
    return timers_.emplace_back(MakeTimerForCaller(after, interval, std::move(fired)));
}

CFRunLoopSourceRef Scene::MakeSource(Callback performed, CFIndex order) {
    CFRunLoopSourceContext context{};
    context.info = &callbacks_.emplace_back(std::move(performed));
    context.perform = [](void* info) { (*static_cast<Callback*>(info))(); };
    return sources_.emplace_back(CFRunLoopSourceCreate(kCFAllocatorDefault, order, &context));
}

CFRunLoopSourceRef Scene::MakeReportingSource(std::function<void(std::string)> report) {
    CFRunLoopSourceContext context{};
    context.info = &reports_.emplace_back(this, std::move(report));
    context.schedule = [](void* info, CFRunLoopRef, CFRunLoopMode mode) {
        const auto& [scene, tell] = *static_cast<Report*>(info);
        tell("schedule:" + scene->NameOf(mode));
    };
    context.cancel = [](void* info, CFRunLoopRef, CFRunLoopMode mode) {
        const auto& [scene, tell] = *static_cast<Report*>(info);
        tell("cancel:" + scene->NameOf(mode));
    };
    return sources_.emplace_back(CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context));
}

CFRunLoopTimerRef Scene::AddTimer(double after, double interval, Callback fired,
                                  CFRunLoopMode mode) {
    const CFRunLoopTimerRef timer = MakeTimer(after, interval, std::move(fired));
    CFRunLoopAddTimer(loop_, timer, mode);
    return timer;
}

CFRunLoopSourceRef Scene::AddSource(Callback performed, CFRunLoopMode mode, CFIndex order) {
    const CFRunLoopSourceRef source = MakeSource(std::move(performed), order);
    CFRunLoopAddSource(loop_, source, mode);
    return source;
}

CFRunLoopObserverRef Scene::MakeObserver(CFOptionFlags activities, ActivityCallback told,
                                         CFIndex order, bool repeats) {
    CFRunLoopObserverContext context{};
    context.info = &activityCallbacks_.emplace_back(std::move(told));
    return observers_.emplace_back(CFRunLoopObserverCreate(
        kCFAllocatorDefault, activities, repeats, order,
        [](CFRunLoopObserverRef, CFRunLoopActivity activity, void* info) {
            (*static_cast<ActivityCallback*>(info))(activity);
        },
        &context));
}

CFRunLoopObserverRef Scene::AddObserver(CFOptionFlags activities, ActivityCallback told,
                                        CFIndex order, bool repeats) {
    const CFRunLoopObserverRef observer = MakeObserver(activities, std::move(told), order, repeats);
    CFRunLoopAddObserver(loop_, observer, kCFRunLoopDefaultMode);
    return observer;
}

CFRunLoopSourceRef Scene::AddIdleSource(CFRunLoopMode mode) {
    return AddSource([] {}, mode);
}

}  // namespace run_loop_test
