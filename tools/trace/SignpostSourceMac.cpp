// The system's own log tool, which prints signposts as they come.
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include "VEKCommon/Names.h"
#include "tools/trace/SignpostSource.h"

extern char** environ;

namespace krt9ctl::trace {

namespace {

constexpr char kTool[] = "/usr/bin/log";
constexpr char kPredicate[] = "subsystem == \"" kDriverBundleID "\"";

class LogTool : public SignpostSource {
  public:
    LogTool();
    ~LogTool() override;

    std::vector<std::string> Read(double seconds) override;
    bool HasEnded() const override { return hasEnded_; }

  private:
    void Start(int output);

    pid_t pid_ = -1;
    int input_ = -1;
    std::string begun_;  // the beginning of a line
    bool hasEnded_ = false;
};

LogTool::LogTool() {
    int ends[2];
    if (pipe(ends) != 0) {
        throw std::runtime_error(std::string("no pipe: ") + std::strerror(errno));
    }
    input_ = ends[0];
    fcntl(input_, F_SETFD, FD_CLOEXEC);
    Start(ends[1]);
    close(ends[1]);
}

void LogTool::Start(int output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    std::array<const char*, 8> words = {kTool,    "stream",      "--signpost", "--style",
                                        "ndjson", "--predicate", kPredicate,   nullptr};
    const int problem =
        posix_spawn(&pid_, kTool, &actions, nullptr, const_cast<char**>(words.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (problem != 0) {
        close(output);
        close(input_);
        throw std::runtime_error(std::string(kTool) + ": " + std::strerror(problem));
    }
}

LogTool::~LogTool() {
    close(input_);
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
}

std::vector<std::string> LogTool::Read(double seconds) {
    pollfd watched{input_, POLLIN, 0};
    if (poll(&watched, 1, static_cast<int>(seconds * 1000)) <= 0) {
        return {};
    }
    std::array<char, 65536> bytes;
    const ssize_t count = read(input_, bytes.data(), bytes.size());
    hasEnded_ = count == 0;
    begun_.append(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    std::vector<std::string> lines;
    for (std::size_t end = begun_.find('\n'); end != std::string::npos; end = begun_.find('\n')) {
        lines.push_back(begun_.substr(0, end));
        begun_.erase(0, end + 1);
    }
    return lines;
}

}  // namespace

std::unique_ptr<SignpostSource> OpenSignposts() {
    return std::make_unique<LogTool>();
}

}  // namespace krt9ctl::trace
