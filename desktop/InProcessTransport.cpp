#include "desktop/InProcessTransport.h"

#include <utility>

namespace desktop {

using desktop_link::Notification;
using desktop_link::Reply;
using desktop_link::Request;

InProcessTransport::InProcessTransport(Desktop& desktop, ClientId client)
    : desktop_(desktop),
      client_(client),
      subscription_(desktop.Subscribe([this](const Notification& notification) {
          waiting_.push_back(notification);
          if (wakeUp_) {
              wakeUp_();
          }
      })) {}

InProcessTransport::~InProcessTransport() {
    desktop_.Unsubscribe(subscription_);
}

std::optional<Reply> InProcessTransport::Exchange(const Request& request, double /*timeout*/) {
    const auto sent = desktop_link::Encode(request);
    const auto received = desktop_link::DecodeRequest(sent.data(), sent.size());
    const auto reply = received ? desktop_.Handle(client_, *received) : std::nullopt;
    if (!reply) {
        return std::nullopt;
    }
    const auto answered = desktop_link::Encode(*reply);
    return desktop_link::DecodeReply(answered.data(), answered.size());
}

void InProcessTransport::SetNotificationHandler(std::function<void(const Notification&)> handler) {
    handler_ = std::move(handler);
}

std::size_t InProcessTransport::DeliverNotifications() {
    const auto notifications = std::exchange(waiting_, {});
    for (const Notification& notification : notifications) {
        if (handler_) {
            handler_(notification);
        }
    }
    return notifications.size();
}

}  // namespace desktop
