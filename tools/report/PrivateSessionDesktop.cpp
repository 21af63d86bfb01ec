#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "VEKCommon/MessageCodes.h"
#include "platform/LocalSocket/Socket.h"
#include "tools/Client.h"
#include "tools/DesktopScript.h"
#include "tools/Interruption.h"
#include "tools/Text.h"
#include "tools/report/PrivateSession.h"

namespace krt9ctl {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr double kPatience = 30;  // seconds, for a program to start
constexpr char kSessionVariable[] = "KRT9_SESSION_DIR";
constexpr char kDriverInBundle[] = "KRT9Background.app/Contents/MacOS/KRT9Background";

// A private folder, removed with everything in it.
class Folder {
  public:
    Folder() {
        std::string pattern = (fs::temp_directory_path() / "krt9-replay-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error(
                fmt::format("no temporary folder can be made: {}", std::strerror(errno)));
        }
        path_ = pattern;
        fs::create_directory(Session());
        fs::permissions(Session(), fs::perms::owner_all);
        fs::create_directory(Home());
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    fs::path Session() const { return path_ / "session"; }
    fs::path Home() const { return path_ / "home"; }
    fs::path Scene() const { return path_ / "scene.json"; }
    fs::path Errors() const { return path_ / "errors"; }

  private:
    fs::path path_;
};

// Of this process, set back at the end.
class SessionVariable {
  public:
    explicit SessionVariable(const std::string& value) {
        if (const char* before = std::getenv(kSessionVariable)) {
            before_ = before;
        }
        setenv(kSessionVariable, value.c_str(), 1);
    }
    ~SessionVariable() {
        if (before_) {
            setenv(kSessionVariable, before_->c_str(), 1);
        } else {
            unsetenv(kSessionVariable);
        }
    }
    SessionVariable(const SessionVariable&) = delete;
    SessionVariable& operator=(const SessionVariable&) = delete;

  private:
    std::optional<std::string> before_;
};

// A program in the session, killed at the end of its object.
class Process {
  public:
    // `path` without a slash is looked for as a shell does. Its standard output goes to the
    // descriptor or nowhere, its errors to the file.
    Process(const std::string& path, const std::vector<std::string>& words, int output,
            const Folder& folder, const std::string& language);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool HasEnded();

  private:
    pid_t pid_ = -1;
    bool hasEnded_ = false;
};

// The one of this process, but for a few.
std::vector<std::string> EnvironmentWith(
    std::initializer_list<std::pair<std::string_view, std::string>> changes) {
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const std::string_view name = text.substr(0, text.find('='));
        const auto isChanged = [&](const auto& change) { return change.first == name; };
        if (std::none_of(changes.begin(), changes.end(), isChanged)) {
            environment.emplace_back(text);
        }
    }
    for (const auto& [name, value] : changes) {
        environment.push_back(fmt::format("{}={}", name, value));
    }
    return environment;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

Process::Process(const std::string& path, const std::vector<std::string>& words, int output,
                 const Folder& folder, const std::string& language) {
    std::vector<std::string> arguments = {path};
    arguments.insert(arguments.end(), words.begin(), words.end());
    std::vector<std::string> environment =
        EnvironmentWith({{"HOME", folder.Home().string()}, {"KRT9_LANGUAGES", language}});
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (output >= 0) {
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    }
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, folder.Errors().c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    // An ignored SIGPIPE would be inherited.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &pipe);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    const int problem = posix_spawnp(&pid_, path.c_str(), &actions, &attributes,
                                     Pointers(arguments).data(), Pointers(environment).data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (problem != 0) {
        hasEnded_ = true;
        throw std::runtime_error(
            fmt::format("{} cannot be started: {}", Printable(path), std::strerror(problem)));
    }
}

Process::~Process() {
    if (!HasEnded()) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
}

bool Process::HasEnded() {
    hasEnded_ = hasEnded_ || waitpid(pid_, nullptr, WNOHANG) == pid_;
    return hasEnded_;
}

// Where both were built, or installed, the programs lie beside krt9ctl; else a shell would find
// `name`.
std::string ProgramBeside(const std::string& relative, const std::string& name) {
    std::error_code problem;
    const fs::path beside = fs::read_symlink("/proc/self/exe", problem).parent_path() / relative;
    return fs::exists(beside, problem) ? beside.string() : name;
}

class DesktopSession : public PrivateSession {
  public:
    explicit DesktopSession(const PrivateSessionOptions& options);

    void StartDriver() override;
    std::optional<Json> Ask(const Json& command) override { return AskDesktop(command, kPatience); }

  private:
    void StartDesktop();
    bool SaysReady(int descriptor);
    std::string FirstError() const;

    PrivateSessionOptions options_;
    Folder folder_;
    SessionVariable variable_{folder_.Session().string()};
    std::optional<Process> desktop_;
    std::optional<Process> driver_;
};

DesktopSession::DesktopSession(const PrivateSessionOptions& options) : options_(options) {
    std::ofstream file(folder_.Scene(), std::ios::binary);
    file << options_.scene << std::flush;
    if (!file) {
        throw std::runtime_error(
            fmt::format("the scene cannot be written: {}", std::strerror(errno)));
    }
    StartDesktop();
}

void DesktopSession::StartDesktop() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error(fmt::format("no pipe: {}", std::strerror(errno)));
    }
    const local_socket::Descriptor input(ends[0]);
    {
        const local_socket::Descriptor output(ends[1]);
        desktop_.emplace(ProgramBeside("krt9-desktop", "krt9-desktop"),
                         std::vector<std::string>{folder_.Scene().string()}, output.get(), folder_,
                         options_.language);
    }
    if (!SaysReady(input.get())) {
        throw std::runtime_error(
            fmt::format("the simulated desktop does not start: {}", FirstError()));
    }
}

// It says so, or ends.
bool DesktopSession::SaysReady(int descriptor) {
    pollfd watched{descriptor, POLLIN, 0};
    char byte = 0;
    return poll(&watched, 1, static_cast<int>(kPatience * 1000)) > 0 &&
           read(descriptor, &byte, 1) == 1;
}

// Without the name of the program and the file, which is a temporary one.
std::string DesktopSession::FirstError() const {
    std::ifstream file(folder_.Errors());
    std::string line;
    std::getline(file, line);
    for (const std::string& prefix :
         {std::string("krt9-desktop: "), folder_.Scene().string() + ": "}) {
        if (line.starts_with(prefix)) {
            line.erase(0, prefix.size());
        }
    }
    return line.empty() ? "it does not say why" : Printable(line);
}

void DesktopSession::StartDriver() {
    driver_.emplace(options_.driver.value_or(ProgramBeside(kDriverInBundle, "KRT9Background")),
                    std::vector<std::string>{}, -1, folder_, options_.language);
    Client client(kPatience);
    const auto end = Clock::now() + std::chrono::duration<double>(kPatience);
    while (client.Send({kJPth, {}}).status != kCFMessagePortSuccess) {
        if (driver_->HasEnded()) {
            throw std::runtime_error("the driver ended before it served");
        }
        if (Interruption::Raised() != ExitCode::ok) {
            return;
        }
        if (Clock::now() > end) {
            throw std::runtime_error("the driver does not serve");
        }
        Interruption::Pause(0.02);
    }
}

}  // namespace

std::unique_ptr<PrivateSession> OpenPrivateSession(const PrivateSessionOptions& options) {
    return std::make_unique<DesktopSession>(options);
}

}  // namespace krt9ctl
