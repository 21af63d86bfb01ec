// The descriptors that one mode of a run loop waits for, and the wait itself.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/CoreFoundation/RunLoop/RunLoopClock.h"
#include "platform/LocalSocket/Socket.h"

namespace run_loop {

class Poller {
  public:
    // What a descriptor is ready for (bits as in epoll(7)) and the number it was added with.
    struct Readiness {
        std::uint64_t token;
        std::uint32_t events;
    };

    Poller();

    // Takes effect for a wait in progress, too. Any thread.
    void Add(int descriptor, std::uint32_t events, std::uint64_t token);
    void Change(int descriptor, std::uint32_t events, std::uint64_t token);
    void Remove(int descriptor);

    // Waits until a descriptor is ready, at most `longest` nanoseconds (kNever: for ever), and
    // returns the one that has been ready for longest. Nothing when the time is over or a signal
    // arrived.
    std::optional<Readiness> Wait(std::int64_t longest);

  private:
    local_socket::Descriptor epoll_;
};

// Waits until the socket can be written to; false when it cannot at `deadline`. Runs nothing
// meanwhile. With a test clock the time passes at once.
bool WaitUntilWritable(int socket, Instant deadline);

// Waits until `until`; with a test clock, advances it to `last` at once.
void Sleep(Instant until, Instant last);

}  // namespace run_loop
