// krt9ctl, the command-line companion of the driver.
#include <unistd.h>

#include <csignal>
#include <iostream>

#include "tools/Run.h"
#include "tools/terminal/Terminal.h"

int main(int argumentCount, char** arguments) {
    terminal::FillStandardDescriptors();
    // A closed pipe is an output error like any other, so that a gesture is still ended.
    std::signal(SIGPIPE, SIG_IGN);
    return static_cast<int>(krt9ctl::RunCommandLine(
        {arguments + 1, arguments + argumentCount},
        {std::cout, std::cerr, STDOUT_FILENO, STDERR_FILENO, STDIN_FILENO}));
}
