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
        for (const auto& [loop, mode] : std::exchange(placements_, {})) {
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

void Source::Placed(RunLoop& loop, Mode& mode) {
    placements_.push_back({&loop, &mode});
    Enter(mode);
}

void Source::Displaced(const Mode& mode) {
    std::erase_if(placements_,
                  [&mode](const Placement& placement) { return placement.mode == &mode; });
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
    for (const Watched& watch : watches_) {
        mode.watchers[watch.token] = this;
        mode.poller.Add(watch.descriptor, watch.events, watch.token);
    }
}

void DescriptorSource::Leave(Mode& mode) {
    for (const Watched& watch : watches_) {
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

void DescriptorSource::Watch(int descriptor, std::uint32_t events) {
    const auto watch = Find(descriptor);
    if (watch == watches_.end()) {
        const Watched added = watches_.emplace_back(Watched{descriptor, events, NextToken()});
        for (const Placement& placement : Placements()) {
            placement.mode->watchers[added.token] = this;
            placement.mode->poller.Add(descriptor, events, added.token);
        }
    } else if (watch->events != events) {
        watch->events = events;
        for (const Placement& placement : Placements()) {
            placement.mode->poller.Change(descriptor, events, watch->token);
        }
    }
}

void DescriptorSource::Unwatch(int descriptor) {
    const auto watch = Find(descriptor);
    if (watch == watches_.end()) {
        return;
    }
    for (const Placement& placement : Placements()) {
        placement.mode->watchers.erase(watch->token);
        placement.mode->poller.Remove(descriptor);
    }
    watches_.erase(watch);
}

int DescriptorSource::DescriptorOf(std::uint64_t token) const {
    const auto watch = std::find_if(watches_.begin(), watches_.end(),
                                    [token](const Watched& each) { return each.token == token; });
    return watch != watches_.end() ? watch->descriptor : -1;
}

std::vector<DescriptorSource::Watched>::iterator DescriptorSource::Find(int descriptor) {
    return std::find_if(watches_.begin(), watches_.end(), [descriptor](const Watched& each) {
        return each.descriptor == descriptor;
    });
}

void Watch(CFRunLoopSourceRef source, int descriptor, std::uint32_t events) {
    const std::lock_guard lock(StructureMutex());
    DescriptorSourceBehind(source).Watch(descriptor, events);
}

void Unwatch(CFRunLoopSourceRef source, int descriptor) {
    const std::lock_guard lock(StructureMutex());
    DescriptorSourceBehind(source).Unwatch(descriptor);
}

void SetBacklog(CFRunLoopSourceRef source, bool backlog) {
    const std::lock_guard lock(StructureMutex());
    DescriptorSourceBehind(source).SetSignalled(backlog);
}

}  // namespace run_loop
