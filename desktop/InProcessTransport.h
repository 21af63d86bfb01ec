// A desktop in this process in place of the socket: for unit tests.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "desktop/Desktop.h"
#include "platform/DesktopLink/Transport.h"

namespace desktop {

// The desktop must outlive the transport. Every request and reply goes through the codec, so that
// what cannot travel does not arrive here either.
class InProcessTransport : public desktop_link::Transport {
  public:
    explicit InProcessTransport(Desktop& desktop, ClientId client = 1);
    ~InProcessTransport() override;
    InProcessTransport(const InProcessTransport&) = delete;
    InProcessTransport& operator=(const InProcessTransport&) = delete;

    // A hung application is reported as timed out at once, whatever the time-out.
    std::optional<desktop_link::Reply> Exchange(const desktop_link::Request& request,
                                                double timeout) override;
    bool Unreachable() const override { return false; }
    void SetNotificationHandler(
        std::function<void(const desktop_link::Notification&)> handler) override;

    // Passes the waiting notifications to the handler, in order; returns how many. Call it on the
    // main thread.
    std::size_t DeliverNotifications();

    // Called when a notification is queued: the place to have DeliverNotifications called from
    // the main run loop.
    void SetWakeUp(std::function<void()> wakeUp) { wakeUp_ = std::move(wakeUp); }

  private:
    Desktop& desktop_;
    ClientId client_;
    int subscription_;
    std::vector<desktop_link::Notification> waiting_;
    std::function<void(const desktop_link::Notification&)> handler_;
    std::function<void()> wakeUp_;
};

}  // namespace desktop
