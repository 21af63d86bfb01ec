// The verb doctor, with each cause on a scene of its own and real processes where they matter.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <map>

#include "platform/LocalSocket/SocketAddress.h"
#include "tests/support/Files.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/Paths.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/Stage.h"
#include "tests/unit/tools/Carried.h"

namespace krt9ctl {
namespace {

using test_support::HomeFolder;
using test_support::ProcessResult;
using test_support::Role;
using test_support::ScriptedDesktop;
using test_support::Stage;
using testing::HasSubstr;
using testing::Not;

constexpr char kEditor[] = "editor-10.4.6.json";
constexpr char kTitles[] =
    R"(<?xml version="1.0"?><plist version="1.0"><dict><key>Viewer</key><string>Viewer</string>
       </dict></plist>)";

struct Diagnosis {
    ExitCode code;
    std::map<std::string, Json> findings;
    std::vector<std::string> failing;  // in order

    const Json& operator[](const std::string& check) const { return findings.at(check); }
};

Diagnosis Read(int code, const std::string& output) {
    Diagnosis diagnosis{static_cast<ExitCode>(code), {}, {}};
    for (const std::string& line : test_support::LinesOf(output)) {
        const Json finding = Json::parse(line);
        diagnosis.findings[finding["check"]] = finding;
        if (finding["state"] == "fails") {
            diagnosis.failing.push_back(finding["check"]);
        }
    }
    return diagnosis;
}

class Doctor : public testing::Test {
  protected:
    Doctor() { home_.WriteTranslations("en", kTitles); }

    void StartAll(const std::string& scene = kEditor) {
        stage_.StartDesktop(scene);
        stage_.StartCompanion();
        stage_.StartDriver();
    }

    static Diagnosis Examine() {
        const ProcessResult result = Stage::Control({"--json", "doctor"});
        return Read(result.status, result.standardOutput);
    }

    // As if the port had been made at that time of 2020, in milliseconds.
    void MadeAt(const char* port, long milliseconds) const {
        const auto path = stage_.Session().Path() / local_socket::SocketFileName(port);
        const timespec time = {1577836800 + milliseconds / 1000, milliseconds % 1000 * 1000000};
        const timespec times[] = {time, time};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    }

    HomeFolder home_;
    Stage stage_;
};

TEST_F(Doctor, FindsNothingWhereAllIsWell) {
    StartAll();
    const ProcessResult result = Stage::Control({"doctor"});
    EXPECT_EQ(result.status, 0) << result.standardOutput;
    const auto lines = test_support::LinesOf(result.standardOutput);
    EXPECT_THAT(lines, testing::SizeIs(9));
    EXPECT_THAT(lines, testing::Each(testing::StartsWith("ok ")));
    EXPECT_THAT(lines[4], HasSubstr("version 10.4.6, profile 10.4.5"));
    EXPECT_EQ(result.standardError, "");
}

TEST_F(Doctor, TellsThatNoDriverRunsAndHowToStartIt) {
    stage_.StartDesktop(kEditor);
    stage_.StartCompanion();
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::noDriver);
    EXPECT_EQ(diagnosis["driver"]["error"], "no-driver");
    EXPECT_EQ(diagnosis["driver"]["command"], Stage::DriverPath());
    for (const char* unknown : {"versions", "companion", "permission", "controller"}) {
        EXPECT_EQ(diagnosis[unknown]["state"], "cannot-tell") << unknown;
    }
}

TEST_F(Doctor, TellsThatTheDriverDoesNotReplyInTime) {
    StartAll();
    stage_.Stop(Role::driver);
    const ProcessResult result =
        test_support::RunProcess(Stage::ControlPath(), {"--timeout", "0.2", "--json", "doctor"});
    stage_.Continue(Role::driver);
    const Diagnosis diagnosis = Read(result.status, result.standardOutput);
    EXPECT_EQ(diagnosis.code, ExitCode::timeOut);
    EXPECT_EQ(diagnosis["driver"]["pid"], stage_.Driver().pid());
    EXPECT_EQ(diagnosis["driver"]["command"], "krt9ctl ping --timeout 10");
    EXPECT_EQ(diagnosis["permission"]["state"], "cannot-tell");
}

TEST_F(Doctor, NamesASecondDriver) {
    StartAll();
    const auto second = Stage::LaunchDriver();
    ASSERT_TRUE(second->WaitForOutput("version"));
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::secondDriver);
    EXPECT_EQ(diagnosis["second-driver"]["pids"], Json::array({second->pid()}));
    EXPECT_EQ(diagnosis["second-driver"]["command"], "kill -INT " + std::to_string(second->pid()));
    EXPECT_EQ(diagnosis["versions"]["state"], "ok");
}

