#include "tools/Session.h"

namespace krt9ctl {

// Ports have no files: the system itself keeps the names of a log-in session.
void CheckSession() {}

std::string SessionName() {
    return "this log-in session";
}

std::optional<MissingFromSession> FindMissingFromSession() {
    return std::nullopt;
}

std::string DriverStartCommand() {
    return "open -a KRT9Background";
}

std::string DriverRestartCommand(std::optional<pid_t> /*pid*/) {
    return "killall -INT KRT9Background; " + DriverStartCommand();
}

std::string PermissionCommand() {
    return "open "
           "'x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility'";
}

}  // namespace krt9ctl
