// krt9ctl, the command-line companion of the driver.
#include <iostream>

#include "tools/Run.h"

int main(int argumentCount, char** arguments) {
    return static_cast<int>(
        krt9ctl::RunCommandLine({arguments + 1, arguments + argumentCount}, std::cout, std::cerr));
}
