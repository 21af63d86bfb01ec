// The transport to an application with any number of windows, each generated when it is
// requested. Nothing is stored, so that the test itself does not grow.
#pragma once

#include <cstdint>
#include <utility>

#include "platform/DesktopLink/Transport.h"

namespace adversary {

class CrowdedApplication final : public desktop_link::Transport {
  public:
    static constexpr std::int32_t kProcess = 501;

    // Is the transport of this process until the next one is set.
    static CrowdedApplication& Install(std::uint64_t windows);

    explicit CrowdedApplication(std::uint64_t windows) : windows_(windows) {}

    // Requests answered since the last call.
    unsigned long TakeCount() { return std::exchange(count_, 0); }

    // The windows are titled "Window 1" and so on, have no children, and cannot be changed.
    std::optional<desktop_link::Reply> Exchange(const desktop_link::Request& request,
                                                double timeout) override;
    bool Unreachable() const override { return false; }
    void SetNotificationHandler(
        std::function<void(const desktop_link::Notification&)> /*handler*/) override {}

  private:
    std::uint64_t windows_;
    unsigned long count_ = 0;
};

}  // namespace adversary
