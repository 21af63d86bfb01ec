#include <filesystem>
#include <stdexcept>
#include <string>

#include "VEKCommon/Names.h"
#include "platform/DesktopLink/Framing.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/LocalSocket/SessionDirectory.h"
#include "platform/LocalSocket/Socket.h"
#include "platform/UnifiedLogging/TracerName.h"
#include "tools/Session.h"

namespace krt9ctl {

void CheckSession() {
    std::string problem;
    local_socket::OpenSessionDirectory(local_socket::IfMissing::leave, &problem);
    for (const std::string_view name :
         {std::string_view(kDriverPortName), std::string_view(kCompanionPortName),
          desktop_link::kSocketName, unified_logging::kTracerName}) {
        if (problem.empty()) {
            problem = local_socket::NameProblem(name);
        }
    }
    if (!problem.empty()) {
        throw std::runtime_error(problem);
    }
}

std::string SessionName() {
    return "the session " + local_socket::SessionDirectoryPath();
}

std::optional<MissingFromSession> FindMissingFromSession() {
    if (!desktop_link::CurrentTransport().Unreachable()) {
        return std::nullopt;
    }
    return MissingFromSession{"no simulated desktop runs in " + SessionName(),
                              "krt9-desktop SCENE.json"};
}

// Where both were built, the driver's bundle is beside krt9ctl.
std::string DriverStartCommand() {
    const std::string program = "KRT9Background.app/Contents/MacOS/KRT9Background";
    std::error_code problem;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", problem);
    const auto beside = self.parent_path() / program;
    return std::filesystem::exists(beside, problem) ? beside.string() : program;
}

std::string DriverRestartCommand(std::optional<pid_t> pid) {
    return (pid ? "kill -INT " + std::to_string(*pid) + "; " : "") + DriverStartCommand();
}

std::string PermissionCommand() {
    return "krt9ctl desktop trust";
}

}  // namespace krt9ctl
