#include "tests/process/Stage.h"

#include <csignal>
#include <fstream>
#include <stdexcept>

#include "tests/support/Paths.h"

namespace test_support {

namespace {

const std::string kBinaries = KRT9_BINARIES;
const std::string kScenes = KRT9_SCENES;

}  // namespace

std::string Stage::DriverPath() {
    return kBinaries + "/KRT9Background.app/Contents/MacOS/KRT9Background";
}

std::string Stage::ImpatientDriverPath() {
    return kBinaries + "/ImpatientDriver.app/Contents/MacOS/ImpatientDriver";
}

std::map<std::string, std::string> Stage::DriverEnvironment() {
    return {{"ASAN_OPTIONS", "malloc_context_size=60"},  // the whole way to an element of a reply
            {"LSAN_OPTIONS", "print_suppressions=0:suppressions=" KRT9_KEPT_OBJECTS}};
}

std::string Stage::CompanionPath() {
    return kBinaries + "/krt9ctl";
}

void Stage::StartDesktop(const std::string& scene) {
    std::string path = kScenes + "/" + scene;
    if (scene.starts_with("{")) {
        path = (session_.Path() / "test-scene.json").string();
        std::ofstream(path) << scene;
    }
    desktop_ = std::make_unique<ChildProcess>(
        kBinaries + "/krt9-desktop", std::vector<std::string>{path, "--log", "/dev/stdout"});
    if (!desktop_->WaitForOutput("ready")) {
        throw std::runtime_error("the desktop did not start: " + desktop_->StandardError());
    }
}

void Stage::StartDriver(const std::map<std::string, std::string>& environment,
                        const std::string& path) {
    std::map<std::string, std::string> whole = DriverEnvironment();
    whole.insert(environment.begin(), environment.end());
    driver_ = std::make_unique<ChildProcess>(path, std::vector<std::string>{}, whole);
    if (!driver_->WaitForOutput("accessibilityEnabled")) {
        throw std::runtime_error("the driver did not start: " + driver_->StandardError());
    }
}

ProcessResult Stage::Companion(const std::vector<std::string>& arguments) {
    std::vector<std::string> patient = {"--timeout", "10"};
    patient.insert(patient.end(), arguments.begin(), arguments.end());
    return RunProcess(CompanionPath(), patient);
}

int Stage::InterruptDriver() {
    driver_->Signal(SIGINT);
    return driver_->WaitForExit();
}

}  // namespace test_support
