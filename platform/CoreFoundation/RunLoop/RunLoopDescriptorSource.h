// A kind of run-loop source that is performed when a descriptor is ready. For the platform layer's
// own connections; not available to drivers.
#pragma once

#include <CoreFoundation/CFRunLoop.h>
#include <sys/epoll.h>

#include <cstdint>
#include <functional>

namespace run_loop {

enum class Presence {
    occupiesMode,  // a mode with this source has something to wait for, as with any source
    unnoticed,     // a run finishes as if the source were not there
};

// Called on the thread of the loop, once for every pass in which a watched descriptor is ready; it
// may find nothing there, since the nested run of a callback may have been faster. `events` are
// those of epoll(7). The descriptor is -1 when the call is for the source's backlog. Returns
// whether this counts as a handled source for CFRunLoopRunInMode.
using ReadinessHandler = std::function<bool(int descriptor, std::uint32_t events)>;

// The caller owns the source, adds it to modes with CFRunLoopAddSource and ends it with
// CFRunLoopSourceInvalidate. The handler lives as long as the source.
CFRunLoopSourceRef CreateDescriptorSource(CFIndex order, Presence presence,
                                          ReadinessHandler handler);

// Watches a descriptor for EPOLLIN, EPOLLOUT or both, or for hang-up and errors alone when `events`
// is 0; or changes what it is watched for. A descriptor belongs to one source, and is unwatched
// before it is closed. Any thread.
void Watch(CFRunLoopSourceRef source, int descriptor, std::uint32_t events);
void Unwatch(CFRunLoopSourceRef source, int descriptor);

// Marks the source as having work left that no descriptor announces. The loop then does not wait
// and calls the handler in turn with ready descriptors until there is no backlog.
void SetBacklog(CFRunLoopSourceRef source, bool backlog);

}  // namespace run_loop
