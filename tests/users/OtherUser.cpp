#include "tests/users/OtherUser.h"

#include <unistd.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/Paths.h"

namespace test_support {

Command AsOtherUser(const std::string& path, const std::vector<std::string>& arguments) {
    const std::string user = std::to_string(kOtherUser);
    Command command{"/usr/bin/setpriv", {"--reuid", user, "--regid", user, "--clear-groups", path}};
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    return command;
}

std::string NoOtherUser() {
    if (geteuid() != 0) {
        return "only root can act as another user";
    }
    const Command command = AsOtherUser("/usr/bin/test", {"-x", StrangerPath()});
    return RunProcess(command.path, command.arguments).status == 0
               ? ""
               : "the other user cannot reach the programs in " KRT9_BINARIES;
}

std::map<std::string, std::string> OtherUsersEnvironment(const std::string& session) {
    return {{"HOME", "/nonexistent"}, {"KRT9_SESSION_DIR", session}};
}

std::string StrangerPath() {
    return KRT9_BINARIES "/stranger";
}

}  // namespace test_support
