#include "platform/CoreFoundation/RunLoop/RunLoopSource.h"

#include <algorithm>
#include <atomic>

#include "platform/CoreFoundation/RunLoop/RunLoop.h"
#include "platform/CoreFoundation/RunLoop/RunLoopDescriptorSource.h"

namespace run_loop {
namespace {

DescriptorSource& DescriptorSourceBehind(CFRunLoopSourceRef source) {
    return dynamic_cast<DescriptorSource&>(
        core_foundation::Implementation<Source>(source, __func__));
}

std::uint64_t NextToken() {
    static std::atomic<std::uint64_t> last = 0;  // 0 is the loop's own
    return ++last;
}

}  // namespace

void Source::Invalidate() {
    struct Departure {
        Retained<RunLoop> loop;
        CFRunLoopMode mode;
    };
    std::vector<Departure> departures;
    std::vector<Retained<Source>> withdrawn;
    {
        const std::lock_guard lock(StructureMutex());
        if (!valid_) {
            return;
        }
        valid_ = false;
        for (const auto& [loop, mode] : std::exchange(placements, {})) {
            withdrawn.push_back(loop->Withdraw(*this, *mode));
            withdrawn.push_back(loop->WithdrawCommonItem(*this));
            if (loop->TryRetain()) {
                departures.push_back({Retained<RunLoop>::Adopt(loop), mode->name});
            }
        }
    }
    for (const auto& departure : departures) {
        Cancelled(*departure.loop, departure.mode);
    }
    Invalidated();
}

SignalledSource::SignalledSource(CFIndex order, const CFRunLoopSourceContext& context)
    : Source(order), context_(context) {
    if (context_.retain != nullptr) {
        context_.retain(context_.info);
    }
}

void SignalledSource::Perform() {
    if (context_.perform != nullptr) {
        context_.perform(context_.info);
    }
}

void SignalledSource::Scheduled(RunLoop& loop, CFRunLoopMode mode) {
    if (context_.schedule != nullptr) {
        context_.schedule(context_.info, loop.Ref(), mode);
    }
}

void SignalledSource::Cancelled(RunLoop& loop, CFRunLoopMode mode) {
    if (context_.cancel != nullptr) {
        context_.cancel(context_.info, loop.Ref(), mode);
    }
}

void SignalledSource::Invalidated() {
    if (context_.release != nullptr) {
        context_.release(context_.info);
    }
}

void DescriptorSource::Enter(Mode& mode) {
    for (const auto& watch : watches) {
        mode.watchers[watch.token] = this;
        mode.poller.Add(watch.descriptor, watch.events, watch.token);
    }
}

void DescriptorSource::Leave(Mode& mode) {
    for (const auto& watch : watches) {
        mode.watchers.erase(watch.token);
        mode.poller.Remove(watch.descriptor);
    }
}

CFRunLoopSourceRef CreateDescriptorSource(CFIndex order, Presence presence,
                                          ReadinessHandler handler) {
    return Retained<DescriptorSource>::Adopt(
               new DescriptorSource(order, presence == Presence::occupiesMode, std::move(handler)))
        .HandOver()
        ->Ref();
}

void Watch(CFRunLoopSourceRef sourceRef, int descriptor, std::uint32_t events) {
    DescriptorSource& source = DescriptorSourceBehind(sourceRef);
    const std::lock_guard lock(StructureMutex());
    const auto watch = std::find_if(source.watches.begin(), source.watches.end(),
                                    [&](const auto& w) { return w.descriptor == descriptor; });
    if (watch == source.watches.end()) {
        source.watches.push_back({descriptor, events, NextToken()});
        for (const auto& placement : source.placements) {
            placement.mode->watchers[source.watches.back().token] = &source;
            placement.mode->poller.Add(descriptor, events, source.watches.back().token);
        }
    } else if (watch->events != events) {
        watch->events = events;
        for (const auto& placement : source.placements) {
            placement.mode->poller.Change(descriptor, events, watch->token);
        }
    }
}

void Unwatch(CFRunLoopSourceRef sourceRef, int descriptor) {
    DescriptorSource& source = DescriptorSourceBehind(sourceRef);
    const std::lock_guard lock(StructureMutex());
    const auto watch = std::find_if(source.watches.begin(), source.watches.end(),
                                    [&](const auto& w) { return w.descriptor == descriptor; });
    if (watch == source.watches.end()) {
        return;
    }
    for (const auto& placement : source.placements) {
        placement.mode->watchers.erase(watch->token);
        placement.mode->poller.Remove(descriptor);
    }
    source.watches.erase(watch);
}

void SetBacklog(CFRunLoopSourceRef sourceRef, bool backlog) {
    DescriptorSource& source = DescriptorSourceBehind(sourceRef);
    const std::lock_guard lock(StructureMutex());
    source.signalled = backlog;
}

}  // namespace run_loop
