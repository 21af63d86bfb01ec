// The replies of an application with any number of windows, each generated when it is requested.
// Nothing is stored, so that the test itself does not grow.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/DesktopLink/Messages.h"

namespace adversary {

class CrowdedApplication {
  public:
    static constexpr std::int32_t kProcess = 501;

    explicit CrowdedApplication(std::uint64_t windows) : windows_(windows) {}

    // The windows are titled "Window 1" and so on, have no children, and cannot be changed.
    std::optional<desktop_link::Reply> operator()(const desktop_link::Request& request) const;

  private:
    std::uint64_t windows_;
};

}  // namespace adversary
