#include "platform/CoreFoundation/RunLoop.h"

#include <CoreFoundation/CFString.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>

#include "platform/CoreFoundation/InterruptHold.h"

namespace run_loop {
namespace {

template <typename T>
Retained<T> TakeOut(std::vector<Retained<T>>& items, const T& item) {
    const auto found = std::find(items.begin(), items.end(), &item);
    if (found == items.end()) {
        return {};
    }
    Retained<T> taken = std::move(*found);
    items.erase(found);
    return taken;
}

template <typename T>
bool Contains(const std::vector<Retained<T>>& items, const T& item) {
    return std::find(items.begin(), items.end(), &item) != items.end();
}

}  // namespace

bool IsCommonModes(CFRunLoopMode mode) {
    return mode == kCFRunLoopCommonModes || CFEqual(mode, kCFRunLoopCommonModes);
}

std::mutex& StructureMutex() {
    static std::mutex& mutex = *new std::mutex;  // in use while the process ends
    return mutex;
}

Mode::Mode(CFRunLoopMode modeName, int wakeDescriptor)
    : name(CFStringCreateCopy(kCFAllocatorDefault, modeName)) {
    poller.Add(wakeDescriptor, EPOLLIN, kWakeToken);
}

Mode::~Mode() {
    CFRelease(name);
}

RunLoop::RunLoop(bool isMain, pid_t thread)
    : isMain_(isMain), thread_(thread), wake_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    ModeNamed(kCFRunLoopDefaultMode).common = true;
}

RunLoop::~RunLoop() = default;

RunLoop& RunLoop::Main() {
    static RunLoop& loop = []() -> RunLoop& {
        HoldInterrupts();
        return *new RunLoop(true, getpid());
    }();
    return loop;
}

RunLoop& RunLoop::Current() {
    if (OnMainThread()) {
        return Main();
    }
    thread_local const auto loop = Retained<RunLoop>::Adopt(new RunLoop(false, gettid()));
    return *loop;
}

bool RunLoop::OnOwnThread() const {
    return isMain_ ? OnMainThread() : gettid() == thread_;
}

void RunLoop::Finalize() {
    for (const auto& mode : modes_) {
        while (!mode->sources.empty()) {
            RemoveSource(*mode->sources.back(), mode->name);
        }
        while (!mode->timers.empty()) {
            RemoveTimer(*mode->timers.back(), mode->name);
        }
    }
}

Mode* RunLoop::FindMode(CFRunLoopMode name) {
    for (const auto& mode : modes_) {
        if (mode->name == name || CFEqual(mode->name, name)) {
            return mode.get();
        }
    }
    return nullptr;
}

Mode& RunLoop::ModeNamed(CFRunLoopMode name) {
    if (Mode* mode = FindMode(name)) {
        return *mode;
    }
    return *modes_.emplace_back(std::make_unique<Mode>(name, wake_.get()));
}

std::vector<Mode*> RunLoop::ModesFor(CFRunLoopMode name) {
    if (!IsCommonModes(name)) {
        return {&ModeNamed(name)};
    }
    std::vector<Mode*> common;
    for (const auto& mode : modes_) {
        if (mode->common) {
            common.push_back(mode.get());
        }
    }
    return common;
}

bool RunLoop::Insert(Source& source, Mode& mode) {
    if (Contains(mode.sources, source)) {
        return false;
    }
    mode.sources.emplace_back(&source);
    source.placements.push_back({this, &mode});
    source.Enter(mode);
    return true;
}

void RunLoop::Insert(Timer& timer, Mode& mode) {
    if (!Contains(mode.timers, timer)) {
        mode.timers.emplace_back(&timer);
        timer.loop = this;
        timer.modes.push_back(&mode);
    }
}

void RunLoop::AddSource(Source& source, CFRunLoopMode modeName) {
    std::vector<Mode*> entered;
    {
        const std::lock_guard lock(StructureMutex());
        if (!source.IsValid()) {
            return;
        }
        if (IsCommonModes(modeName) && !Contains(commonSources_, source)) {
            commonSources_.emplace_back(&source);
        }
        for (Mode* mode : ModesFor(modeName)) {
            if (Insert(source, *mode)) {
                entered.push_back(mode);
            }
        }
    }
    for (const Mode* mode : entered) {
        source.Scheduled(*this, mode->name);
    }
    WakeUp();
}

