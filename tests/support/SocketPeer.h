// One end of a connection of the session, for tests. It can do what no product code would: send
// half a frame, bytes that are no frame, or never read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/CoreFoundation/MessagePort/MessageFrame.h"
#include "platform/LocalSocket/Socket.h"
#include "tests/support/Patience.h"

namespace test_support {

using Bytes = std::vector<std::uint8_t>;

// How a frame begins: with the length of its payload in 4 bytes, the least significant one first.
// Not by the product's own function: the tests hold both sides to these bytes.
Bytes FrameStart(std::uint32_t length);

// A whole frame: its start, then the payload.
Bytes Framed(std::span<const std::uint8_t> payload);

// The frame of a message between ports.
Bytes FramedMessage(const message_port::MessageHeader& header, std::span<const std::uint8_t> data);

class SocketPeer {
  public:
    // Connects to the listener of that name; Connected() is false when there is none.
    explicit SocketPeer(std::string_view name) : SocketPeer(local_socket::Connect(name)) {}
    // Takes over a connection, or none.
    explicit SocketPeer(local_socket::Descriptor socket) : socket_(std::move(socket)) {}

    bool Connected() const { return static_cast<bool>(socket_); }

    // Sends what the socket takes without blocking; the number of bytes taken.
    std::size_t SendSome(std::span<const std::uint8_t> bytes);
    // Waits until everything is taken; false after `seconds` without progress, or when the other
    // side has closed the connection.
    bool SendBytes(std::span<const std::uint8_t> bytes, double seconds = kPatience);
    bool SendPayload(std::span<const std::uint8_t> payload) { return SendBytes(Framed(payload)); }

    // The payload of the next frame; nothing when the connection has ended or `seconds` passed.
    std::optional<Bytes> ReceivePayload(double seconds = kPatience);

    // Whether the other side closes the connection within `seconds`, or has closed it. Frames that
    // come before are dropped.
    bool Ends(double seconds = kPatience);

    // The other side reads the end of the stream, while this one still receives.
    void FinishSending();
    void Close() { socket_.reset(); }

  protected:
    int Descriptor() const { return socket_.get(); }

  private:
    bool WaitFor(short events, double seconds) const;
    void Read();

    local_socket::Descriptor socket_;
    local_socket::FrameReader reader_{std::numeric_limits<std::uint32_t>::max()};
    bool ended_ = false;
};

}  // namespace test_support
