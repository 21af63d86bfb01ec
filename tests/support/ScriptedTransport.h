// A desktop that answers whatever a test wants, in place of a real one.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/DesktopLink/Transport.h"

namespace test_support {

class ScriptedTransport {
  public:
    using Script =
        std::function<std::optional<desktop_link::Reply>(const desktop_link::Request& request)>;

    // Is the process's transport for the lifetime of this object. `hello` is answered with the
    // session and not handed to the script.
    explicit ScriptedTransport(Script script, desktop_link::Session session = {})
        : state_(
              std::make_shared<State>(State{std::move(script), std::move(session), {}, {}, {}})) {
        desktop_link::SetTransport(std::make_unique<Scripted>(state_));
    }
    ScriptedTransport(const ScriptedTransport&) = delete;
    ScriptedTransport& operator=(const ScriptedTransport&) = delete;
    ~ScriptedTransport() { desktop_link::SetTransport(nullptr); }

    const std::vector<desktop_link::Request>& Requests() const { return state_->requests; }

    // Seconds that the last exchange was ready to wait.
    double LastTimeout() const { return state_->timeout; }

    // As the main run loop does.
    void Deliver(const desktop_link::Notification& notification) {
        if (state_->handler) {
            state_->handler(notification);
        }
    }

  private:
    struct State {
        Script script;
        desktop_link::Session session;
        std::vector<desktop_link::Request> requests;
        std::function<void(const desktop_link::Notification&)> handler;
        double timeout = 0;
    };

    class Scripted final : public desktop_link::Transport {
      public:
        explicit Scripted(std::shared_ptr<State> state) : state_(std::move(state)) {}

        std::optional<desktop_link::Reply> Exchange(const desktop_link::Request& request,
                                                    double timeout) override {
            if (request.operation == desktop_link::Operation::hello) {
                desktop_link::Reply reply;
                reply.session = state_->session;
                return reply;
            }
            state_->requests.push_back(request);
            state_->timeout = timeout;
            return state_->script(request);
        }

        bool Unreachable() const override { return false; }

        void SetNotificationHandler(
            std::function<void(const desktop_link::Notification&)> handler) override {
            state_->handler = std::move(handler);
        }

      private:
        std::shared_ptr<State> state_;
    };

    std::shared_ptr<State> state_;
};

}  // namespace test_support
