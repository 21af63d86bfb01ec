#include "tools/ApplicationLookup.h"
#include "tools/DesktopScript.h"

namespace krt9ctl {

std::optional<pid_t> FindApplication(const std::string& bundleIdentifier) {
    constexpr double kTimeout = 1;  // seconds
    const auto state = AskDesktop({{"command", "state"}}, kTimeout);
    if (!state || !state->contains("applications")) {
        return std::nullopt;
    }
    for (const Json& application : (*state)["applications"]) {
        if (application.value("application", "") == bundleIdentifier) {
            return application.value("pid", -1);
        }
    }
    return std::nullopt;
}

}  // namespace krt9ctl
