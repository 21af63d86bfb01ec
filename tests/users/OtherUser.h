// Running programs as another user of the machine.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace test_support {

inline constexpr uid_t kOtherUser = 65534;

// Why no program can be run as another user here, or nothing: only the superuser can, and the other
// user must be able to reach the programs.
std::string NoOtherUser();

// The command that runs a program as the other user.
struct Command {
    std::string path;
    std::vector<std::string> arguments;
};
Command AsOtherUser(const std::string& path, const std::vector<std::string>& arguments);

// The other user's environment, with that session.
std::map<std::string, std::string> OtherUsersEnvironment(const std::string& session);

std::string StrangerPath();

}  // namespace test_support
