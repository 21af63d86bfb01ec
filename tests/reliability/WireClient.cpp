#include "tests/reliability/WireClient.h"

#include <poll.h>
#include <sys/socket.h>

#include "platform/CoreFoundation/MessagePort/MessageFrame.h"

namespace test_support {

namespace {

using message_port::MessageHeader;

std::int32_t CodeOf(std::string_view code) {
    std::uint32_t value = 0;
    for (const char character : code) {
        value = value << 8 | static_cast<unsigned char>(character);
    }
    return static_cast<std::int32_t>(value);
}

}  // namespace

WireClient::WireClient()
    : socket_(local_socket::Connect("KRT9Background")),
      reader_(message_port::kHeaderSize + message_port::kLargestData) {}

Bytes WireClient::Request(std::string_view code, const Bytes& body, std::uint32_t sequence) {
    const auto header = message_port::EncodeHeader(
        {MessageHeader::Kind::request, /*wantsReply=*/true, CodeOf(code), sequence});
    const std::size_t length = header.size() + body.size();
    Bytes frame;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        frame.push_back(static_cast<std::uint8_t>(length >> shift));
    }
    frame.insert(frame.end(), header.begin(), header.end());
    frame.insert(frame.end(), body.begin(), body.end());
    return frame;
}

std::size_t WireClient::SendSome(std::span<const std::uint8_t> bytes) {
    const ssize_t count =
        send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool WireClient::Send(std::span<const std::uint8_t> bytes, double seconds) {
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

std::optional<WireClient::Reply> WireClient::Receive(double seconds) {
    std::optional<std::span<const std::uint8_t>> payload;
    while (!(payload = reader_.Next())) {
        if (!WaitFor(POLLIN, seconds) ||
            reader_.ReadFrom(socket_.get()) != local_socket::FrameReader::Status::open) {
            payload = reader_.Next();
            break;
        }
    }
    const auto message =
        payload ? message_port::DecodeMessage(*payload) : std::optional<message_port::Message>();
    if (!message || message->header.kind != MessageHeader::Kind::reply) {
        return std::nullopt;
    }
    return Reply{message->header.sequence, Bytes(message->data.begin(), message->data.end())};
}

bool WireClient::Closed(double seconds) {
    local_socket::FrameReader::Status status = local_socket::FrameReader::Status::open;
    while (status == local_socket::FrameReader::Status::open && WaitFor(POLLIN, seconds)) {
        status = reader_.ReadFrom(socket_.get());
    }
    return status == local_socket::FrameReader::Status::closed;
}

bool WireClient::WaitFor(short events, double seconds) const {
    pollfd descriptor{socket_.get(), events, 0};
    return socket_ && poll(&descriptor, 1, static_cast<int>(seconds * 1000)) == 1;
}

}  // namespace test_support