TEST_F(Doctor, DoesNotTakeTheDriverOfAnotherSessionForASecondOne) {
    StartAll();
    Stage other;
    other.StartDesktop(kEditor);
    other.StartDriver();
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis["second-driver"]["state"], "ok");
    EXPECT_EQ(diagnosis["driver"]["pid"], other.Driver().pid());
    EXPECT_EQ(diagnosis.code, ExitCode::companion);
}

TEST_F(Doctor, TellsThatDriverAndToolAreOfDifferentVersions) {
    const test_support::TemporaryFolder folder;
    const auto bundle = folder.Path() / "KRT9Background.app";
    const auto built = std::filesystem::path(Stage::DriverPath()).parent_path().parent_path();
    std::filesystem::create_directories(bundle);
    std::filesystem::copy(built, bundle / "Contents", std::filesystem::copy_options::recursive);
    std::string information = test_support::ContentOf(bundle / "Contents" / "Info.plist");
    for (std::size_t at = information.find("1.0.0"); at != std::string::npos;
         at = information.find("1.0.0")) {
        information.replace(at, 5, "0.9.7");
    }
    std::ofstream(bundle / "Contents" / "Info.plist") << information;
    stage_.StartDesktop(kEditor);
    stage_.StartCompanion();
    stage_.StartDriver({}, bundle / "Contents" / "MacOS" / "KRT9Background");
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::versions);
    EXPECT_EQ(diagnosis["versions"]["driver"], "0.9.7");
    EXPECT_EQ(diagnosis["versions"]["krt9ctl"], "1.0.0");
}

TEST_F(Doctor, TellsThatThereIsNoCompanion) {
    stage_.StartDesktop(kEditor);
    stage_.StartDriver();
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::companion);
    EXPECT_THAT(std::string(diagnosis["companion"]["evidence"]), HasSubstr("no port VEK_KRT9"));
    EXPECT_EQ(diagnosis["companion"]["command"], "krt9ctl watch");
}

TEST_F(Doctor, TellsThatTheCompanionStartedAfterTheDriver) {
    StartAll();
    stage_.Restart(Role::companion);
    MadeAt("KRT9Background", 1000);
    const struct {
        long made;
        const char* state;
    } cases[] = {{999, "ok"}, {1001, "cannot-tell"}, {1999, "cannot-tell"}, {2000, "fails"}};
    for (const auto& each : cases) {
        MadeAt("VEK_KRT9", each.made);
        EXPECT_EQ(Examine()["companion"]["state"], each.state) << each.made;
    }
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::companion);
    EXPECT_EQ(diagnosis["companion"]["pid"], stage_.Companion().pid());
    EXPECT_DOUBLE_EQ(diagnosis["companion"]["secondsAfterDriver"], 1.0);
    EXPECT_THAT(std::string(diagnosis["companion"]["command"]),
                testing::StartsWith("kill -INT " + std::to_string(stage_.Driver().pid())));
}

TEST_F(Doctor, TellsThatAnotherApplicationIsInFront) {
    StartAll();
    Stage::Control({"desktop", "launch", R"({"bundleID": "org.example.notes"})"});
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::front);
    EXPECT_EQ(diagnosis["front"]["application"], "org.example.notes");
    EXPECT_EQ(diagnosis["front"]["command"], "krt9ctl doctor --after 5");
    EXPECT_EQ(diagnosis["controls"]["state"], "cannot-tell");
    Stage::Control({"desktop", "activate"});
    EXPECT_THAT(std::string(Examine()["front"]["evidence"]), HasSubstr("no application"));
}

TEST_F(Doctor, WaitsForTheEditorToComeToTheFront) {
    StartAll();
    Stage::Control({"desktop", "activate"});
    const auto control = Stage::LaunchControl({"doctor", "--after", "1"});
    Stage::Control({"desktop", "activate", "com.apple.FinalCut"});
    EXPECT_EQ(control->WaitForExit(), 0) << control->StandardOutput();
}

// The driver is in a session whose desktop does not trust it; this process has a desktop that does.
TEST_F(Doctor, InfersThatTheDriverLacksThePermission) {
    const std::string trusting = test_support::ContentOf(KRT9_SCENES "/editor-10.4.6.json");
    std::string refusing = trusting;
    refusing.replace(refusing.find("\"trusted\": true"), 15, "\"trusted\": false");
    StartAll(refusing);
    const ScriptedDesktop desktop(trusting);
    const Outcome outcome = Carried({"doctor", "--timeout", "10"}, true);
    const Diagnosis diagnosis = Read(static_cast<int>(outcome.code), outcome.out);
    EXPECT_EQ(diagnosis["permission"]["error"], "permission");
    EXPECT_EQ(diagnosis["permission"]["command"], "krt9ctl desktop trust");
    EXPECT_EQ(diagnosis.failing.front(), "permission");
    EXPECT_EQ(diagnosis.code, ExitCode::permission);
}

