// The log-in session in which driver, companion and desktop find each other. The two systems have
// nothing in common here: there is one source for each.
#pragma once

#include <string>

namespace krt9ctl {

// Throws std::runtime_error, with one line that names the path and says why, when the session's
// folder or what is under one of its names is refused. A session that does not exist yet is not.
void CheckSession();

// The session as messages name it.
std::string SessionName();

// A command that starts the driver in it.
std::string DriverStartCommand();

}  // namespace krt9ctl
