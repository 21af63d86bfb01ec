// Raw connections to the desktop that is served in the session.
#pragma once

#include <poll.h>
#include <sys/socket.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/DesktopLink/Framing.h"
#include "platform/LocalSocket/Frames.h"
#include "platform/LocalSocket/Socket.h"
#include "tests/unit/desktop/Client.h"

namespace desktop {

class SocketClient {
  public:
    SocketClient() : descriptor_(local_socket::Connect(desktop_link::kSocketName)) {}

    bool Connected() const { return static_cast<bool>(descriptor_); }

    void Send(std::uint32_t sequence, const Request& request) {
        SendPayload(desktop_link::MakePayload(desktop_link::FrameKind::request, sequence,
                                              desktop_link::Encode(request)));
    }
    void SendPayload(const std::vector<std::uint8_t>& payload) {
        auto status = writer_.Write(descriptor_.get(), payload);
        while (status == local_socket::FrameWriter::Status::pending && Wait(POLLOUT, 5000)) {
            status = writer_.Flush(descriptor_.get());
        }
    }

    void FinishSending() { shutdown(descriptor_.get(), SHUT_WR); }

    struct Received {
        desktop_link::FrameKind kind;
        std::uint32_t sequence;
        std::vector<std::uint8_t> message;
    };

    // Nothing when none arrived within the time, or the connection ended.
    std::optional<Received> Receive(int milliseconds = 5000) {
        while (!reader_.HasFrame()) {
            if (ended_ || !Wait(POLLIN, milliseconds)) {
                return std::nullopt;
            }
            ended_ = reader_.ReadFrom(descriptor_.get()) != local_socket::FrameReader::Status::open;
        }
        const auto frame = desktop_link::ParsePayload(*reader_.Next());
        return Received{
            frame->kind, frame->sequence, {frame->message.begin(), frame->message.end()}};
    }

    // Sends and takes the reply with that number; what comes before it is dropped.
    std::optional<Reply> Ask(const Request& request) {
        Send(++sequence_, request);
        while (const auto received = Receive()) {
            if (received->kind == desktop_link::FrameKind::reply &&
                received->sequence == sequence_) {
                return desktop_link::DecodeReply(received->message.data(),
                                                 received->message.size());
            }
        }
        return std::nullopt;
    }
    std::optional<Reply> Run(const json& command) {
        Request request;
        request.operation = Operation::script;
        request.text = command.dump();
        return Ask(request);
    }

    // True when the other side has closed the connection.
    bool Ended() {
        while (Receive()) {
        }
        return ended_;
    }

  private:
    bool Wait(short events, int milliseconds) {
        pollfd waiting{descriptor_.get(), events, 0};
        return poll(&waiting, 1, milliseconds) > 0;
    }

    local_socket::Descriptor descriptor_;
    local_socket::FrameReader reader_{desktop_link::kLargestPayload};
    local_socket::FrameWriter writer_;
    std::uint32_t sequence_ = 1000;
    bool ended_ = false;
};

}  // namespace desktop
