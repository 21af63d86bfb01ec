// A raw connection to the desktop that is served in the session.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/DesktopLink/Framing.h"
#include "tests/support/SocketPeer.h"
#include "tests/unit/desktop/Client.h"

namespace desktop {

class SocketClient : public test_support::SocketPeer {
  public:
    SocketClient() : SocketPeer(desktop_link::kSocketName) {}

    void SendRequest(std::uint32_t sequence, const Request& request) {
        SendPayload(desktop_link::MakePayload(desktop_link::FrameKind::request, sequence,
                                              desktop_link::Encode(request)));
    }

    struct Received {
        desktop_link::FrameKind kind;
        std::uint32_t sequence;
        std::vector<std::uint8_t> message;
    };

    // Nothing when none arrived within the time, or the connection ended.
    std::optional<Received> Receive(double seconds = 5) {
        const auto payload = ReceivePayload(seconds);
        if (!payload) {
            return std::nullopt;
        }
        const auto frame = desktop_link::ParsePayload(*payload);
        return Received{
            frame->kind, frame->sequence, {frame->message.begin(), frame->message.end()}};
    }

    // Sends and takes the reply with that number; what comes before it is dropped.
    std::optional<Reply> Ask(const Request& request) {
        SendRequest(++sequence_, request);
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

  private:
    std::uint32_t sequence_ = 1000;
};

}  // namespace desktop
