// Ports are sockets in the session's folder.
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/LocalSocket/SessionDirectory.h"
#include "platform/LocalSocket/Socket.h"
#include "platform/LocalSocket/SocketAddress.h"
#include "tools/doctor/Ports.h"

namespace krt9ctl::doctor {

namespace {

using std::chrono::system_clock;
namespace fs = std::filesystem;

constexpr char kDriverProgram[] = "KRT9Background";

std::string ContentOf(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// The process that made the socket to which this one is connected.
std::optional<pid_t> PeerOf(const local_socket::Descriptor& socket) {
    ucred credentials{};
    socklen_t length = sizeof credentials;
    if (getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) {
        return std::nullopt;
    }
    return credentials.pid;
}

// A socket's file is not written to: it has the time at which the socket was made.
std::optional<system_clock::time_point> TimeOfSocket(std::string_view name) {
    const std::string path =
        local_socket::SessionDirectoryPath() + "/" + local_socket::SocketFileName(name);
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return system_clock::time_point(std::chrono::duration_cast<system_clock::duration>(
        std::chrono::seconds(status.st_mtim.tv_sec) +
        std::chrono::nanoseconds(status.st_mtim.tv_nsec)));
}

// The value of a variable in the environment with which a process was started.
std::string VariableOf(const std::string& environment, const std::string& name) {
    std::istringstream entries(environment);
    for (std::string entry; std::getline(entries, entry, '\0');) {
        if (entry.starts_with(name + "=")) {
            return entry.substr(name.size() + 1);
        }
    }
    return {};
}

bool IsInThisSession(const fs::path& process) {
    const std::string environment = ContentOf(process / "environ");
    return !environment.empty() &&
           local_socket::SessionDirectoryPath(VariableOf(environment, "KRT9_SESSION_DIR").c_str(),
                                              VariableOf(environment, "XDG_RUNTIME_DIR").c_str()) ==
               local_socket::SessionDirectoryPath();
}

bool IsOwn(const fs::path& process) {
    struct stat status {};
    return stat(process.c_str(), &status) == 0 && status.st_uid == geteuid();
}

}  // namespace

PortFacts LookAtPort(std::string_view name) {
    const local_socket::Descriptor socket = local_socket::Connect(name);
    if (!socket) {
        return {};
    }
    return {true, PeerOf(socket), TimeOfSocket(name)};
}

std::string WhyPortsHaveNoAge() {
    return {};
}

std::vector<DriverProcess> DriverProcesses() {
    std::vector<DriverProcess> drivers;
    std::error_code problem;
    for (const auto& entry : fs::directory_iterator("/proc", problem)) {
        const std::string name = entry.path().filename();
        pid_t pid = 0;
        const auto read = std::from_chars(name.data(), name.data() + name.size(), pid);
        if (read.ec != std::errc() || read.ptr != name.data() + name.size()) {
            continue;
        }
        // A process that has ended in the meantime has nothing to read.
        if (ContentOf(entry.path() / "comm") == std::string(kDriverProgram) + "\n" &&
            IsOwn(entry.path()) && IsInThisSession(entry.path())) {
            const auto program = fs::read_symlink(entry.path() / "exe", problem);
            drivers.push_back({pid, BundleOfProgram(program.string())});
        }
    }
    return drivers;
}

}  // namespace krt9ctl::doctor
