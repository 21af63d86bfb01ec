#include "tests/support/ScriptedDesktop.h"

#include <stdexcept>
#include <utility>

#include "platform/DesktopLink/Transport.h"

namespace test_support {

using desktop_link::Notification;
using desktop_link::Reply;
using desktop_link::Request;

class ScriptedDesktop::Link final : public desktop_link::Transport {
  public:
    explicit Link(ScriptedDesktop& desktop) : desktop_(desktop) {}

    std::optional<Reply> Exchange(const Request& request, double timeout) override {
        return desktop_.Answer(request, timeout);
    }

    bool Unreachable() const override { return !desktop_.reachable; }

    void SetNotificationHandler(std::function<void(const Notification&)> handler) override {
        desktop_.handler_ = handler;
        desktop_.transport_->SetNotificationHandler(std::move(handler));
    }

  private:
    ScriptedDesktop& desktop_;
};

ScriptedDesktop::ScriptedDesktop(const std::string& scene) {
    Load(scene);
    remembers_ = false;
    desktop_link::SetTransport(std::make_unique<Link>(*this));
}

ScriptedDesktop::ScriptedDesktop(Script script) : ScriptedDesktop() {
    Restart();
    replyInstead = std::move(script);
}

ScriptedDesktop::~ScriptedDesktop() {
    desktop_link::SetTransport(nullptr);
}

void ScriptedDesktop::Load(const std::string& scene) {
    transport_.reset();
    desktop_.reset();  // it removes its bundles before the next one makes others in their place
    desktop_ = std::make_unique<desktop::Desktop>(
        scene, desktop::DesktopOptions{.bundleFolder = bundles_.Path().string()});
    transport_ = std::make_unique<desktop::InProcessTransport>(*desktop_);
    transport_->SetNotificationHandler(handler_);
    Restart();
}

std::string ScriptedDesktop::Run(const std::string& command) {
    std::string answer = RunUnnoticed(command);
    DeliverNotifications();
    return answer;
}

std::string ScriptedDesktop::RunUnnoticed(const std::string& command) {
    std::string answer = desktop_->Run(command);
    if (answer.starts_with(R"({"error")")) {
        throw std::invalid_argument(command + ": " + answer);
    }
    return answer;
}

void ScriptedDesktop::DeliverNotifications() {
    transport_->DeliverNotifications();
}

void ScriptedDesktop::Deliver(const Notification& notification) {
    if (handler_) {
        handler_(notification);
    }
}

void ScriptedDesktop::Restart() {
    onRequest = nullptr;
    replyInstead = nullptr;
    onReply = nullptr;
    exchanges_.clear();
    count_ = 0;
    remembers_ = true;
}

std::optional<Reply> ScriptedDesktop::Answer(const Request& request, double timeout) {
    if (!reachable) {
        return std::nullopt;
    }
    if (request.operation == desktop_link::Operation::hello) {
        std::optional<Reply> reply = transport_->Exchange(request, timeout);
        if (onHello) {
            onHello(*reply);
        }
        return reply;
    }
    if (onRequest) {
        onRequest(request);
    }
    Exchange exchange{request, {}, timeout};
    exchange.reply = replyInstead ? replyInstead(request) : transport_->Exchange(request, timeout);
    if (onReply) {
        onReply(count_, exchange);
    }
    ++count_;
    if (remembers_) {
        exchanges_.push_back(exchange);
    }
    if (!exchange.reply && onSilence) {
        onSilence(timeout);
    }
    return std::move(exchange.reply);
}

}  // namespace test_support