TEST_F(Doctor, CannotTellOfThePermissionWithoutOneOfItsOwn) {
    StartAll();
    Stage::Control({"desktop", "trust", "--revoke"});
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis["permission"]["state"], "cannot-tell");
    EXPECT_THAT(std::string(diagnosis["permission"]["evidence"]), HasSubstr("not trusted"));
    EXPECT_EQ(diagnosis.code, ExitCode::ok);
}

TEST_F(Doctor, TellsWhichOfTheControlsAreNotFound) {
    StartAll();
    Stage::Control({"desktop", "set", "_NS:159", "AXIdentifier", "_NS:9159"});
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::controls);
    EXPECT_EQ(diagnosis["controls"]["command"], "krt9ctl why _NS:159 --role AXCheckBox");
    EXPECT_EQ(diagnosis["controls"]["controls"][0]["found"], false);
    EXPECT_THAT(std::string(diagnosis["controls"]["evidence"]),
                HasSubstr("not found: timeline-index toggle _NS:159"));
    const ProcessResult why = Stage::Control({"why", "_NS:159", "--role", "AXCheckBox"});
    EXPECT_EQ(why.status, static_cast<int>(ExitCode::notThere));
}

TEST_F(Doctor, NamesTheProfileThatAnUnknownVersionGets) {
    std::string scene = test_support::ContentOf(KRT9_SCENES "/editor-10.4.6.json");
    for (std::size_t at = scene.find("\"10.4.6\""); at != std::string::npos;
         at = scene.find("\"10.4.6\"")) {
        scene.replace(at, 8, "\"11.0.1\"");
    }
    StartAll(scene);
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis["front"]["version"], "11.0.1");
    EXPECT_EQ(diagnosis["front"]["profile"], "10.4.5");
    EXPECT_EQ(diagnosis["front"]["known"], false);
}

TEST_F(Doctor, TellsThatThereIsNoController) {
    StartAll();
    Stage::Control({"desktop", "unplug", "KRT-9 USB"});
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::controller);
    EXPECT_THAT(std::string(diagnosis["controller"]["evidence"]),
                HasSubstr("none of the 1 MIDI devices is a KRT-9 USB"));
}

TEST_F(Doctor, TellsThatTheControllerWasPluggedInTooLate) {
    StartAll();
    Stage::Control({"desktop", "unplug", "KRT-9 USB"});
    Stage::Control({"desktop", "plug",
                    R"({"name": "KRT-9 USB", "entities": [{"name": "Private",
                        "sources": ["Private"], "destinations": ["Private"]}]})"});
    const Diagnosis late = Examine();
    EXPECT_EQ(late.code, ExitCode::controller);
    EXPECT_THAT(std::string(late["controller"]["evidence"]), HasSubstr("it was plugged in"));
    stage_.Restart(Role::driver);
    EXPECT_EQ(Examine()["controller"]["state"], "ok");
}

TEST_F(Doctor, TellsThatTheControllersEntityIsMissing) {
    StartAll();
    Stage::Control({"desktop", "unplug", "KRT-9 USB"});
    Stage::Control({"desktop", "plug", R"({"name": "KRT-9 USB", "entities": []})"});
    EXPECT_THAT(std::string(Examine()["controller"]["evidence"]),
                HasSubstr("without its entity Private"));
}

TEST_F(Doctor, CannotTellOfTheControllerWhenTheLogOfItWasCleared) {
    StartAll();
    Stage::Control({"desktop", "log", "--clear"});
    EXPECT_EQ(Examine()["controller"]["state"], "cannot-tell");
}

TEST_F(Doctor, TellsThatThereAreNoTranslations) {
    std::filesystem::remove_all(home_.MakersFolder());
    StartAll();
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::translations);
    EXPECT_EQ(diagnosis.failing, std::vector<std::string>{"translations"});
}

TEST_F(Doctor, NamesTheFileOfTranslationsThatCannotBeRead) {
    home_.WriteTranslations("fr", "<plist><array/></plist>");
    StartAll();
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::translations);
    EXPECT_THAT(std::string(diagnosis["translations"]["path"]), testing::EndsWith("/fr.plist"));
}

TEST_F(Doctor, EndsAsTheFirstCheckThatFails) {
    std::filesystem::remove_all(home_.MakersFolder());
    stage_.StartDesktop(R"({"front": null})");
    const Diagnosis diagnosis = Examine();
    EXPECT_EQ(diagnosis.code, ExitCode::noDriver);
    EXPECT_THAT(diagnosis.failing,
                testing::ElementsAre("driver", "companion", "front", "controller", "translations"));
}

}  // namespace
}  // namespace krt9ctl
