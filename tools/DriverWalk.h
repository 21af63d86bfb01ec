// The driver's own search for one element, made by this process and watched.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "accessibility/calls/CallResult.h"

namespace krt9ctl {

// An element that the walk met; positions from the window down.
struct MetElement {
    std::vector<std::size_t> positions;
    std::string role;
    bool isSearchField = false;  // of a role that is sought, but never found
};

struct DriverWalk {
    std::optional<MetElement> found;
    std::optional<MetElement> otherRole;  // the first with the identifier that is not of the role

    std::optional<CallFailure> windowsFailure;  // the list of windows cannot be read
    std::size_t windows = 0;
    std::optional<std::size_t> unreadWindow;  // the first whose children cannot be read
    std::optional<CallFailure> windowFailure;
    std::size_t unreadElements = 0;  // that have no role, or one that cannot be read

    unsigned long exchanges = 0;  // with the application
    std::chrono::duration<double, std::milli> time{};
};

// Searches the application as the driver does for a request: for an element with the identifier and
// the role, which may be kVEK_AXRole_AllValidRoles. The time-out, in seconds, is that of each call.
DriverWalk WalkAsDriver(pid_t pid, CFStringRef identifier, CFStringRef role, float timeout);

}  // namespace krt9ctl
