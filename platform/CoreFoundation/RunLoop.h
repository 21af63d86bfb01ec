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

#include "platform/CoreFoundation/RunLoopPoller.h"
#include "platform/CoreFoundation/RunLoopSource.h"
#include "platform/CoreFoundation/RunLoopTimer.h"

namespace run_loop {

// Guards what is in which mode of which loop, in the whole process. It is never held while a
// callback runs, while a loop waits or while anything is released.
std::mutex& StructureMutex();

// The token of the descriptor that wakes the loop, in every poller.
constexpr std::uint64_t kWakeToken = 0;

// Whether this is the name that stands for the loop's common set, and is no mode itself.
bool IsCommonModes(CFRunLoopMode mode);

struct Mode {
    Mode(CFRunLoopMode modeName, int wakeDescriptor);
    ~Mode();
    Mode(const Mode&) = delete;
    Mode& operator=(const Mode&) = delete;

    CFRunLoopMode name;  // owned copy
    bool common = false;
    std::vector<Retained<Timer>> timers;
    std::vector<Retained<Source>> sources;
    std::unordered_map<std::uint64_t, DescriptorSource*> watchers;  // by the token of the watch
    Poller poller;
    bool workedOffBacklog = false;
};

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

    // Runs the mode, even one that is empty, until `done` says so or the deadline has come.
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
    void AddTimer(Timer& timer, CFRunLoopMode modeName);
    void RemoveTimer(Timer& timer, CFRunLoopMode modeName);
    bool ContainsTimer(const Timer& timer, CFRunLoopMode modeName);

    // For a source or a timer that becomes invalid. The mutex is held; what the loop retained is
    // handed over, to be released without it.
    Retained<Source> Withdraw(Source& source, Mode& mode);
    Retained<Timer> Withdraw(Timer& timer, Mode& mode);
    Retained<Source> WithdrawCommonItem(Source& source);
    Retained<Timer> WithdrawCommonItem(Timer& timer);

  private:
    // One run that is under way. Runs nest.
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
    void Insert(Timer& timer, Mode& mode);
    std::vector<Mode*> ModesFor(CFRunLoopMode name);

    // One pass; the answer is whether a source was handled.
    bool Pass(Mode& mode, Instant deadline, bool poll, bool onlyOneSource);

    // The steps of a pass, with the mutex not held; the answer is whether a source was handled.
    bool PerformSignalledSources(Mode& mode, bool onlyOne);
    bool WaitAndPerform(Mode& mode, Instant deadline, bool poll);
    void FireTimers(Mode& mode);
    bool PerformReady(Mode& mode, const Poller::Readiness& readiness);
    static bool PerformBacklog(DescriptorSource& source);
    std::optional<Poller::Readiness> Wait(Mode& mode, Instant deadline, bool poll);
    static Retained<DescriptorSource> SourceWithBacklog(const Mode& mode);
    static Instant NextTimer(const Mode& mode);

    const bool isMain_;
    const pid_t thread_;
    const local_socket::Descriptor wake_;
    std::atomic<bool> waiting_ = false;
    std::vector<std::unique_ptr<Mode>> modes_;
    std::vector<Retained<Source>> commonSources_;
    std::vector<Retained<Timer>> commonTimers_;
    std::vector<Activation*> activations_;
};

}  // namespace run_loop
