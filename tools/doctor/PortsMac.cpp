// Ports are names that the system keeps: it tells whether one is there, and neither whose it is nor
// since when.
#include <CoreFoundation/CoreFoundation.h>
#include <libproc.h>
#include <unistd.h>

#include "VEKCommon/OwnedReference.h"
#include "tools/Text.h"
#include "tools/doctor/Ports.h"

namespace krt9ctl::doctor {

namespace {

constexpr char kDriverProgram[] = "KRT9Background";

std::string NameOf(pid_t pid) {
    char name[2 * MAXCOMLEN + 1] = {};
    const int length = proc_name(pid, name, sizeof name);
    return length > 0 ? std::string(name, static_cast<std::size_t>(length)) : std::string();
}

std::string ProgramOf(pid_t pid) {
    char path[PROC_PIDPATHINFO_MAXSIZE] = {};
    const int length = proc_pidpath(pid, path, sizeof path);
    return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

// Of this user. More may start between the two calls: those are left out.
std::vector<pid_t> OwnProcesses() {
    const int size = proc_listpids(PROC_UID_ONLY, geteuid(), nullptr, 0);
    std::vector<pid_t> pids(size > 0 ? static_cast<std::size_t>(size) / sizeof(pid_t) : 0);
    const int filled = proc_listpids(PROC_UID_ONLY, geteuid(), pids.data(),
                                     static_cast<int>(pids.size() * sizeof(pid_t)));
    pids.resize(filled > 0 ? static_cast<std::size_t>(filled) / sizeof(pid_t) : 0);
    return pids;
}

}  // namespace

PortFacts LookAtPort(std::string_view name) {
    const OwnedReference<CFMessagePortRef> port(
        CFMessagePortCreateRemote(kCFAllocatorDefault, StringOf(name).get()));
    return {static_cast<bool>(port), std::nullopt, std::nullopt};
}

std::string WhyPortsHaveNoAge() {
    return "macOS does not tell which process has a port, or since when";
}

std::vector<DriverProcess> DriverProcesses() {
    std::vector<DriverProcess> drivers;
    for (const pid_t pid : OwnProcesses()) {
        if (NameOf(pid) == kDriverProgram) {
            drivers.push_back({pid, BundleOfProgram(ProgramOf(pid))});
        }
    }
    return drivers;
}

}  // namespace krt9ctl::doctor
