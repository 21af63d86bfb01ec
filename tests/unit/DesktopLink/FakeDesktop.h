// A desktop's end of the socket, on a separate thread, that does what a script says, including
// anything that a real one would never do.
#pragma once

#include <poll.h>

#include <functional>
#include <future>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/DesktopLink/Framing.h"
#include "platform/DesktopLink/Messages.h"
#include "platform/LocalSocket/Socket.h"
#include "tests/support/SocketPeer.h"

namespace desktop_link {

class FakeDesktop {
  public:
    struct Received {
        std::uint32_t sequence = 0;
        Request request;
    };

    // Listens when the constructor returns; the script runs on the thread. A script that waits for
    // what never comes ends after a few seconds with an exception that Finish() passes on.
    explicit FakeDesktop(std::function<void(FakeDesktop&)> script) : listener_(Listen()) {
        std::packaged_task<void()> task([this, script = std::move(script)] { script(*this); });
        finished_ = task.get_future();
        thread_ = std::thread(std::move(task));
    }
    FakeDesktop(const FakeDesktop&) = delete;
    FakeDesktop& operator=(const FakeDesktop&) = delete;
    ~FakeDesktop() { thread_.join(); }

    // Waits for the script's end.
    void Finish() { finished_.get(); }

    // --- for scripts ---

    void Accept() {
        pollfd waiting{listener_->descriptor(), POLLIN, 0};
        if (poll(&waiting, 1, static_cast<int>(test_support::kPatience * 1000)) != 1) {
            throw std::runtime_error("no client connected");
        }
        client_.emplace(listener_->Accept());
    }

    Received Receive() {
        const auto payload = client_->ReceivePayload(test_support::kPatience);
        if (!payload) {
            throw std::runtime_error("the client sent no request");
        }
        const auto frame = ParsePayload(*payload);
        auto request = DecodeRequest(frame->message.data(), frame->message.size());
        return {frame->sequence, request.value()};
    }

    // Accepts, and answers hello.
    void Greet(const Session& session = {}) {
        Accept();
        const Received hello = Receive();
        if (hello.request.operation != Operation::hello) {
            throw std::runtime_error("the first request of the connection is not hello");
        }
        Reply reply;
        reply.session = session;
        Send(hello.sequence, reply);
    }

    void Send(std::uint32_t sequence, const Reply& reply) {
        SendPayload(MakePayload(FrameKind::reply, sequence, Encode(reply)));
    }

    void Send(const Notification& notification) {
        SendPayload(MakePayload(FrameKind::notification, 0, Encode(notification)));
    }

    void SendPayload(std::span<const std::uint8_t> payload) { client_->SendPayload(payload); }

    void SendBytes(std::span<const std::uint8_t> bytes) {
        if (!client_->SendBytes(bytes)) {
            throw std::runtime_error("the client went away");
        }
    }

    // Whether the client has closed the connection, waiting for it if need be.
    bool ClientHangsUp() { return client_->Ends(test_support::kPatience); }

    void HangUp() { client_->Close(); }

    void StopListening() { listener_.reset(); }

  private:
    static local_socket::Listener Listen() {
        std::string problem;
        auto listener = local_socket::Listener::Create(kSocketName, nullptr, &problem);
        if (!listener) {
            throw std::runtime_error("cannot listen: " + problem);
        }
        return std::move(*listener);
    }

    std::optional<local_socket::Listener> listener_;
    std::optional<test_support::SocketPeer> client_;
    std::future<void> finished_;
    std::thread thread_;
};

}  // namespace desktop_link
