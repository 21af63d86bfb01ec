// A program whose streams are a terminal.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace test_support {

// Runs it to its end on a pseudo-terminal and returns everything that it printed there. The test's
// environment is changed by `environment`.
inline std::string OnTerminal(std::vector<std::string> words, unsigned columns,
                              const std::map<std::string, std::string>& environment) {
    const int control = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (control < 0 || grantpt(control) != 0 || unlockpt(control) != 0) {
        throw std::runtime_error("no pseudo-terminal can be made");
    }
    const std::string path = ptsname(control);
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    const int side = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const winsize size{50, static_cast<unsigned short>(columns), 0, 0};
    ioctl(side, TIOCSWINSZ, &size);
    const pid_t child = fork();
    if (child == 0) {
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            dup2(side, descriptor);
        }
        for (const auto& [name, value] : environment) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    close(side);
    std::string output;
    char buffer[4096];
    for (ssize_t count = 1; count > 0;) {
        count = read(control, buffer, sizeof buffer);  // fails when the last process has ended
        output.append(buffer, static_cast<std::size_t>(count > 0 ? count : 0));
    }
    close(control);
    waitpid(child, nullptr, 0);
    return output;
}

}  // namespace test_support
