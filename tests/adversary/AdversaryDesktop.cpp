#include "tests/adversary/AdversaryDesktop.h"

#include <ApplicationServices/ApplicationServices.h>

#include <stdexcept>
#include <utility>

#include "desktop/InProcessTransport.h"

namespace adversary {

using desktop_link::Notification;
using desktop_link::Operation;
using desktop_link::Reply;
using desktop_link::Request;

struct AdversaryDesktop::State {
    explicit State(AdversaryDesktop& adversary) : owner(adversary) {}

    AdversaryDesktop& owner;
    std::unique_ptr<desktop::Desktop> desktop;
    std::unique_ptr<desktop::InProcessTransport> transport;
    std::function<void(const Notification&)> handler;
    std::vector<Exchange> exchanges;
    unsigned moments = 0;

    void Moment() {
        ++moments;
        if (owner.onMoment) {
            owner.onMoment(moments);
        }
    }

    std::optional<Reply> Answer(const Request& request, double timeout) {
        const bool hasEffect = request.operation == Operation::setAttribute ||
                               request.operation == Operation::performAction;
        if (hasEffect) {
            Moment();
        }
        std::optional<Reply> reply = transport->Exchange(request, timeout);
        if (hasEffect) {
            Moment();
            // An application that hangs by now does not answer.
            const std::optional<Reply> sign = SignOfLife(request.element.pid);
            if (!sign || sign->error == kAXErrorCannotComplete) {
                reply = sign;
            }
        }
        return reply;
    }

    // The answer of its application element, or of the system in its place.
    std::optional<Reply> SignOfLife(std::int32_t pid) {
        Request anything;
        anything.operation = Operation::attributeNames;
        anything.element.pid = pid;
        return desktop->Handle(0, anything);
    }
};

class AdversaryDesktop::Forwarding final : public desktop_link::Transport {
  public:
    explicit Forwarding(std::shared_ptr<State> state) : state_(std::move(state)) {}

    std::optional<Reply> Exchange(const Request& request, double timeout) override {
        if (request.operation == Operation::hello) {
            return state_->transport->Exchange(request, timeout);
        }
        std::optional<Reply> reply = state_->Answer(request, timeout);
        if (state_->owner.onReply) {
            state_->owner.onReply(state_->exchanges.size(), reply);
            if (reply) {
                const auto bytes = desktop_link::Encode(*reply);
                reply = desktop_link::DecodeReply(bytes.data(), bytes.size());
            }
        }
        state_->exchanges.push_back({request, reply, timeout});
        if (!reply && state_->owner.onSilence) {
            state_->owner.onSilence(timeout);
        }
        return reply;
    }

    bool Unreachable() const override { return false; }

    void SetNotificationHandler(std::function<void(const Notification&)> handler) override {
        state_->handler = handler;
        state_->transport->SetNotificationHandler(std::move(handler));
    }

  private:
    std::shared_ptr<State> state_;
};

AdversaryDesktop::AdversaryDesktop() : state_(std::make_shared<State>(*this)) {
    Load("{}");
    desktop_link::SetTransport(std::make_unique<Forwarding>(state_));
}

AdversaryDesktop::~AdversaryDesktop() {
    desktop_link::SetTransport(nullptr);
}

void AdversaryDesktop::Load(const std::string& scene) {
    state_->transport.reset();
    state_->desktop = std::make_unique<desktop::Desktop>(scene);
    state_->desktop->onRead = [this](const auto&, const auto&) { state_->Moment(); };
    state_->transport = std::make_unique<desktop::InProcessTransport>(*state_->desktop);
    state_->transport->SetNotificationHandler(state_->handler);
    Restart();
}

void AdversaryDesktop::Run(const std::string& command) {
    const std::string answer = state_->desktop->Run(command);
    if (answer.starts_with(R"({"error")")) {
        throw std::invalid_argument(command + ": " + answer);
    }
}

desktop_link::ElementReference AdversaryDesktop::Find(const std::string& address) {
    return state_->desktop->Find("", address);
}

bool AdversaryDesktop::Has(const std::string& address) {
    return state_->desktop->Run(R"({"command": "element", "element": ")" + address + R"("})")
        .starts_with(R"({"ok")");
}

void AdversaryDesktop::Restart() {
    onMoment = nullptr;
    onReply = nullptr;
    state_->exchanges.clear();
    state_->moments = 0;
}

unsigned AdversaryDesktop::Moments() const {
    return state_->moments;
}

const std::vector<Exchange>& AdversaryDesktop::Exchanges() const {
    return state_->exchanges;
}

void AdversaryDesktop::DeliverNotifications() {
    state_->transport->DeliverNotifications();
}

}  // namespace adversary
