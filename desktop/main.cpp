// krt9-desktop: the simulated desktop as a process.
#include <sys/signalfd.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <iterator>
#include <string>

#include "desktop/Bundles.h"
#include "desktop/Desktop.h"
#include "desktop/SceneError.h"
#include "desktop/Server.h"
#include "platform/DesktopLink/Framing.h"
#include "platform/LocalSocket/SessionDirectory.h"

namespace {

struct Options {
    std::string scene;
    std::string log;
    int readyDescriptor = STDOUT_FILENO;
    bool play = false;
};

int Fail(const std::string& problem) {
    std::fprintf(stderr, "krt9-desktop: %s\n", problem.c_str());
    return 1;
}

// The signals that end the process become readable on a descriptor, so that they never interrupt
// half-done work.
local_socket::Descriptor BlockEndingSignals() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&ending, signal);
    }
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    signal(SIGPIPE, SIG_IGN);
    return local_socket::Descriptor(signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK));
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file) {
        throw desktop::SceneError("", path + ": " + std::strerror(errno));
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

void SayReady(int descriptor) {
    const std::string ready = "ready\n";
    if (write(descriptor, ready.data(), ready.size()) < 0) {
        Fail(std::string("cannot say that it is ready: ") + std::strerror(errno));
    }
    if (descriptor > STDERR_FILENO) {
        close(descriptor);
    }
}

int Serve(const Options& options) {
    const local_socket::Descriptor stop = BlockEndingSignals();
    bool taken = false;
    std::string problem;
    auto listener = local_socket::Listener::Create(desktop_link::kSocketName, &taken, &problem);
    if (!listener) {
        return Fail(taken ? "another desktop runs in this session already" : problem);
    }
    const std::string session = local_socket::SessionDirectoryPath();
    desktop::RemoveAbandonedBundles(session);
    desktop::Desktop simulated(ReadFile(options.scene), {session});
    std::optional<LogFile> log;
    if (!options.log.empty()) {
        log.emplace(options.log);
        simulated.Log().SetSink([&log](const std::string& line) { log->Write(line); });
    }
    if (options.play) {
        simulated.Run(R"({"command": "play"})");
    }
    desktop::Server server(simulated, std::move(*listener));
    SayReady(options.readyDescriptor);
    server.Run(stop.get());
    return 0;
}

int Run(int argc, char** argv) {
    Options options;
    CLI::App app("Simulates a log-in session with applications, input, screens and MIDI.",
                 "krt9-desktop");
    app.add_option("SCENE", options.scene, "The session as JSON")->required();
    app.add_option("--log", options.log,
                   "Write the event log to this file, one JSON line an entry");
    app.add_option("--ready-fd", options.readyDescriptor,
                   "Say \"ready\" on this descriptor instead of the standard output")
        ->check(CLI::NonNegativeNumber);
    app.add_flag("--play", options.play, "Play the scene's script from the start");
    CLI11_PARSE(app, argc, argv);
    try {
        return Serve(options);
    } catch (const desktop::SceneError& error) {
        const std::string problem = error.what();
        return Fail(problem.starts_with(options.scene) ? problem : options.scene + ": " + problem);
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "krt9-desktop: %s\n", error.what());
        return 1;
    }
}
