// The named ports of the session and the drivers that run in it, as far as the system tells. The
// two systems have nothing in common here: there is one source for each.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace krt9ctl::doctor {

struct PortFacts {
    bool isThere = false;
    std::optional<pid_t> owner;
    std::optional<std::chrono::system_clock::time_point> since;  // when it was made
};

// Sends nothing to the port's owner.
PortFacts LookAtPort(std::string_view name);

// Why LookAtPort() does not say when a port was made; empty where it does.
std::string WhyPortsHaveNoAge();

struct DriverProcess {
    pid_t pid = 0;
    std::string bundle;  // path; empty when the program is in no bundle
};

// Those of this user and this session, whether they own the driver's port or not.
std::vector<DriverProcess> DriverProcesses();

// The path of the bundle that holds the program; empty for one that no bundle holds.
std::string BundleOfProgram(const std::string& path);

}  // namespace krt9ctl::doctor
