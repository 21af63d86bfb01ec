// A client of the driver's port that speaks over the bare socket, so that it can do what no message
// port would: send half a request, many at once, or never read.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LocalSocket/Socket.h"

namespace test_support {

using Bytes = std::vector<std::uint8_t>;

class WireClient {
  public:
    // Connects to the driver of the session; Connected() is false when there is none.
    WireClient();
    bool Connected() const { return static_cast<bool>(socket_); }

    // The frame of a request, numbered `sequence`. `code` has four characters.
    static Bytes Request(std::string_view code, const Bytes& body, std::uint32_t sequence);

    // Sends what the socket takes without blocking; the number of bytes taken.
    std::size_t SendSome(std::span<const std::uint8_t> bytes);
    // Waits until everything is taken; false after `seconds` without progress.
    bool Send(std::span<const std::uint8_t> bytes, double seconds = 10);

    struct Reply {
        std::uint32_t sequence = 0;
        Bytes data;  // empty: no reply data
    };
    // The next reply; nothing when the driver closed the connection or `seconds` passed.
    std::optional<Reply> Receive(double seconds = 10);

    // The driver closed the connection, within `seconds`.
    bool Closed(double seconds = 10);

    void Close() { socket_.reset(); }

  private:
    bool WaitFor(short events, double seconds) const;

    local_socket::Descriptor socket_;
    local_socket::FrameReader reader_;
};

}  // namespace test_support
