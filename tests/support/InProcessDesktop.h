// A desktop in the test's own process in place of the session's, with its first activation
// already observed.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "desktop/Desktop.h"
#include "desktop/InProcessTransport.h"
#include "tests/support/SessionFixture.h"

namespace test_support {

class InProcessDesktop {
  public:
    explicit InProcessDesktop(const std::string& scene)
        : desktop_(scene, {session_.Path().string()}) {
        auto transport = std::make_unique<desktop::InProcessTransport>(desktop_);
        transport_ = transport.get();
        desktop_link::SetTransport(std::move(transport));
    }
    ~InProcessDesktop() { desktop_link::SetTransport(nullptr); }
    InProcessDesktop(const InProcessDesktop&) = delete;
    InProcessDesktop& operator=(const InProcessDesktop&) = delete;

    desktop::Desktop& operator*() { return desktop_; }
    desktop::Desktop* operator->() { return &desktop_; }

    const SessionFixture& Session() const { return session_; }

    // Runs a script command; what it changed in front is known to the process when this returns.
    // Throws when the desktop refuses the command.
    std::string Run(const std::string& command) {
        std::string answer = desktop_.Run(command);
        if (answer.starts_with(R"({"error")")) {
            throw std::invalid_argument(command + ": " + answer);
        }
        transport_->DeliverNotifications();
        return answer;
    }

  private:
    SessionFixture session_;
    desktop::Desktop desktop_;
    desktop::InProcessTransport* transport_ = nullptr;
};

}  // namespace test_support
