// The log-in session in which driver, companion and desktop find each other. The two systems have
// nothing in common here: one source for each.
#pragma once

#include <string>

namespace krt9ctl {

// Throws std::runtime_error, with one line that names the path and says why, when the session's
// folder or what lies under one of its names is refused. A session that is not there yet is none.
void CheckSession();

// The session as messages name it.
std::string SessionName();

// A command that starts the driver in it.
std::string DriverStartCommand();

}  // namespace krt9ctl
