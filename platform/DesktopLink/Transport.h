// How a process reaches the desktop. The socket transport is created on first use; unit
// tests replace it with a desktop model in their own process.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/DesktopLink/Messages.h"

namespace desktop_link {

class Transport {
  public:
    virtual ~Transport() = default;

    // Sends the request and waits for its reply, at most `timeout` seconds. Nothing when no reply
    // came (in time, or because the desktop died meanwhile) or no desktop runs; Unreachable() tells
    // the two apart.
    virtual std::optional<Reply> Exchange(const Request& request, double timeout) = 0;

    // True when the last exchange found no desktop.
    virtual bool Unreachable() const = 0;

    // Called on the main thread's run loop, once per notification, in order. Null: notifications
    // are dropped.
    virtual void SetNotificationHandler(std::function<void(const Notification&)> handler) = 0;
};

// The transport of this process. Never null. Main thread only.
Transport& CurrentTransport();

// Replaces the transport (tests); null goes back to the socket. Resets what the frameworks remember
// of the session (front application, time-out).
void SetTransport(std::unique_ptr<Transport> transport);

// Requests sent through CurrentTransport() since the process started, `hello` excluded.
unsigned long ExchangeCount();

}  // namespace desktop_link
