#include "tests/support/SocketPeer.h"

#include <poll.h>
#include <sys/socket.h>

namespace test_support {

Bytes FrameStart(std::uint32_t length) {
    Bytes start;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        start.push_back(static_cast<std::uint8_t>(length >> shift));
    }
    return start;
}

Bytes Framed(std::span<const std::uint8_t> payload) {
    Bytes frame = FrameStart(static_cast<std::uint32_t>(payload.size()));
    frame.insert(frame.end(), payload.begin(), payload.end());
    return frame;
}

Bytes FramedMessage(const message_port::MessageHeader& header, std::span<const std::uint8_t> data) {
    const auto encoded = message_port::EncodeHeader(header);
    Bytes payload(encoded.begin(), encoded.end());
    payload.insert(payload.end(), data.begin(), data.end());
    return Framed(payload);
}

std::size_t SocketPeer::SendSome(std::span<const std::uint8_t> bytes) {
    const ssize_t count =
        send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool SocketPeer::SendBytes(std::span<const std::uint8_t> bytes, double seconds) {
    while (!bytes.empty()) {
        if (!WaitFor(POLLOUT, seconds)) {
            return false;
        }
        const std::size_t taken = SendSome(bytes);
        if (taken == 0) {
            return false;
        }
        bytes = bytes.subspan(taken);
    }
    return true;
}

std::optional<Bytes> SocketPeer::ReceivePayload(double seconds) {
    while (!reader_.HasFrame()) {
        if (ended_ || !WaitFor(POLLIN, seconds)) {
            return std::nullopt;
        }
        Read();
    }
    const auto payload = *reader_.Next();
    return Bytes(payload.begin(), payload.end());
}

bool SocketPeer::Ends(double seconds) {
    while (!ended_ && WaitFor(POLLIN, seconds)) {
        Read();
        while (reader_.Next()) {
        }
    }
    return ended_;
}

void SocketPeer::FinishSending() {
    shutdown(socket_.get(), SHUT_WR);
}

void SocketPeer::Read() {
    ended_ = reader_.ReadFrom(socket_.get()) != local_socket::FrameReader::Status::open;
}

bool SocketPeer::WaitFor(short events, double seconds) const {
    pollfd descriptor{socket_.get(), events, 0};
    return socket_ && poll(&descriptor, 1, static_cast<int>(seconds * 1000)) == 1;
}

}  // namespace test_support
