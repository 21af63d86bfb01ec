#include "platform/DesktopLink/MainLoopWatch.h"

#include <fmt/format.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <utility>

#include "platform/CoreFoundation/RunLoop/RunLoopDescriptorSource.h"
#include "platform/LocalSocket/SessionDirectory.h"

namespace desktop_link {

namespace {

// A folder that is refused is not watched; connecting through it fails with the same reason.
local_socket::Descriptor WatchSessionFolder() {
    std::string problem;
    const local_socket::Descriptor folder =
        local_socket::OpenSessionDirectory(local_socket::IfMissing::make, &problem);
    local_socket::Descriptor watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    const std::string path = fmt::format("/proc/self/fd/{}", folder.get());
    // A listener gets its name only once it listens.
    if (!folder || inotify_add_watch(watch.get(), path.c_str(), IN_CREATE | IN_MOVED_TO) < 0) {
        return {};
    }
    return watch;
}

}  // namespace

MainLoopWatch::MainLoopWatch(std::function<bool()> woken)
    : folder_(WatchSessionFolder()),
      source_(run_loop::CreateDescriptorSource(
          0, run_loop::Presence::occupiesMode,
          [woken = std::move(woken)](int, std::uint32_t) { return woken(); })) {
    if (folder_) {
        Watch(folder_.get());
    }
    CFRunLoopAddSource(CFRunLoopGetMain(), source_, kCFRunLoopCommonModes);
}

MainLoopWatch::~MainLoopWatch() {
    CFRunLoopSourceInvalidate(source_);
    CFRelease(source_);
}

void MainLoopWatch::Watch(int descriptor) {
    run_loop::Watch(source_, descriptor, EPOLLIN);
}

void MainLoopWatch::Unwatch(int descriptor) {
    run_loop::Unwatch(source_, descriptor);
}

void MainLoopWatch::SetBacklog(bool backlog) {
    run_loop::SetBacklog(source_, backlog);
}

bool MainLoopWatch::SessionFolderChanged() {
    std::array<char, 4096> events;
    bool changed = false;
    while (folder_ && read(folder_.get(), events.data(), events.size()) > 0) {
        changed = true;
    }
    return changed;
}

}  // namespace desktop_link
