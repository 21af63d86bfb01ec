#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <system_error>

extern char** environ;  // NOLINT(readability-redundant-declaration): macOS lacks it

namespace test_support {

namespace {

using Clock = std::chrono::steady_clock;

std::vector<std::string> MergedEnvironment(const std::map<std::string, std::string>& changes) {
    std::map<std::string, std::string> merged;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const auto equals = text.find('=');
        merged[text.substr(0, equals)] = text.substr(equals + 1);
    }
    for (const auto& [name, value] : changes) {
        merged[name] = value;
    }
    std::vector<std::string> entries;
    for (const auto& [name, value] : merged) {
        entries.push_back(name + "=" + value);
    }
    return entries;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

void MakePipe(int (&ends)[2]) {
    if (pipe(ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
}

}  // namespace

ChildProcess::ChildProcess(const std::string& path, const std::vector<std::string>& arguments,
                           const std::map<std::string, std::string>& environment) {
    std::vector<std::string> argumentTexts = {path};
    argumentTexts.insert(argumentTexts.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environmentTexts = MergedEnvironment(environment);

    int outputs[2];
    int errors[2];
    MakePipe(outputs);
    MakePipe(errors);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, outputs[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors[1], STDERR_FILENO);

    // The test's own thread may block signals; the child must not inherit that.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);

    const int result =
        posix_spawn(&pid_, path.c_str(), &actions, &attributes, Pointers(argumentTexts).data(),
                    Pointers(environmentTexts).data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    close(outputs[1]);
    close(errors[1]);
    streams_[0].descriptor = outputs[0];
    streams_[1].descriptor = errors[0];
    if (result != 0) {
        throw std::system_error(result, std::generic_category(), "cannot start " + path);
    }
}

ChildProcess::~ChildProcess() {
    if (!ended_ && pid_ > 0) {
        kill(pid_, SIGKILL);
        Reap(0);
    }
    for (Stream& stream : streams_) {
        if (stream.descriptor >= 0) {
            close(stream.descriptor);
        }
    }
}

void ChildProcess::ForgetOutput() {
    while (Pump(0)) {
    }
    for (Stream& stream : streams_) {
        stream.text.clear();
    }
}

bool ChildProcess::Reap(int options) {
    if (!ended_ && waitpid(pid_, &status_, options) == pid_) {
        ended_ = true;
    }
    return ended_;
}

void ChildProcess::Read(Stream& stream) {
    char bytes[4096];
    const ssize_t count = read(stream.descriptor, bytes, sizeof bytes);
    if (count > 0) {
        stream.text.append(bytes, static_cast<std::size_t>(count));
    } else if (count == 0) {
        close(stream.descriptor);
        stream.descriptor = -1;
    }
}

bool ChildProcess::ReadAvailable(double seconds) {
    pollfd watched[2] = {{streams_[0].descriptor, POLLIN, 0}, {streams_[1].descriptor, POLLIN, 0}};
    if (poll(watched, 2, static_cast<int>(seconds * 1000)) <= 0) {
        return false;
    }
    for (int i = 0; i < 2; ++i) {
        if (watched[i].revents != 0) {
            Read(streams_[i]);
        }
    }
    return true;
}

// The end of a process usually shows in its outputs. It is asked for in between as well: a
// descendant may keep them open, and the process may close them long before.
bool ChildProcess::Pump(double seconds) {
    const auto deadline = Clock::now() + std::chrono::duration<double>(seconds);
    while (seconds >= 0) {
        const double step = IsDrained() ? 0.001 : 0.01;
        if (ReadAvailable(std::min(seconds, step)) || (!ended_ && Reap(WNOHANG))) {
            return true;
        }
        const std::chrono::duration<double> left = deadline - Clock::now();
        seconds = left.count() > 0 ? left.count() : -1;
    }
    return false;
}

bool ChildProcess::WaitForOutput(std::string_view text, double seconds) {
    const auto deadline = Clock::now() + std::chrono::duration<double>(seconds);
    for (;;) {
        for (const Stream& stream : streams_) {
            if (stream.text.find(text) != std::string::npos) {
                return true;
            }
        }
        const std::chrono::duration<double> left = deadline - Clock::now();
        if ((ended_ && IsDrained()) || !Pump(left.count())) {
            return false;
        }
    }
}

int ChildProcess::WaitForExit(double seconds) {
    const auto deadline = Clock::now() + std::chrono::duration<double>(seconds);
    while (!ended_) {
        const std::chrono::duration<double> left = deadline - Clock::now();
        if (!Pump(left.count())) {
            return -1;
        }
    }
    // What was printed before the end is still in the pipes. A descendant may keep them open, so
    // nothing is waited for.
    while (Pump(0)) {
    }
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : 128 + WTERMSIG(status_);
}

void ChildProcess::Signal(int signalNumber) {
    if (!ended_) {
        kill(pid_, signalNumber);
    }
}

ProcessResult RunProcess(const std::string& path, const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment, double seconds) {
    ChildProcess process(path, arguments, environment);
    const int status = process.WaitForExit(seconds);
    return {status, process.StandardOutput(), process.StandardError()};
}

}  // namespace test_support
