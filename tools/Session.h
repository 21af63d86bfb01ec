// The log-in session in which driver, companion and desktop find each other. The two systems have
// nothing in common here: there is one source for each.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace krt9ctl {

// Throws std::runtime_error, with one line that names the path and says why, when the session's
// folder or what is under one of its names is refused. A session that does not exist yet is not.
void CheckSession();

// The session as messages name it.
std::string SessionName();

// What a session must have before any application can be in front, and has not.
struct MissingFromSession {
    std::string sentence;
    std::string command;  // that starts it

    // "...; start one with ..."
    std::string Explain() const { return sentence + "; start one with " + command; }
};

// Only after a call of a framework, which has found out.
std::optional<MissingFromSession> FindMissingFromSession();

// A command that starts the driver in it.
std::string DriverStartCommand();

// A command that ends the driver and starts it again; `pid` is that of its process, if it is known.
std::string DriverRestartCommand(std::optional<pid_t> pid);

// A command after which the user can grant the driver the accessibility permission.
std::string PermissionCommand();

}  // namespace krt9ctl
