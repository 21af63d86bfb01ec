#include "tests/support/Stage.h"

#include <csignal>
#include <stdexcept>
#include <utility>

#include "tests/support/Paths.h"

namespace test_support {

const char* Name(Role role) {
    constexpr std::array names = {"desktop", "driver", "companion"};
    return names[static_cast<std::size_t>(role)];
}

void Stage::StartDesktop(const std::string& scene) {
    const std::string path = scene.starts_with("{")
                                 ? session_.Write("test-scene.json", scene).string()
                                 : KRT9_SCENES "/" + scene;
    Start(Role::desktop, {DesktopPath(), {path, "--log", "/dev/stdout"}, {}, "ready", nullptr});
}

void Stage::StartDriver(const std::map<std::string, std::string>& environment,
                        const std::string& path) {
    std::map<std::string, std::string> whole = DriverEnvironment();
    whole.insert(environment.begin(), environment.end());
    Start(Role::driver, {path, {}, whole, "accessibilityEnabled", nullptr});
}

void Stage::StartCompanion(const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"watch"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Start(Role::companion,
          {ControlPath(), arguments, {}, "watching the companion's port", nullptr});
}

void Stage::Restart(Role role) {
    Start(role, std::move(actors_[Index(role)]));
}

void Stage::Start(Role role, Actor actor) {
    actors_[Index(role)].process.reset();
    actor.process.reset();
    actor.process = std::make_unique<ChildProcess>(actor.path, actor.arguments, actor.environment);
    actor.start = ++starts_;
    if (!actor.process->WaitForOutput(actor.readyText)) {
        throw std::runtime_error(std::string("the ") + Name(role) +
                                 " did not start: " + actor.process->StandardError());
    }
    actors_[Index(role)] = std::move(actor);
}

void Stage::Kill(Role role) {
    Process(role).Signal(SIGKILL);
    Process(role).WaitForExit();
}

void Stage::Stop(Role role) {
    Process(role).Signal(SIGSTOP);
}

void Stage::Continue(Role role) {
    Process(role).Signal(SIGCONT);
}

int Stage::Interrupt(Role role) {
    Process(role).Signal(SIGINT);
    return Process(role).WaitForExit();
}

bool Stage::StartedBefore(Role first, Role second) const {
    return actors_[Index(first)].start < actors_[Index(second)].start;
}

std::unique_ptr<ChildProcess> Stage::LaunchDesktop(const std::vector<std::string>& arguments) {
    return std::make_unique<ChildProcess>(DesktopPath(), arguments);
}

std::unique_ptr<ChildProcess> Stage::LaunchDriver() {
    return std::make_unique<ChildProcess>(DriverPath(), std::vector<std::string>{},
                                          DriverEnvironment());
}

std::unique_ptr<ChildProcess> Stage::LaunchControl(const std::vector<std::string>& arguments) {
    return std::make_unique<ChildProcess>(ControlPath(), arguments);
}

ProcessResult Stage::Control(const std::vector<std::string>& arguments) {
    std::vector<std::string> patient = {"--timeout", "10"};
    patient.insert(patient.end(), arguments.begin(), arguments.end());
    return RunProcess(ControlPath(), patient);
}

std::string Stage::DesktopPath() {
    return KRT9_BINARIES "/krt9-desktop";
}

std::string Stage::DriverPath() {
    return KRT9_BINARIES "/KRT9Background.app/Contents/MacOS/KRT9Background";
}

std::string Stage::ControlPath() {
    return KRT9_BINARIES "/krt9ctl";
}

std::string Stage::ImpatientDriverPath() {
    return KRT9_BINARIES "/ImpatientDriver.app/Contents/MacOS/ImpatientDriver";
}

std::map<std::string, std::string> Stage::DriverEnvironment() {
    // Exact stacks, the whole way to an element of a reply: what the driver keeps is told by them.
    return {{"ASAN_OPTIONS", "fast_unwind_on_malloc=0:malloc_context_size=60"},
            {"LSAN_OPTIONS", "print_suppressions=0:suppressions=" KRT9_KEPT_OBJECTS}};
}

}  // namespace test_support
