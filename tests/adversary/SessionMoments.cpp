#include "tests/adversary/SessionMoments.h"

#include <ApplicationServices/ApplicationServices.h>

#include <optional>
#include <utility>

namespace adversary {

using desktop_link::Operation;
using desktop_link::Reply;
using desktop_link::Request;

namespace {

bool HasEffect(const Request& request) {
    return request.operation == Operation::setAttribute ||
           request.operation == Operation::performAction;
}

// The reply of the process's application element, or of the system in its place.
std::optional<Reply> SignOfLife(desktop::Desktop& desktop, std::int32_t pid) {
    Request anything;
    anything.operation = Operation::attributeNames;
    anything.element.pid = pid;
    return desktop.Handle(0, anything);
}

}  // namespace

SessionMoments::SessionMoments(test_support::ScriptedDesktop& desktop,
                               std::function<void(unsigned moment)> happen)
    : desktop_(desktop), happen_(std::move(happen)) {
    desktop_->onRead = [this](const auto&, const auto&) { Pass(); };
    desktop_.onRequest = [this](const Request& request) {
        if (HasEffect(request)) {
            Pass();
        }
    };
    desktop_.onReply = [this](std::size_t, test_support::Exchange& exchange) {
        if (HasEffect(exchange.request)) {
            Pass();
            // An application that hangs by now does not reply.
            auto sign = SignOfLife(*desktop_, exchange.request.element.pid);
            if (!sign || sign->error == kAXErrorCannotComplete) {
                exchange.reply = std::move(sign);
            }
        }
    };
}

SessionMoments::~SessionMoments() {
    desktop_->onRead = nullptr;
    desktop_.onRequest = nullptr;
    desktop_.onReply = nullptr;
}

void SessionMoments::Pass() {
    ++count_;
    if (happen_) {
        happen_(count_);
    }
}

}  // namespace adversary
