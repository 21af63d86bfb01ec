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
        EXPECT_TRUE(SendPayload(desktop_link::MakePayload(
            desktop_link::FrameKind::request, sequence, desktop_link::Encode(request))));
    }

    // Sends the request under each of the numbers from 0 up to `count`, at one go: the kernel
    // charges each send for much more than its bytes, and the desktop stops reading from a client
    // whose answers pile up, so that separate sends could fill the socket.
    void SendRequests(std::uint32_t count, const Request& request) {
        const auto message = desktop_link::Encode(request);
        test_support::Bytes frames;
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto frame = test_support::Framed(
                desktop_link::MakePayload(desktop_link::FrameKind::request, i, message));
            frames.insert(frames.end(), frame.begin(), frame.end());
        }
        EXPECT_TRUE(SendBytes(frames));
    }

    struct Received {
        desktop_link::FrameKind kind;
        std::uint32_t sequence;
        std::vector<std::uint8_t> message;
    };

    // Nothing when none arrived within the time, or the connection ended.
    std::optional<Received> Receive(double seconds = test_support::kPatience) {
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
