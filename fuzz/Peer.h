// The other end of a local socket, which sends what the input says.
#pragma once

#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "fuzz/Choices.h"
#include "platform/LocalSocket/Socket.h"

namespace fuzz {

class Peer {
  public:
    explicit Peer(local_socket::Descriptor socket) : socket_(std::move(socket)) {}

    bool IsOpen() const { return static_cast<bool>(socket_); }
    void Close() { socket_.reset(); }
    void EndSending() const { shutdown(socket_.get(), SHUT_WR); }

    // False when not all could be sent at once.
    bool Send(std::span<const std::uint8_t> bytes) const {
        return send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(bytes.size());
    }

    // What has arrived, at most 64 KiB. Empty when nothing has, and at the end.
    std::vector<std::uint8_t> Receive() const {
        static std::uint8_t buffer[std::size_t{64} << 10];
        const ssize_t count = recv(socket_.get(), buffer, sizeof buffer, MSG_DONTWAIT);
        return {buffer, buffer + (count > 0 ? count : 0)};
    }

  private:
    local_socket::Descriptor socket_;
};

// A frame as the sockets carry it: its length, then the payload.
inline std::vector<std::uint8_t> Framed(std::span<const std::uint8_t> payload) {
    std::vector<std::uint8_t> frame;
    for (int shift = 0; shift < 32; shift += 8) {
        frame.push_back(static_cast<std::uint8_t>(payload.size() >> shift));
    }
    frame.insert(frame.end(), payload.begin(), payload.end());
    return frame;
}

// The frame with something wrong in it: a bit, its length, its end.
inline std::vector<std::uint8_t> Damaged(std::vector<std::uint8_t> frame, Choices& choices) {
    const std::uint8_t place = choices.Byte();
    switch (choices.Byte() % 4) {
        case 0:
            frame.resize(frame.size() - place % frame.size());
            break;
        case 1:
            frame[place % 4U] = choices.Byte();
            break;
        default:
            frame[place % frame.size()] ^= static_cast<std::uint8_t>(1U << choices.Byte() % 8);
            break;
    }
    return frame;
}

}  // namespace fuzz
