// The run loop behind CFRunLoop.
#pragma once

#include <CoreFoundation/CFRunLoop.h>
#include <sys/types.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/CoreFoundation/RunLoop/RunLoopObserver.h"
#include "platform/CoreFoundation/RunLoop/RunLoopPoller.h"
#include "platform/CoreFoundation/RunLoop/RunLoopSource.h"
#include "platform/CoreFoundation/RunLoop/RunLoopTimer.h"

namespace run_loop {

// Guards which items are in which mode of which loop, in the whole process. It is never held while
// a callback runs, while a loop waits or while anything is released.
std::mutex& StructureMutex();

// The token of the descriptor that wakes the loop, in every poller.
constexpr std::uint64_t kWakeToken = 0;

// Whether this is the name that stands for the loop's common set, which is not a mode itself.
bool IsCommonModes(CFRunLoopMode mode);

struct Mode {
    Mode(CFRunLoopMode modeName, int wakeDescriptor);
    ~Mode();
    Mode(const Mode&) = delete;
    Mode& operator=(const Mode&) = delete;

    CFRunLoopMode name;  // owned copy
    bool common = false;
    std::vector<Retained<Timer>> timers;
    std::vector<Retained<Observer>> observers;  // in the order in which they are called
    std::vector<Retained<Source>> sources;
    std::unordered_map<std::uint64_t, DescriptorSource*> watchers;  // by the token of the watch
    Poller poller;
    bool workedOffBacklog = false;  // the last pass served a backlog: descriptors have their turn
    std::atomic<unsigned long> revision = 0;  // of timers and observers: counts every change

    // The timers or the observers.
    template <typename Item>
    std::vector<Retained<Item>>& Items();
};

template <>
inline std::vector<Retained<Timer>>& Mode::Items() {
    return timers;
}

template <>
inline std::vector<Retained<Observer>>& Mode::Items() {
    return observers;
}

class RunLoop final : public core_foundation::Object {
  public:
    static CFTypeID TypeID() { return CFRunLoopGetTypeID(); }
    CFTypeID Type() const override { return TypeID(); }
    CFRunLoopRef Ref() const { return static_cast<CFRunLoopRef>(const_cast<void*>(Reference())); }

    static RunLoop& Main();
    static RunLoop& Current();

    // On the loop's own thread. `seconds` as CFRunLoopRunInMode has it.
    CFRunLoopRunResult Run(CFRunLoopMode modeName, CFTimeInterval seconds,
                           bool returnAfterSourceHandled);

    // Runs the mode, even an empty one, until `done` returns true or the deadline has passed.
    // Stopping the loop does not end it. On the loop's own thread, as Run().
    void RunUntil(CFRunLoopMode modeName, Instant deadline, const std::function<bool()>& done);

    // Any thread.
    void Stop();
    void WakeUp();
    bool IsWaiting() const { return waiting_; }
    CFRunLoopMode CopyCurrentMode();
    void AddCommonMode(CFRunLoopMode modeName);
    void AddSource(Source& source, CFRunLoopMode modeName);
    void RemoveSource(Source& source, CFRunLoopMode modeName);
    bool ContainsSource(const Source& source, CFRunLoopMode modeName);
    // An item is a Timer or an Observer; it belongs to one loop.
    template <typename Item>
    void AddItem(Item& item, CFRunLoopMode modeName);
    template <typename Item>
    void RemoveItem(Item& item, CFRunLoopMode modeName);
    template <typename Item>
    bool ContainsItem(const Item& item, CFRunLoopMode modeName);

    // For a source or an item that becomes invalid. The mutex is held; what the loop retained is
    // handed over, to be released without it.
    Retained<Source> Withdraw(Source& source, Mode& mode);
    Retained<Source> WithdrawCommonItem(Source& source);
    template <typename Item>
    static std::vector<Retained<Item>> WithdrawEverywhere(Item& item);

  private:
    // One run in progress. Runs nest.
    struct Activation {
        Mode* mode;
        bool stopped = false;
    };
    class RunningGuard;

    RunLoop(bool isMain, pid_t thread);
    ~RunLoop() override;
    bool OnOwnThread() const;
    void Finalize() override;

    // The mutex is held.
    Mode& ModeNamed(CFRunLoopMode name);
    Mode* FindMode(CFRunLoopMode name);
    bool IsEmpty(const Mode& mode) const;
    bool Insert(Source& source, Mode& mode);
    template <typename Item>
    void Insert(Item& item, Mode& mode);
    template <typename Item>
    Retained<Item> Withdraw(Item& item, Mode& mode);
    template <typename Item>
    Retained<Item> WithdrawCommonItem(Item& item);
    static void Place(Timer& timer, Mode& mode);
    static void Place(Observer& observer, Mode& mode);
    template <typename Item>
    std::vector<Retained<Item>>& CommonItems();
    std::vector<Mode*> ModesFor(CFRunLoopMode name);

    // A run's passes until it is over.
    CFRunLoopRunResult RunPasses(Mode& mode, const Activation& activation, CFTimeInterval seconds,
                                 bool returnAfterSourceHandled);

    // One pass; returns whether a source was handled.
    bool Pass(Mode& mode, Instant deadline, bool poll, bool onlyOneSource);

    // The steps of a pass, with the mutex not held; each returns whether a source was handled.
    bool PerformSignalledSources(Mode& mode, bool onlyOne);
    bool WaitAndPerform(Mode& mode, Instant deadline, bool poll);
    void FireTimers(Mode& mode);
    bool PerformReady(Mode& mode, const Poller::Readiness& readiness);
    static bool PerformBacklog(DescriptorSource& source);
    // Waits, and calls the observers before and afterwards.
    std::optional<Poller::Readiness> Wait(Mode& mode, Instant deadline);
    std::optional<Poller::Readiness> WaitUntil(Mode& mode, Instant until);

    // The observers of the mode that are to be called, in their order. The mutex is not held.
    using Observers = std::vector<Retained<Observer>>;
    static Observers ObserversOf(const Mode& mode, CFRunLoopActivity activity);
    static void Tell(const Observers& observers, CFRunLoopActivity activity);
    static void TellObservers(const Mode& mode, CFRunLoopActivity activity);

    static Retained<DescriptorSource> SourceWithBacklog(const Mode& mode);
    static Instant NextTimer(const Mode& mode);

    const bool isMain_;
    const pid_t thread_;
    const local_socket::Descriptor wake_;
    std::atomic<bool> waiting_ = false;
    std::vector<std::unique_ptr<Mode>> modes_;
    std::vector<Retained<Source>> commonSources_;
    std::vector<Retained<Timer>> commonTimers_;
    std::vector<Retained<Observer>> commonObservers_;
    std::vector<Activation*> activations_;
};

template <>
inline std::vector<Retained<Timer>>& RunLoop::CommonItems() {
    return commonTimers_;
}

template <>
inline std::vector<Retained<Observer>>& RunLoop::CommonItems() {
    return commonObservers_;
}

}  // namespace run_loop
