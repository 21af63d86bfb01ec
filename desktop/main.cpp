// krt9-desktop: the simulated desktop as a process.
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>

#include "desktop/Bundles.h"
#include "desktop/CommandLine.h"
#include "desktop/Desktop.h"
#include "desktop/Program.h"
#include "desktop/Server.h"
#include "desktop/Version.h"
#include "platform/DesktopLink/Framing.h"
#include "platform/LocalSocket/SessionDirectory.h"
#include "scenes/notation/SceneError.h"
#include "tools/terminal/Help.h"
#include "tools/terminal/Progress.h"
#include "tools/terminal/Terminal.h"

namespace {

using desktop::CommandLine;

constexpr int kUsage = 2;
constexpr int kPipeClosed = 141;  // as shells count an end by SIGPIPE

int Fail(const std::string& problem) {
    std::cerr << terminal::MessagePrefix("krt9-desktop", STDERR_FILENO, true) << ' ' << problem
              << std::endl;
    return 1;
}

// The signals that end the process become readable on a descriptor, so that they never interrupt
// work in progress.
local_socket::Descriptor BlockEndingSignals() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&ending, signal);
    }
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    return local_socket::Descriptor(signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK));
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file) {
        throw scene_notation::SceneError("", path + ": " + std::strerror(errno));
    }
    return content;
}

// Writes every entry of the log at once.
class LogFile {
  public:
    explicit LogFile(const std::string& path) : path_(path), file_(path, std::ios::trunc) {
        Check();
    }

    void Write(const std::string& line) {
        file_ << line << '\n' << std::flush;
        Check();
    }

    bool HasFailed() const { return failed_; }

  private:
    void Check() {
        if (!file_ && !failed_) {
            failed_ = true;
            Fail(path_ + ": " + std::strerror(errno));
        }
    }

    std::string path_;
    std::ofstream file_;
    bool failed_ = false;
};

// 0, or the exit status when it cannot be reported.
int SayReady(int descriptor) {
    const std::string ready = "ready\n";
    if (write(descriptor, ready.data(), ready.size()) < 0) {
        return errno == EPIPE
                   ? kPipeClosed
                   : Fail(std::string("cannot report that it is ready: ") + std::strerror(errno));
    }
    if (descriptor > STDERR_FILENO) {
        close(descriptor);
    }
    return 0;
}

int Serve(const CommandLine& options) {
    const local_socket::Descriptor stop = BlockEndingSignals();
    bool taken = false;
    std::string problem;
    auto listener = local_socket::Listener::Create(desktop_link::kSocketName, &taken, &problem);
    if (!listener) {
        return Fail(taken ? "another desktop runs in this session already" : problem);
    }
    const std::string session = local_socket::SessionDirectoryPath();
    desktop::RemoveAbandonedBundles(session);
    std::optional<terminal::Progress> progress(std::in_place, std::cerr,
                                               terminal::IsTerminal(STDERR_FILENO), "krt9-desktop");
    progress->Now("reading " + options.Value("SCENE"));
    desktop::Desktop simulated(ReadFile(options.Value("SCENE")), {session});
    progress.reset();
    std::optional<LogFile> log;
    if (options.Has("--log")) {
        log.emplace(options.Value("--log"));
        simulated.Log().SetSink([&log](const std::string& line) { log->Write(line); });
    }
    if (options.Has("--play")) {
        simulated.Run(R"({"command": "play"})");
    }
    desktop::Server server(simulated, std::move(*listener));
    const int status =
        SayReady(options.Has("--ready-fd") ? options.Number("--ready-fd") : STDOUT_FILENO);
    if (status != 0) {
        return status;
    }
    server.Run(stop.get());
    return log && log->HasFailed() ? 1 : 0;
}

int ServeScene(const CommandLine& options) {
    try {
        return Serve(options);
    } catch (const scene_notation::SceneError& error) {
        const std::string problem = error.what();
        const std::string scene = options.Value("SCENE");
        return Fail(problem.starts_with(scene) ? problem : scene + ": " + problem);
    }
}

// The status when it cannot be printed, as for krt9ctl.
int Print(const std::string& text) {
    errno = 0;
    std::cout << text << std::flush;
    if (std::cout) {
        return 0;
    }
    return errno == EPIPE
               ? kPipeClosed
               : Fail(std::string("the output cannot be written: ") + std::strerror(errno));
}

int Run(int argc, char** argv) {
    CommandLine options(desktop::DesktopProgram(), desktop::kVersion);
    signal(SIGPIPE, SIG_IGN);
    switch (options.Parse(argc, argv)) {
        case CommandLine::Outcome::run:
            return ServeScene(options);
        case CommandLine::Outcome::information:
            return Print(terminal::Wrapped(options.Text(), terminal::Columns(STDOUT_FILENO)));
        case CommandLine::Outcome::wrong:
            break;
    }
    Fail(options.Text() + " (see krt9-desktop --help)");
    return kUsage;
}

}  // namespace

int main(int argc, char** argv) {
    terminal::FillStandardDescriptors();
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}
