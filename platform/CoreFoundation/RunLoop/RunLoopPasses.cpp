// How a run loop runs. One pass performs the signalled sources, waits, fires the timers that became
// due, performs what became ready, and then checks whether the run is over. Observers are called
// before each of these steps as in Core Foundation.
#include <CoreFoundation/CFString.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cmath>

#include "platform/CoreFoundation/RunLoop/RunLoop.h"

namespace run_loop {

// Makes a run the innermost one, however it is left.
class RunLoop::RunningGuard {
  public:
    // The mutex is held.
    RunningGuard(RunLoop& loop, Activation& activation) : loop_(loop) {
        loop_.activations_.push_back(&activation);
    }
    RunningGuard(const RunningGuard&) = delete;
    RunningGuard& operator=(const RunningGuard&) = delete;
    ~RunningGuard() {
        const std::lock_guard lock(StructureMutex());
        loop_.activations_.pop_back();
    }

  private:
    RunLoop& loop_;
};

CFRunLoopRunResult RunLoop::Run(CFRunLoopMode modeName, CFTimeInterval seconds,
                                bool returnAfterSourceHandled) {
    std::unique_lock lock(StructureMutex());
    Mode* mode = modeName != nullptr ? FindMode(modeName) : nullptr;
    if (mode == nullptr || IsEmpty(*mode)) {
        return kCFRunLoopRunFinished;
    }
    Activation activation{mode};
    const RunningGuard running(*this, activation);
    lock.unlock();

    TellObservers(*mode, kCFRunLoopEntry);
    const CFRunLoopRunResult result =
        RunPasses(*mode, activation, seconds, returnAfterSourceHandled);
    TellObservers(*mode, kCFRunLoopExit);
    return result;
}

CFRunLoopRunResult RunLoop::RunPasses(Mode& mode, const Activation& activation,
                                      CFTimeInterval seconds, bool returnAfterSourceHandled) {
    const bool once = !(seconds > 0);
    const Instant deadline = once ? Now() : Later(Now(), Nanoseconds(seconds));
    for (;;) {
        const bool handled = Pass(mode, deadline, once, returnAfterSourceHandled);
        if (handled && returnAfterSourceHandled) {
            return kCFRunLoopRunHandledSource;
        }
        if (deadline <= Now()) {
            return kCFRunLoopRunTimedOut;
        }
        const std::lock_guard checking(StructureMutex());
        if (activation.stopped) {
            return kCFRunLoopRunStopped;
        }
        if (IsEmpty(mode)) {
            return kCFRunLoopRunFinished;
        }
    }
}

void RunLoop::RunUntil(CFRunLoopMode modeName, Instant deadline,
                       const std::function<bool()>& done) {
    if (IsCommonModes(modeName)) {
        return;
    }
    std::unique_lock lock(StructureMutex());
    Mode& mode = ModeNamed(modeName);
    Activation activation{&mode};
    const RunningGuard running(*this, activation);
    lock.unlock();
    bool over = done();
    while (!over) {
        TellObservers(mode, kCFRunLoopEntry);
        bool handled = false;
        while (!handled && !over) {
            handled = Pass(mode, deadline, deadline <= Now(), true);
            over = done() || deadline <= Now();
        }
        TellObservers(mode, kCFRunLoopExit);
    }
}

bool RunLoop::Pass(Mode& mode, Instant deadline, bool poll, bool onlyOneSource) {
    TellObservers(mode, kCFRunLoopBeforeTimers);
    TellObservers(mode, kCFRunLoopBeforeSources);
    const bool signalled = PerformSignalledSources(mode, onlyOneSource);
    const bool ready = WaitAndPerform(mode, deadline, poll || signalled);
    return signalled || ready;
}

// In a common mode, the system can always give work to the main thread's loop.
bool RunLoop::IsEmpty(const Mode& mode) const {
    return !(isMain_ && mode.common) && mode.timers.empty() &&
           std::none_of(mode.sources.begin(), mode.sources.end(),
                        [](const auto& source) { return source->OccupiesMode(); });
}

bool RunLoop::PerformSignalledSources(Mode& mode, bool onlyOne) {
    std::vector<Retained<SignalledSource>> signalled;
    {
        const std::lock_guard lock(StructureMutex());
        for (const auto& source : mode.sources) {
            if (source->IsSignalled()) {
                if (auto* candidate = dynamic_cast<SignalledSource*>(source.get())) {
                    signalled.emplace_back(candidate);
                }
            }
        }
    }
    std::stable_sort(signalled.begin(), signalled.end(), [](const auto& left, const auto& right) {
        return left->Order() < right->Order();
    });
    bool handled = false;
    for (const auto& source : signalled) {
        {
            const std::lock_guard lock(StructureMutex());
            if (!source->IsValid() || !source->TakeSignal()) {
                continue;
            }
        }
        source->Perform();
        handled = true;
        if (onlyOne) {
            break;
        }
    }
    return handled;
}

// A backlog and ready descriptors take turns, so that neither delays the other. A pass with
// a backlog goes to wait like any other, as it would for a message that lies in a Mach port.
bool RunLoop::WaitAndPerform(Mode& mode, Instant deadline, bool poll) {
    const auto backlogged = SourceWithBacklog(mode);
    const Instant until = backlogged ? Now() : deadline;
    mode.workedOffBacklog = backlogged && !mode.workedOffBacklog;
    std::optional<Poller::Readiness> readiness = poll ? mode.poller.Wait(0) : Wait(mode, until);
    FireTimers(mode);
    if (readiness && !mode.workedOffBacklog) {
        return PerformReady(mode, *readiness);
    }
    return backlogged && PerformBacklog(*backlogged);
}

// From the return of the last observer before the wait to the call of the first one after it, this
// takes no lock and neither allocates nor frees: an observer may have unblocked a signal whose
// handler uses the loop.
std::optional<Poller::Readiness> RunLoop::Wait(Mode& mode, Instant deadline) {
    const Observers before = ObserversOf(mode, kCFRunLoopBeforeWaiting);
    Observers after = ObserversOf(mode, kCFRunLoopAfterWaiting);
    Instant until = std::min(deadline, NextTimer(mode));
    const unsigned long revision = mode.revision;
    Tell(before, kCFRunLoopBeforeWaiting);
    if (mode.revision != revision) {
        after = ObserversOf(mode, kCFRunLoopAfterWaiting);
        until = std::min(deadline, NextTimer(mode));
    }
    const auto readiness = WaitUntil(mode, until);
    Tell(after, kCFRunLoopAfterWaiting);
    return readiness;
}

std::optional<Poller::Readiness> RunLoop::WaitUntil(Mode& mode, Instant until) {
    if (TestClockInstalled() && until != kNever) {
        const auto readiness = mode.poller.Wait(0);
        if (!readiness) {
            AdvanceTestClockTo(until);
        }
        return readiness;
    }
    waiting_ = true;
    const auto readiness = mode.poller.Wait(until == kNever ? kNever : until - Now());
    waiting_ = false;
    return readiness;
}

RunLoop::Observers RunLoop::ObserversOf(const Mode& mode, CFRunLoopActivity activity) {
    Observers interested;
    const std::lock_guard lock(StructureMutex());
    std::copy_if(mode.observers.begin(), mode.observers.end(), std::back_inserter(interested),
                 [activity](const auto& observer) { return observer->Wants(activity); });
    return interested;
}

void RunLoop::Tell(const Observers& observers, CFRunLoopActivity activity) {
    for (const auto& observer : observers) {
        observer->Call(activity);
    }
}

void RunLoop::TellObservers(const Mode& mode, CFRunLoopActivity activity) {
    Tell(ObserversOf(mode, activity), activity);
}

Instant RunLoop::NextTimer(const Mode& mode) {
    const std::lock_guard lock(StructureMutex());
    Instant next = kNever;
    for (const auto& timer : mode.timers) {
        next = std::min(next, timer->NextDue());
    }
    return next;
}

void RunLoop::FireTimers(Mode& mode) {
    std::vector<Retained<Timer>> due;
    const Instant now = Now();
    {
        const std::lock_guard lock(StructureMutex());
        for (const auto& timer : mode.timers) {
            if (timer->NextDue() <= now) {
                due.push_back(timer);
            }
        }
        std::stable_sort(due.begin(), due.end(), [](const auto& left, const auto& right) {
            return left->FireTime() < right->FireTime();
        });
    }
    for (const auto& timer : due) {
        timer->FireIfDue(mode, now);
    }
}

bool RunLoop::PerformReady(Mode& mode, const Poller::Readiness& readiness) {
    if (readiness.token == kWakeToken) {
        eventfd_t ignored = 0;
        eventfd_read(wake_.get(), &ignored);
        return false;
    }
    Retained<DescriptorSource> source;
    int descriptor = -1;
    {
        const std::lock_guard lock(StructureMutex());
        const auto watcher = mode.watchers.find(readiness.token);
        if (watcher == mode.watchers.end()) {
            return false;
        }
        source = Retained(watcher->second);
        descriptor = source->DescriptorOf(readiness.token);
    }
    return source->Perform(descriptor, readiness.events);
}

Retained<DescriptorSource> RunLoop::SourceWithBacklog(const Mode& mode) {
    const std::lock_guard lock(StructureMutex());
    for (const auto& source : mode.sources) {
        if (source->IsSignalled()) {
            if (auto* candidate = dynamic_cast<DescriptorSource*>(source.get())) {
                return Retained(candidate);
            }
        }
    }
    return {};
}

bool RunLoop::PerformBacklog(DescriptorSource& source) {
    {
        // A timer that fired in the meantime may have ended the source.
        const std::lock_guard lock(StructureMutex());
        if (!source.IsValid() || !source.IsSignalled()) {
            return false;
        }
    }
    return source.Perform(-1, 0);
}

void RunLoop::Stop() {
    {
        const std::lock_guard lock(StructureMutex());
        if (activations_.empty()) {
            return;
        }
        activations_.back()->stopped = true;
    }
    WakeUp();
}

// A loop that is awake on its own thread checks everything again before it waits.
void RunLoop::WakeUp() {
    if (!OnOwnThread()) {
        eventfd_write(wake_.get(), 1);
    }
}

CFRunLoopMode RunLoop::CopyCurrentMode() {
    const std::lock_guard lock(StructureMutex());
    return activations_.empty()
               ? nullptr
               : CFStringCreateCopy(kCFAllocatorDefault, activations_.back()->mode->name);
}

}  // namespace run_loop
