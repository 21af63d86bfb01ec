#include "tools/Session.h"

namespace krt9ctl {

// Ports have no files: the system itself keeps the names of a log-in session.
void CheckSession() {}

std::string SessionName() {
    return "this log-in session";
}

std::string DriverStartCommand() {
    return "open -a KRT9Background";
}

}  // namespace krt9ctl
