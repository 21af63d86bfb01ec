#include "tests/mac/Program.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <thread>

extern "C" char** environ;

namespace mac_test {

namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point After(double seconds) {
    return Clock::now() + std::chrono::milliseconds(static_cast<int>(seconds * 1000));
}

void MakePipe(std::array<int, 2>& ends) {
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe can be made");
    }
}

}  // namespace

Program::Program(const std::string& path, const std::vector<std::string>& arguments) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    MakePipe(in);
    MakePipe(out);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDERR_FILENO);
    for (const int end : {in[0], in[1], out[0], out[1]}) {
        posix_spawn_file_actions_addclose(&actions, end);
    }
    std::vector<std::string> words = {path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    const int error =
        posix_spawn(&process_, path.c_str(), &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    input_ = in[1];
    outputs_ = out[0];
    if (error != 0) {
        process_ = -1;
        output_ = path + " cannot be started";
    }
}

Program::~Program() {
    close(input_);
    close(outputs_);
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
}

void Program::ReadAvailable(double seconds) {
    pollfd waiting = {outputs_, POLLIN, 0};
    if (poll(&waiting, 1, static_cast<int>(seconds * 1000)) > 0) {
        std::array<char, 4096> bytes;
        const ssize_t count = read(outputs_, bytes.data(), bytes.size());
        output_.append(bytes.data(), static_cast<std::size_t>(count > 0 ? count : 0));
        if (count <= 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));  // it ended
        }
    }
}

bool Program::WaitForOutput(const std::string& text, double seconds) {
    const Clock::time_point end = After(seconds);
    for (;;) {
        const std::size_t found = output_.find(text, seen_);
        if (found != std::string::npos) {
            seen_ = found + text.size();
            return true;
        }
        if (Clock::now() >= end) {
            return false;
        }
        ReadAvailable(0.1);
    }
}

void Program::Signal(int number) const {
    kill(process_, number);
}

int Program::WaitForExit(double seconds) {
    const Clock::time_point end = After(seconds);
    int status = 0;
    while (process_ > 0 && waitpid(process_, &status, WNOHANG) == 0) {
        if (Clock::now() >= end) {
            return -1;
        }
        ReadAvailable(0);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    process_ = -1;
    ReadAvailable(0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string OutputOf(const std::string& path, const std::vector<std::string>& arguments) {
    Program program(path, arguments);
    const int status = program.WaitForExit(20);
    std::string output = program.Output();
    if (output.ends_with('\n')) {
        output.pop_back();
    }
    return status == 0 ? output : "status " + std::to_string(status) + ": " + output;
}

}  // namespace mac_test
