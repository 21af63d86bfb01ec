// The verb report: what it holds, what it never holds, and where it works.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include "companion/KRT9Companion.h"
#include "tests/support/Files.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/Stage.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WaitUntil.h"
#include "tests/unit/tools/Carried.h"
#include "tools/report/Archive.h"
#include "tools/report/Material.h"

namespace krt9ctl {
namespace {

using test_support::ContentOf;
using test_support::ProcessResult;
using test_support::Stage;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

const std::set<std::string> kMembers = {member::kReport, member::kDoctor, member::kScene,
                                        member::kTrace, member::kRecording};

class ReportTest : public testing::Test {
  protected:
    std::string File() const { return (folder_.Path() / "report.zip").string(); }

    ProcessResult Report(std::vector<std::string> options = {}) const {
        options.insert(options.begin(), {"report", File(), "--for", "0.6"});
        return Stage::Control(options);
    }

    std::map<std::string, std::string> Members() const {
        return ReadArchive(ContentOf(File()), kMembers);
    }

    Json About() const { return Json::parse(Members().at(member::kReport)); }

    void StartAll(const std::string& scene = "editor-10.4.6.json") {
        stage_.StartDesktop(scene);
        stage_.StartCompanion();
        stage_.StartDriver();
    }

    test_support::TemporaryFolder folder_;
    test_support::HomeFolder home_;
    Stage stage_;
};

TEST_F(ReportTest, HoldsWhatABugReportNeedsAndSaysSo) {
    StartAll();
    const ProcessResult result = Report();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardError, "");
    for (const std::string& name : kMembers) {
        EXPECT_THAT(result.standardOutput, HasSubstr("\n  " + name + " ")) << name;
    }
    EXPECT_THAT(result.standardOutput, HasSubstr("Look inside before you pass it on"));

    const auto members = Members();
    ASSERT_EQ(members.size(), kMembers.size());
    const Json about = About();
    EXPECT_EQ(about["driver"], "1.0.0");
    EXPECT_EQ(about["krt9ctl"], "1.0.0");
    EXPECT_EQ(about["application"]["version"], "10.4.6");
    EXPECT_EQ(about["missing"], Json::object());
    EXPECT_EQ(ObjectsOf(members.at(member::kDoctor)).size(), 9U);
    EXPECT_THAT(members.at(member::kTrace), HasSubstr(R"("event":"request")"));
    EXPECT_THAT(members.at(member::kScene), HasSubstr(R"("AXIdentifier": "_NS:171")"));
    EXPECT_THAT(members.at(member::kRecording),
                HasSubstr("> ask JElV 171\n    request JElV ab000000\n    reply   01000000 = 1\n"));
    EXPECT_THAT(
        members.at(member::kRecording),
        HasSubstr("> ask JESI 87\n    request JESI 57000000\n    reply   64000000 = 100\n"));
    EXPECT_THAT(members.at(member::kRecording), HasSubstr("> ask JGRV "));
}

TEST_F(ReportTest, ChangesNothing) {
    StartAll();
    const auto log = [] { return Stage::Control({"desktop", "log"}).standardOutput; };
    const std::string scene = Stage::Control({"dump"}).standardOutput;
    const std::string before = log();
    EXPECT_EQ(Report().status, 0);
    EXPECT_EQ(log(), before);
    EXPECT_EQ(Stage::Control({"dump"}).standardOutput, scene);
}

// Wherever an application can show a text, and in each form that a file of the report could have.
TEST_F(ReportTest, HasNoTextOfItsUserAnywhere) {
    const test_support::EnvironmentVariable home("HOME", (home_.Path() / "SecretHome").string());
    std::filesystem::create_directories(home_.Path() / "SecretHome" / kTranslationsFolder);
    std::ofstream(home_.Path() / "SecretHome" / kTranslationsFolder / "fr.plist") << "no list";
    StartAll(R"({"front": "com.apple.FinalCut", "applications": [
      {"bundleID": "com.apple.FinalCut", "name": "Secret Name", "pid": 7,
       "info": {"CFBundleShortVersionString": "10.4.6", "CFBundleName": "Secret Bundle"},
       "windows": [{"AXRole": "AXWindow", "AXTitle": "Secret Title", "AXDocument": "file:///Secret",
         "AXChildren": [
          {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:171", "AXValue": 1, "AXHelp": "Secret",
           "AXDescription": "Secret", "AXRoleDescription": "Secret", "AXPlaceholderValue": "Secret"},
          {"AXRole": "AXTextField", "AXIdentifier": "_NS:87", "AXValue": "77 Secret Street"},
          {"AXRole": "AXTextField", "AXIdentifier": "_NS:88", "AXValue": "Möwe Secret"},
          {"AXRole": "AXStaticText", "AXIdentifier": "_NS:100", "AXValue": "Secret Clip"},
          {"AXRole": "AXGroup", "AXOwn": {"array": ["Secret", {"dictionary": {"Secret": "Secret"}}]},
           "AXData": {"data": "536563726574"}, "AXValueDescription": "Secret"}]}]}]})");
    ASSERT_EQ(Report().status, 0);
    const auto members = Members();
    ASSERT_EQ(members.size(), kMembers.size());
    for (const auto& [name, content] : members) {
        for (const char* secret : {"Secret", "secret", "SECRET", "536563726574", "Street", "Möwe",
                                   "M\\u00f6we", "4d9a7765", "77 "}) {
            EXPECT_THAT(content, Not(HasSubstr(secret))) << name;
        }
    }
    EXPECT_THAT(members.at(member::kDoctor), HasSubstr("~/")) << "the file is not named";
    EXPECT_THAT(ContentOf(File()), Not(HasSubstr("Secret")));
}