void RunLoop::AddTimer(Timer& timer, CFRunLoopMode modeName) {
    {
        const std::lock_guard lock(StructureMutex());
        if (!timer.IsValid() || (timer.loop != nullptr && timer.loop != this)) {
            return;
        }
        if (IsCommonModes(modeName) && !Contains(commonTimers_, timer)) {
            commonTimers_.emplace_back(&timer);
        }
        for (Mode* mode : ModesFor(modeName)) {
            Insert(timer, *mode);
        }
    }
    WakeUp();
}

void RunLoop::RemoveSource(Source& source, CFRunLoopMode modeName) {
    std::vector<Retained<Source>> withdrawn;
    std::vector<Mode*> left;
    {
        const std::lock_guard lock(StructureMutex());
        if (IsCommonModes(modeName)) {
            withdrawn.push_back(WithdrawCommonItem(source));
        }
        for (Mode* mode : ModesFor(modeName)) {
            if (auto taken = Withdraw(source, *mode)) {
                withdrawn.push_back(std::move(taken));
                std::erase_if(source.placements,
                              [mode](const auto& placement) { return placement.mode == mode; });
                left.push_back(mode);
            }
        }
    }
    for (const Mode* mode : left) {
        source.Cancelled(*this, mode->name);
    }
}

void RunLoop::RemoveTimer(Timer& timer, CFRunLoopMode modeName) {
    std::vector<Retained<Timer>> withdrawn;  // released after the mutex
    const std::lock_guard lock(StructureMutex());
    if (timer.loop != this) {
        return;
    }
    if (IsCommonModes(modeName)) {
        withdrawn.push_back(WithdrawCommonItem(timer));
    }
    for (Mode* mode : ModesFor(modeName)) {
        withdrawn.push_back(Withdraw(timer, *mode));
        std::erase(timer.modes, mode);
    }
    if (timer.modes.empty()) {
        withdrawn.push_back(WithdrawCommonItem(timer));
        timer.loop = nullptr;
    }
}

Retained<Source> RunLoop::Withdraw(Source& source, Mode& mode) {
    auto taken = TakeOut(mode.sources, source);
    if (taken) {
        source.Leave(mode);
    }
    return taken;
}

Retained<Timer> RunLoop::Withdraw(Timer& timer, Mode& mode) {
    return TakeOut(mode.timers, timer);
}

Retained<Source> RunLoop::WithdrawCommonItem(Source& source) {
    return TakeOut(commonSources_, source);
}

Retained<Timer> RunLoop::WithdrawCommonItem(Timer& timer) {
    return TakeOut(commonTimers_, timer);
}

bool RunLoop::ContainsSource(const Source& source, CFRunLoopMode modeName) {
    const std::lock_guard lock(StructureMutex());
    if (IsCommonModes(modeName)) {
        return Contains(commonSources_, source);
    }
    const Mode* mode = FindMode(modeName);
    return mode != nullptr && Contains(mode->sources, source);
}

bool RunLoop::ContainsTimer(const Timer& timer, CFRunLoopMode modeName) {
    const std::lock_guard lock(StructureMutex());
    if (IsCommonModes(modeName)) {
        return Contains(commonTimers_, timer);
    }
    const Mode* mode = FindMode(modeName);
    return mode != nullptr && Contains(mode->timers, timer);
}

void RunLoop::AddCommonMode(CFRunLoopMode modeName) {
    std::vector<Retained<Source>> entered;
    const Mode* mode = nullptr;
    {
        const std::lock_guard lock(StructureMutex());
        Mode& added = ModeNamed(modeName);
        if (std::exchange(added.common, true)) {
            return;
        }
        mode = &added;
        for (const auto& source : commonSources_) {
            if (Insert(*source, added)) {
                entered.push_back(source);
            }
        }
        for (const auto& timer : commonTimers_) {
            Insert(*timer, added);
        }
    }
    for (const auto& source : entered) {
        source->Scheduled(*this, mode->name);
    }
    WakeUp();
}

}  // namespace run_loop
