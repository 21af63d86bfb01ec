#include <stdexcept>
#include <string>

#include "platform/DesktopLink/Framing.h"
#include "platform/LocalSocket/SessionDirectory.h"
#include "platform/LocalSocket/Socket.h"
#include "tools/SessionCheck.h"

namespace krt9ctl {

void CheckSession() {
    std::string problem;
    local_socket::OpenSessionDirectory(local_socket::IfMissing::leave, &problem);
    for (const std::string_view name : {std::string_view("KRT9Background"),
                                        std::string_view("VEK_KRT9"), desktop_link::kSocketName}) {
        if (problem.empty()) {
            problem = local_socket::NameProblem(name);
        }
    }
    if (!problem.empty()) {
        throw std::runtime_error(problem);
    }
}

}  // namespace krt9ctl