TEST_F(ReportTest, WorksWithoutDriverAndCompanion) {
    stage_.StartDesktop("editor-10.4.6.json");
    EXPECT_EQ(Report().status, 0);
    EXPECT_EQ(About()["missing"], (Json{{member::kRecording, "no driver replied"}}));
    EXPECT_EQ(About()["driver"], nullptr);
    EXPECT_THAT(Members().at(member::kDoctor), HasSubstr(R"("error":"no-driver")"));
    const ProcessResult replay = Stage::Control({"replay", File()});
    EXPECT_EQ(replay.status, static_cast<int>(ExitCode::badReport));
    EXPECT_THAT(replay.standardError, HasSubstr("no recording.txt: no driver replied"));
}

TEST_F(ReportTest, WorksWithoutAnythingAtAll) {
    const ProcessResult result = Report();
    EXPECT_EQ(result.status, 0) << result.standardError;
    EXPECT_THAT(result.standardError, HasSubstr("the editor was not in front"));
    EXPECT_EQ(About()["missing"][member::kScene], "no application is in front");
}

TEST_F(ReportTest, SaysWhyItHasNoDumpWithoutThePermission) {
    StartAll();
    Stage::Control({"desktop", "trust", "--revoke"});
    EXPECT_EQ(Report().status, 0);
    EXPECT_THAT(std::string(About()["missing"][member::kScene]), HasSubstr("not trusted"));
}

TEST_F(ReportTest, SaysThatAnotherTraceRuns) {
    StartAll();
    const auto trace = Stage::LaunchControl({"trace", "--all"});
    ASSERT_TRUE(trace->WaitForOutput("tick"));
    EXPECT_EQ(Report().status, 0);
    EXPECT_THAT(std::string(About()["missing"][member::kTrace]), HasSubstr("another trace"));
}

TEST_F(ReportTest, EndsItsQuestionsWithTheFirstThatTimesOut) {
    StartAll();
    Stage::Control({"desktop", "misbehave", "_NS:171", R"({"read": {"*": {}}})"});
    stage_.Stop(test_support::Role::driver);
    const ProcessResult result = test_support::RunProcess(
        Stage::ControlPath(), {"--timeout", "0.2", "report", File(), "--for", "0.1"});
    stage_.Continue(test_support::Role::driver);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(About()["missing"][member::kRecording], "no driver replied");
}

TEST_F(ReportTest, FailsWhereItCannotWriteAndLeavesNoHalfFile) {
    StartAll();
    const ProcessResult full = Stage::Control({"report", "/dev/full", "--for", "0.1"});
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.standardError, HasSubstr("'/dev/full' cannot be written"));
    const ProcessResult missing =
        Stage::Control({"report", (folder_.Path() / "no" / "file").string(), "--for", "0.1"});
    EXPECT_EQ(missing.status, 1);
    const ProcessResult half = test_support::RunProcess(
        "/bin/sh", {"-c", "trap '' XFSZ; ulimit -f 1; exec \"$0\" report \"$1\" --for 0.1",
                    Stage::ControlPath(), File()});
    EXPECT_EQ(half.status, 1);
    EXPECT_THAT(half.standardError, HasSubstr("cannot be written: "));
    EXPECT_FALSE(std::filesystem::exists(File()));
    const ProcessResult output = test_support::RunProcess(
        "/bin/sh",
        {"-c", "\"$0\" report \"$1\" --for 0.1 > /dev/full", Stage::ControlPath(), File()});
    EXPECT_EQ(output.status, 1);
    EXPECT_THAT(output.standardError, HasSubstr("the output cannot be written"));
}

TEST_F(ReportTest, NamesItselfByTheTimeWithoutAFile) {
    StartAll();
    const ProcessResult result =
        test_support::RunProcess("/bin/sh", {"-c", "cd \"$1\" && \"$0\" report --for 0.1 --json",
                                             Stage::ControlPath(), folder_.Path().string()});
    EXPECT_EQ(result.status, 0) << result.standardError;
    const Json object = Json::parse(result.standardOutput);
    EXPECT_THAT(std::string(object["report"]),
                testing::MatchesRegex("krt9-report-[0-9]{8}-[0-9]{6}.zip"));
    EXPECT_TRUE(std::filesystem::exists(folder_.Path() / std::string(object["report"])));
    EXPECT_EQ(object["members"].size(), kMembers.size());
}

TEST_F(ReportTest, IsNotWrittenAfterASignal) {
    StartAll();
    const auto report = Stage::LaunchControl({"report", File(), "--for", "60"});
    ASSERT_TRUE(test_support::WaitUntil([this] {
        const auto files = stage_.Session().Files();
        return std::count(files.begin(), files.end(), "signposts") > 0;
    }));
    report->Signal(SIGINT);
    EXPECT_EQ(report->WaitForExit(), 130);
    EXPECT_FALSE(std::filesystem::exists(File()));
}

}  // namespace
}  // namespace krt9ctl
