#include "platform/CoreFoundation/RunLoop/RunLoop.h"

#include <CoreFoundation/CFString.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>

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

bool OnMainThread() {
    thread_local const bool isMain = getpid() == gettid();
    return isMain;
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
    static std::mutex& mutex = *new std::mutex;  // never destroyed: in use while the process ends
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
    static RunLoop& loop = *new RunLoop(true, getpid());
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
            RemoveItem(*mode->timers.back(), mode->name);
        }
        while (!mode->observers.empty()) {
            RemoveItem(*mode->observers.back(), mode->name);
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
    source.Placed(*this, mode);
    return true;
}

void RunLoop::Place(Timer& timer, Mode& mode) {
    mode.timers.emplace_back(&timer);
}

// Those of lower order are called earlier; of equal ones, those added earlier.
void RunLoop::Place(Observer& observer, Mode& mode) {
    const auto place =
        std::upper_bound(mode.observers.begin(), mode.observers.end(), observer.Order(),
                         [](CFIndex order, const auto& other) { return order < other->Order(); });
    mode.observers.emplace(place, &observer);
}

template <typename Item>
void RunLoop::Insert(Item& item, Mode& mode) {
    if (!Contains(mode.Items<Item>(), item)) {
        Place(item, mode);
        ++mode.revision;
        item.Join(*this, mode);
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

template <typename Item>
void RunLoop::AddItem(Item& item, CFRunLoopMode modeName) {
    {
        const std::lock_guard lock(StructureMutex());
        if (!item.IsValid() || !item.MayJoin(*this)) {
            return;
        }
        if (auto& common = CommonItems<Item>();
            IsCommonModes(modeName) && !Contains(common, item)) {
            common.emplace_back(&item);
        }
        for (Mode* mode : ModesFor(modeName)) {
            Insert(item, *mode);
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
                source.Displaced(*mode);
                left.push_back(mode);
            }
        }
    }
    for (const Mode* mode : left) {
        source.Cancelled(*this, mode->name);
    }
}

template <typename Item>
void RunLoop::RemoveItem(Item& item, CFRunLoopMode modeName) {
    std::vector<Retained<Item>> withdrawn;  // released after the mutex
    const std::lock_guard lock(StructureMutex());
    if (!item.IsOf(*this)) {
        return;
    }
    if (IsCommonModes(modeName)) {
        withdrawn.push_back(WithdrawCommonItem(item));
    }
    bool leftLoop = false;
    for (Mode* mode : ModesFor(modeName)) {
        withdrawn.push_back(Withdraw(item, *mode));
        leftLoop = item.Leave(*mode);
    }
    if (leftLoop) {
        withdrawn.push_back(WithdrawCommonItem(item));
    }
}

Retained<Source> RunLoop::Withdraw(Source& source, Mode& mode) {
    auto taken = TakeOut(mode.sources, source);
    if (taken) {
        source.Leave(mode);
    }
    return taken;
}

template <typename Item>
Retained<Item> RunLoop::Withdraw(Item& item, Mode& mode) {
    auto taken = TakeOut(mode.Items<Item>(), item);
    if (taken) {
        ++mode.revision;
    }
    return taken;
}

Retained<Source> RunLoop::WithdrawCommonItem(Source& source) {
    return TakeOut(commonSources_, source);
}

template <typename Item>
Retained<Item> RunLoop::WithdrawCommonItem(Item& item) {
    return TakeOut(CommonItems<Item>(), item);
}

template <typename Item>
std::vector<Retained<Item>> RunLoop::WithdrawEverywhere(Item& item) {
    std::vector<Retained<Item>> withdrawn;
    const LoopMember::Membership membership = item.LeaveAll();
    if (membership.loop != nullptr) {
        withdrawn.push_back(membership.loop->WithdrawCommonItem(item));
        for (Mode* mode : membership.modes) {
            withdrawn.push_back(membership.loop->Withdraw(item, *mode));
        }
    }
    return withdrawn;
}

bool RunLoop::ContainsSource(const Source& source, CFRunLoopMode modeName) {
    const std::lock_guard lock(StructureMutex());
    if (IsCommonModes(modeName)) {
        return Contains(commonSources_, source);
    }
    const Mode* mode = FindMode(modeName);
    return mode != nullptr && Contains(mode->sources, source);
}

template <typename Item>
bool RunLoop::ContainsItem(const Item& item, CFRunLoopMode modeName) {
    const std::lock_guard lock(StructureMutex());
    if (IsCommonModes(modeName)) {
        return Contains(CommonItems<Item>(), item);
    }
    Mode* mode = FindMode(modeName);
    return mode != nullptr && Contains(mode->Items<Item>(), item);
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
        for (const auto& observer : commonObservers_) {
            Insert(*observer, added);
        }
    }
    for (const auto& source : entered) {
        source->Scheduled(*this, mode->name);
    }
    WakeUp();
}

template void RunLoop::AddItem(Timer&, CFRunLoopMode);
template void RunLoop::AddItem(Observer&, CFRunLoopMode);
template void RunLoop::RemoveItem(Timer&, CFRunLoopMode);
template void RunLoop::RemoveItem(Observer&, CFRunLoopMode);
template bool RunLoop::ContainsItem(const Timer&, CFRunLoopMode);
template bool RunLoop::ContainsItem(const Observer&, CFRunLoopMode);
template std::vector<Retained<Timer>> RunLoop::WithdrawEverywhere(Timer&);
template std::vector<Retained<Observer>> RunLoop::WithdrawEverywhere(Observer&);

}  // namespace run_loop
