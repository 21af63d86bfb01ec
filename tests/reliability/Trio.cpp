#include "tests/reliability/Trio.h"

#include <csignal>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tests/reliability/WaitUntil.h"
#include "tests/reliability/WireClient.h"
#include "tests/support/Paths.h"

namespace test_support {

namespace {

const std::string kControl = KRT9_BINARIES "/krt9ctl";

struct Program {
    std::string path;
    std::vector<std::string> arguments;
    std::string readyText;
};

// The editor's scene, in which a call to a stopped session times out after a second. The
// driver's calls to the editor end after half of that; a tick waits for one of them, and requests
// are served between the ticks: an answer is never ten seconds away.
std::string WriteScene(const std::filesystem::path& folder) {
    auto scene = nlohmann::json::parse(std::ifstream(KRT9_SCENES "/editor-10.4.6.json"));
    scene["messagingTimeout"] = 1;
    const auto file = folder / "scene.json";
    std::ofstream(file) << scene;
    return file;
}

Program ProgramOf(Role role, const std::string& scene) {
    switch (role) {
        case Role::desktop:
            return {KRT9_BINARIES "/krt9-desktop", {scene}, "ready"};
        case Role::driver:
            return {Stage::ImpatientDriverPath(), {}, "accessibilityEnabled"};
        case Role::companion:
            return {kControl, {"watch", "--units", "1", "--channels", "8"}, "watching"};
    }
    return {};
}

}  // namespace

const char* Name(Role role) {
    constexpr std::array names = {"desktop", "driver", "companion"};
    return names[static_cast<std::size_t>(role)];
}

Trio::Trio() : scene_(WriteScene(session_.Path())) {
    for (const Role role : {Role::desktop, Role::companion, Role::driver}) {
        Start(role);
    }
}

void Trio::Start(Role role) {
    const Program program = ProgramOf(role, scene_);
    auto& process = processes_[static_cast<std::size_t>(role)];
    process = std::make_unique<ChildProcess>(
        program.path, program.arguments,
        role == Role::driver ? Stage::DriverEnvironment() : std::map<std::string, std::string>());
    if (!process->WaitForOutput(program.readyText)) {
        throw std::runtime_error(std::string(Name(role)) +
                                 " did not start: " + process->StandardError());
    }
    ++starts_;
    if (role == Role::companion) {
        companionStart_ = starts_;
    }
    if (role == Role::driver) {
        driverStart_ = starts_;
    }
}

void Trio::Kill(Role role) {
    Process(role).Signal(SIGKILL);
    Process(role).WaitForExit();
}

void Trio::Stop(Role role) {
    Process(role).Signal(SIGSTOP);
}

void Trio::Continue(Role role) {
    Process(role).Signal(SIGCONT);
}

ChildProcess& Trio::Process(Role role) {
    return *processes_[static_cast<std::size_t>(role)];
}

ProcessResult Trio::Control(const std::vector<std::string>& arguments) {
    return RunProcess(kControl, arguments);
}

bool Trio::DriverAnswers() {
    WireClient client;
    return client.Connected() && client.Send(WireClient::Request("JPth", {0}, 1)) &&
           client.Receive().has_value();
}

bool Trio::DriverSeesTheEditor() {
    return WaitUntil([this] { return Control({"window", "Final Cut Pro"}).status == 0; });
}

bool Trio::CompanionHears(const std::string& timecode) {
    return Control({"refresh", "--profile", "--timecode"}).status == 0 &&
           Control({"desktop", "playhead", timecode}).status == 0 &&
           Process(Role::companion).WaitForOutput("JFTC timecode: " + timecode, 5);
}

}  // namespace test_support
