// Frames and connections that keep to no rules, for tests of both ends of a port.
#pragma once

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <string>

#include "tests/support/SocketPeer.h"
#include "tests/support/WaitUntil.h"

namespace message_port_test {

using message_port::MessageHeader;

inline std::string TextOf(const test_support::Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

inline test_support::Bytes BytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

inline std::string Frame(const std::string& payload) {
    return TextOf(test_support::Framed(BytesOf(payload)));
}

inline std::string MessageFrame(MessageHeader::Kind kind, std::uint32_t sequence,
                                const std::string& data, bool wantsReply = true) {
    return TextOf(test_support::FramedMessage({kind, wantsReply, 1, sequence}, BytesOf(data)));
}

inline std::string Request(std::uint32_t sequence, const std::string& data) {
    return MessageFrame(MessageHeader::Kind::request, sequence, data);
}

// The far end of a connection.
class RawPeer : public test_support::SocketPeer {
  public:
    using SocketPeer::SocketPeer;

    // The number of bytes that were taken.
    std::size_t Send(const std::string& bytes) { return SendSome(BytesOf(bytes)); }

    std::string Received() {
        std::string bytes;
        char buffer[4096];
        ssize_t count = 0;
        while ((count = read(Descriptor(), buffer, sizeof buffer)) > 0) {
            bytes.append(buffer, static_cast<std::size_t>(count));
        }
        disconnected_ = count == 0 || errno != EAGAIN;
        return bytes;
    }

    // Until bytes have come and no more are coming: the sender waits for room.
    void WaitUntilFull() const {
        using Clock = std::chrono::steady_clock;
        int before = 0;
        Clock::time_point changed;
        test_support::WaitUntil([&] {
            int waiting = 0;
            ioctl(Descriptor(), FIONREAD, &waiting);
            if (waiting != before) {
                before = waiting;
                changed = Clock::now();
            }
            return waiting > 0 && Clock::now() - changed > std::chrono::milliseconds(20);
        });
    }

    bool IsDisconnected() {
        Received();
        return disconnected_;
    }

  private:
    bool disconnected_ = false;
};

}  // namespace message_port_test
