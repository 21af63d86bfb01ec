#include "tests/support/ProcessState.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

namespace test_support {

namespace {

std::filesystem::path Folder(pid_t process) {
    return std::filesystem::path("/proc") / std::to_string(process);
}

std::size_t Entries(const std::filesystem::path& folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder),
                                                  std::filesystem::directory_iterator()));
}

}  // namespace

ProcessState ProcessState::Of(pid_t process) {
    std::ifstream statm(Folder(process) / "statm");
    std::size_t wholePages = 0;
    std::size_t residentPages = 0;
    statm >> wholePages >> residentPages;
    return {residentPages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)),
            Entries(Folder(process) / "fd"), Entries(Folder(process) / "task")};
}

bool HandlesSignal(pid_t process, int signalNumber) {
    std::ifstream status(Folder(process) / "status");
    const std::string label = "SigCgt:";
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(label)) {
            return (std::stoull(line.substr(label.size()), nullptr, 16) >> (signalNumber - 1) &
                    1) != 0;
        }
    }
    return false;
}

}  // namespace test_support
