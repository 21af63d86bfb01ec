// The transport of a real process: one connection to the desktop's socket, made at the first call.
//
// While no desktop runs, every call tries to connect (which costs a system call or two); so does
// the main run loop, when notifications are wanted, whenever a socket appears in the session's
// folder. Main thread only.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/DesktopLink/Connection.h"
#include "platform/DesktopLink/MainLoopWatch.h"
#include "platform/DesktopLink/Transport.h"

namespace desktop_link {

class SocketTransport final : public Transport {
  public:
    explicit SocketTransport(std::string_view socketName = kSocketName);
    ~SocketTransport() override;

    // In the normal case one send, one wait and one receive. A first exchange sends `hello` before
    // its request, without waiting between the two.
    std::optional<Reply> Exchange(const Request& request, double timeout) override;
    bool Unreachable() const override { return unreachable_; }
    void SetNotificationHandler(std::function<void(const Notification&)> handler) override;

  private:
    bool Connect();
    void ReportPlanted();
    void Disconnect();

    // 0 when it could not be sent.
    std::uint32_t Send(const Request& request, Deadline deadline);
    std::optional<Reply> Await(std::uint32_t sequence, Deadline deadline);
    std::optional<Reply> AwaitSession(Deadline deadline);

    // Takes every frame received so far; returns the reply to `sequence` when it is among them.
    // Disconnects from a desktop that sends anything but well-formed frames.
    std::optional<Reply> TakeReceived(std::uint32_t sequence);
    bool Take(const Frame& frame, std::uint32_t sequence, std::optional<Reply>& awaited);
    void TakeSession(const Reply& reply);

    // Passes a new front application on to the main run loop.
    void Queue(const std::optional<Application>& front);
    void AnnounceIfNews(const std::optional<Application>& front);

    // Whether a notification was delivered: one at a time, as each is a separate event.
    bool MainLoopWoke();
    bool DeliverNotification();

    std::string socketName_;
    std::string reported_;  // what was last logged as being in the socket's place
    std::optional<Connection> connection_;
    bool unreachable_ = false;
    std::uint32_t lastSequence_ = 0;
    std::uint32_t helloSequence_ = 0;  // 0: answered, or not sent
    std::optional<Session> session_;   // of this connection; its front application as delivered

    // The front application that this process was last told of, or is about to be; nothing before
    // the first hello.
    std::optional<std::optional<Application>> told_;

    std::function<void(const Notification&)> handler_;
    std::deque<Notification> undelivered_;
    std::unique_ptr<MainLoopWatch> watch_;  // while there is a handler
};

}  // namespace desktop_link
