// One connection to the desktop's socket: frames out, frames in, each with a deadline.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "platform/DesktopLink/Framing.h"
#include "platform/LocalSocket/Socket.h"

namespace desktop_link {

using Deadline = std::chrono::steady_clock::time_point;

// Never more than a day ahead; now for anything that is not a positive number.
Deadline DeadlineAfter(double seconds);

class Connection {
  public:
    // Nothing when there is no listener.
    static std::optional<Connection> Open(std::string_view name);

    int descriptor() const { return socket_.get(); }

    enum class Outcome { done, late, closed };

    // Sends one frame whose payload is `head` and then `rest`. `late`: the desktop doesn't read.
    // What was not sent by then is sent before the next frame, so that the stream stays whole;
    // nothing more is queued meanwhile.
    Outcome Send(std::span<const std::uint8_t> head, std::span<const std::uint8_t> rest,
                 Deadline deadline);

    // The next payload that has been received, without waiting or reading; valid until the next
    // call.
    std::optional<std::span<const std::uint8_t>> Next() { return reader_.Next(); }

    // Reads what is there. `closed` also for a peer that announces too large a frame.
    Outcome Read();

    // Waits for something to read, then reads it.
    Outcome WaitAndRead(Deadline deadline);

  private:
    explicit Connection(local_socket::Descriptor socket);

    bool WaitFor(short events, Deadline deadline) const;

    local_socket::Descriptor socket_;
    local_socket::FrameReader reader_;
    local_socket::FrameWriter writer_;
};

}  // namespace desktop_link
