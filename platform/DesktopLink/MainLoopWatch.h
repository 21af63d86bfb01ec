// Makes the main run loop call back, in its common modes, for whatever the connection to the
// desktop waits for. As with the system's own connections, it keeps a run of the loop going.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>

#include "platform/LocalSocket/Socket.h"

namespace desktop_link {

class MainLoopWatch {
  public:
    // `woken` returns whether it delivered anything. It may destroy the watch.
    explicit MainLoopWatch(std::function<bool()> woken);
    ~MainLoopWatch();
    MainLoopWatch(const MainLoopWatch&) = delete;
    MainLoopWatch& operator=(const MainLoopWatch&) = delete;

    // The descriptor is not owned, and is unwatched before it is closed.
    void Watch(int descriptor);
    void Unwatch(int descriptor);

    // Whether `woken` has more to deliver even if nothing arrives.
    void SetBacklog(bool backlog);

    // True when something happened in the session's folder since the last call.
    bool SessionFolderChanged();

  private:
    local_socket::Descriptor folder_;
    CFRunLoopSourceRef source_;
};

}  // namespace desktop_link
