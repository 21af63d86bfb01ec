// Frames and connections that keep to no rules, for tests of both ends of a port.
#pragma once

#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <string>

#include "platform/CoreFoundation/MessagePort/MessageFrame.h"
#include "platform/LocalSocket/Socket.h"
#include "tests/support/WaitUntil.h"

namespace message_port_test {

using message_port::MessageHeader;

inline std::string LittleEndian(std::uint32_t value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) {
        bytes += static_cast<char>(value >> (8 * i));
    }
    return bytes;
}

inline std::string Frame(const std::string& payload) {
    return LittleEndian(static_cast<std::uint32_t>(payload.size())) + payload;
}

inline std::string MessageFrame(MessageHeader::Kind kind, std::uint32_t sequence,
                                const std::string& data, bool wantsReply = true) {
    const auto header = message_port::EncodeHeader({kind, wantsReply, 1, sequence});
    return Frame(std::string(header.begin(), header.end()) + data);
}

inline std::string Request(std::uint32_t sequence, const std::string& data) {
    return MessageFrame(MessageHeader::Kind::request, sequence, data);
}

// The far end of a connection.
class RawPeer {
  public:
    explicit RawPeer(const std::string& name) : socket_(local_socket::Connect(name)) {}
    explicit RawPeer(local_socket::Descriptor socket) : socket_(std::move(socket)) {}

    // The number of bytes that were taken.
    std::size_t Send(const std::string& bytes) {
        const ssize_t count =
            send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        return count > 0 ? static_cast<std::size_t>(count) : 0;
    }

    std::string Received() {
        std::string bytes;
        char buffer[4096];
        ssize_t count = 0;
        while ((count = read(socket_.get(), buffer, sizeof buffer)) > 0) {
            bytes.append(buffer, static_cast<std::size_t>(count));
        }
        ended_ = count == 0 || errno != EAGAIN;
        return bytes;
    }

    // Until bytes have come and no more are coming: the sender waits for room.
    void WaitUntilFull() const {
        using Clock = std::chrono::steady_clock;
        int before = 0;
        Clock::time_point changed;
        test_support::WaitUntil([&] {
            int waiting = 0;
            ioctl(socket_.get(), FIONREAD, &waiting);
            if (waiting != before) {
                before = waiting;
                changed = Clock::now();
            }
            return waiting > 0 && Clock::now() - changed > std::chrono::milliseconds(20);
        });
    }

    bool IsDisconnected() {
        Received();
        return ended_;
    }

    void FinishSending() { shutdown(socket_.get(), SHUT_WR); }
    void Close() { socket_.reset(); }

  private:
    local_socket::Descriptor socket_;
    bool ended_ = false;
};

}  // namespace message_port_test
