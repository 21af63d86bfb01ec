// The verb replay: a report that is carried out again, and files that are none.
#include <archive.h>
#include <archive_entry.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "tests/support/EnvironmentVariable.h"
#include "tests/support/Files.h"
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

constexpr char kScene[] = R"({"front": "com.apple.FinalCut", "applications": [
    {"bundleID": "com.apple.FinalCut", "pid": 5, "info": {"CFBundleShortVersionString": "10.4.6"},
     "windows": [{"AXRole": "AXWindow", "AXChildren": [
       {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 1},
       {"AXRole": "AXStaticText", "AXIdentifier": "_NS:100", "AXValue": "Gulls"}]}]}]})";

constexpr char kRecording[] =
    "> language de\n> start\n"
    "> ask JElV 59\n    reply   01000000 = 1\n"
    "> ask JBtP 59\n    reply   (none)\n"
    "> ask JElV 59\n    reply   00000000 = 0\n"
    "> ask JAcF 0 0 1\n"
    "> tick 5\n    message JFSC 47756c6c7300 = \"Gulls\"\n";

class Replay : public testing::Test {
  protected:
    std::string Path(const std::string& name) const { return (folder_.Path() / name).string(); }

    std::string Report(const std::string& scene, const std::string& recording) const {
        WriteArchive(Path("r.zip"), {{member::kScene, scene}, {member::kRecording, recording}});
        return Path("r.zip");
    }

    ProcessResult Run(const std::string& file, std::vector<std::string> options = {}) const {
        options.insert(options.begin(), {"replay", file});
        return Stage::Control(options);
    }

    // One line that says what is wrong, and nothing left.
    void ExpectRefused(const std::string& file, const std::string& why, int code = 16) const {
        const ProcessResult result = Run(file);
        EXPECT_EQ(result.status, code) << result.standardOutput;
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_THAT(result.standardError, HasSubstr(why));
        EXPECT_EQ(test_support::LinesOf(result.standardError).size(), 1U) << result.standardError;
    }

    // Every session of a replay is gone with it.
    void TearDown() override {
        EXPECT_THAT(std::vector<std::filesystem::path>(
                        std::filesystem::directory_iterator(temporary_.Path()), {}),
                    IsEmpty());
    }

    test_support::TemporaryFolder folder_;
    test_support::TemporaryFolder temporary_;
    test_support::EnvironmentVariable variable_{"TMPDIR", temporary_.Path().string()};
};

TEST_F(Replay, SucceedsWhenRepliesAndMessagesAreAsRecorded) {
    const ProcessResult result = Run(Report(kScene, kRecording));
    EXPECT_EQ(result.status, 0) << result.standardError << result.standardOutput;
    EXPECT_EQ(result.standardOutput, "4 requests and 1 messages are as recorded\n");
}

TEST_F(Replay, FailsWhenTheDriverGivesAnotherReply) {
    std::string recording = kRecording;
    recording.replace(recording.find("01000000 = 1"), 12, "07000000 = 7");
    const ProcessResult result = Run(Report(kScene, recording));
    EXPECT_EQ(result.status, 15);
    EXPECT_EQ(result.standardOutput,
              "line 4: ask JElV 59: recorded 07000000 = 7, now 01000000 = 1\n");
    EXPECT_THAT(result.standardError,
                HasSubstr("1 replies or messages are not as recorded, of 4 "));
    const auto objects = ObjectsOf(Run(Path("r.zip"), {"--json"}).standardOutput);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0], Json::parse(R"({"line":4,"what":"ask JElV 59",
        "recorded":"07000000 = 7","now":"01000000 = 1"})"));
    EXPECT_EQ(objects[1]["error"], "differs");
    EXPECT_EQ(objects[1]["differences"], 1);
}

TEST_F(Replay, FailsWhenTheSceneIsAnotherOne) {
    std::string scene = kScene;
    scene.replace(scene.find("_NS:59"), 6, "_NS:60");
    const ProcessResult result = Run(Report(scene, kRecording));
    EXPECT_EQ(result.status, 15);
    EXPECT_THAT(result.standardOutput, HasSubstr("recorded 01000000 = 1, now (none)"));
}

TEST_F(Replay, FailsWhenAMessageIsAnotherOneOrDoesNotComeOrComesUnrecorded) {
    std::string scene = kScene;
    scene.replace(scene.find("Gulls"), 5, "Crowd");
    EXPECT_THAT(Run(Report(scene, kRecording)).standardOutput,
                HasSubstr("message JFSC: recorded 47756c6c7300 = \"Gulls\", now 43726f776400 = "));
    std::string recording = kRecording;
    recording += "    message JFTC 30310000 = \"01\"\n";
    EXPECT_THAT(Run(Report(kScene, recording)).standardOutput,
                HasSubstr("message JFTC: recorded 30310000 = \"01\", now nothing"));
    recording = kRecording;
    recording.erase(recording.find("    message"));
    EXPECT_THAT(Run(Report(kScene, recording)).standardOutput,
                HasSubstr("message JFSC: recorded nothing, now 47756c6c7300 = \"Gulls\""));
}

TEST_F(Replay, LeavesOutMessagesThatWereNotHeardAndComparesTheLanguage) {
    std::string recording = kRecording;
    recording.insert(recording.find("> ask"), "> unheard\n");
    recording.erase(recording.find("    message"));
    EXPECT_EQ(Run(Report(kScene, recording)).status, 0);
    recording = kRecording;
    recording.insert(recording.find("> ask"), "    message JSLg 667200 = \"fr\"\n");
    EXPECT_THAT(Run(Report(kScene, recording)).standardOutput,
                HasSubstr("line 3: message JSLg: recorded 667200 = \"fr\", now 646500 = \"de\""));
}

TEST_F(Replay, FailsWhenARequestWasNotDeliveredThen) {
    std::string recording = kRecording;
    recording.replace(recording.find("reply   01000000 = 1"), 20, "failed  time-out");
    EXPECT_THAT(Run(Report(kScene, recording)).standardOutput,
                HasSubstr("recorded time-out, now 01000000 = 1"));
}

TEST_F(Replay, PerformsCommandsOfTheDesktop) {
    std::string recording = kRecording;
    recording.insert(recording.find("> ask"),
                     R"(> desktop {"command": "set", "element": "_NS:59", "attribute": "AXValue",)"
                     R"( "value": 5})"
                     "\n");
    EXPECT_THAT(Run(Report(kScene, recording)).standardOutput,
                HasSubstr("ask JElV 59: recorded 01000000 = 1, now 05000000 = 5"));
}

TEST_F(Replay, TakesARecordingWithAScene) {
    const auto recording = folder_.Write("session.txt", kRecording).string();
    const auto scene = folder_.Write("scene.json", kScene).string();
    EXPECT_EQ(Run(recording, {"--scene", scene}).status, 0);
    ExpectRefused(recording, "give one with --scene");
    EXPECT_EQ(Run(recording, {"--scene", Path("missing")}).status, 1);
}

TEST_F(Replay, TakesAnotherDriver) {
    const std::string file = Report(kScene, kRecording);
    EXPECT_EQ(Run(file, {"--driver", Stage::ImpatientDriverPath()}).status, 0);
    const ProcessResult dead = Run(file, {"--driver", "/bin/false"});
    EXPECT_EQ(dead.status, 1);
    EXPECT_THAT(dead.standardError, HasSubstr("the driver ended before it served"));
    EXPECT_THAT(Run(file, {"--driver", Path("missing")}).standardError,
                HasSubstr("cannot be started: No such file"));
}

// A report that was written once, with the driver's replies of that time.
TEST_F(Replay, RepeatsTheReportsThatAreKept) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KRT9_TEST_DATA "/reports")) {
        if (entry.path().extension() != ".zip") {
            continue;
        }
        const ProcessResult result = Run(entry.path().string());
        EXPECT_EQ(result.status, 0)
            << entry.path() << result.standardOutput << result.standardError;
        ++count;
    }
    EXPECT_GE(count, 2U);
}

TEST_F(Replay, IsStoppedByASignalAndLeavesNothing) {
    std::string recording = kRecording;
    for (int i = 0; i < 60; ++i) {
        recording += "> tick 10\n";
    }
    const auto replay = Stage::LaunchControl({"replay", Report(kScene, recording)});
    ASSERT_TRUE(test_support::WaitUntil([this] {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(temporary_.Path())) {
            if (entry.path().filename().string().find("VEK_KRT9") != std::string::npos) {
                return true;
            }
        }
        return false;
    }));
    replay->Signal(SIGINT);
    EXPECT_EQ(replay->WaitForExit(), 130);
}

// --- Files that are no report --------------------------------------------------------------------

TEST_F(Replay, RefusesWhatIsNoReport) {
    ExpectRefused(Path("missing"), "'");
    ExpectRefused(folder_.Path().string(), "it is no file");
    ExpectRefused("/dev/zero", "it is no file");
    ExpectRefused(folder_.Write("empty", "").string(), "no request is recorded in it");
    ExpectRefused(folder_.Write("text", "Hello\x1b[31m.\n").string(), "line 1: neither a step");
    ExpectRefused(folder_.Write("pk", "PK").string(), "'");
    ExpectRefused(
        folder_.Write("half.zip", ContentOf(Report(kScene, kRecording)).substr(0, 200)).string(),
        "'");
    const auto huge = folder_.Write("huge", "");
    std::filesystem::resize_file(huge, kLargestMember + 1);
    ExpectRefused(huge.string(), "more than 32 MiB");
}

TEST_F(Replay, RefusesReportsWithoutWhatItNeeds) {
    WriteArchive(Path("a.zip"), {{member::kRecording, kRecording}});
    ExpectRefused(Path("a.zip"), "the report has no scene.json");
    WriteArchive(Path("a.zip"), {{member::kScene, kScene}, {member::kReport, "[not JSON"}});
    ExpectRefused(Path("a.zip"), "the report has no recording.txt");
    WriteArchive(Path("a.zip"), {{"other", "x"}});
    ExpectRefused(Path("a.zip"), "the report has no scene.json");
    ExpectRefused(Report("not JSON", kRecording), "the simulated desktop does not start: ", 1);
    ExpectRefused(Report(R"({"unknown": 1})", kRecording), "unknown", 1);
    ExpectRefused(Report(kScene, "> start\n> ask JElV 12x\n"), "line 2 of the recording: ");
    ExpectRefused(Report(kScene, "> ask JElV 59\n"), "replay cannot perform this step here");
    ExpectRefused(Report(kScene, "> start\n> start\n> ask JElV 59\n"), "replay cannot perform");
    ExpectRefused(Report(kScene, "> start\n> ask J\n"), "no code: J");
    ExpectRefused(Report(kScene, "> start\n> ask\n"), "it names no code");
    ExpectRefused(Report(kScene, "> start\n> tick x\n> ask JPth\n"), "no number");
    ExpectRefused(Report(kScene, "> start\n> desktop {\n> ask JPth\n"), "desktop");
    ExpectRefused(Report(kScene, "> start\n> desktop {\"command\": \"x\"}\n> ask JPth\n"),
                  "line 2");
    ExpectRefused(Report(kScene, "> start\n> shell rm\n> ask JPth\n"), "cannot perform");
    ExpectRefused(Report(kScene, "> start\n"), "no request is recorded in it");
}

// Archives as WriteArchive never makes them.
struct Hostile {
    std::string name;
    std::string content;
    mode_t type = AE_IFREG;
};

std::string Pack(const std::string& path, const std::vector<Hostile>& members) {
    archive* writer = archive_write_new();
    archive_write_set_format_zip(writer);
    archive_write_open_filename(writer, path.c_str());
    for (const Hostile& each : members) {
        archive_entry* entry = archive_entry_new();
        archive_entry_set_pathname(entry, each.name.c_str());
        archive_entry_set_filetype(entry, each.type);
        archive_entry_set_perm(entry, 0644);
        if (each.type == AE_IFLNK) {
            archive_entry_set_symlink(entry, each.content.c_str());
        } else {
            archive_entry_set_size(entry, static_cast<la_int64_t>(each.content.size()));
        }
        archive_write_header(writer, entry);
        archive_write_data(writer, each.content.data(), each.content.size());
        archive_entry_free(entry);
    }
    archive_write_close(writer);
    archive_write_free(writer);
    return path;
}

TEST_F(Replay, RefusesArchivesThatAreHostile) {
    const Hostile scene{member::kScene, kScene};
    const Hostile session{member::kRecording, kRecording};
    for (const char* name :
         {"../scene.json", "/tmp/scene.json", "a/../../scene.json", "../\x1b[2J"}) {
        ExpectRefused(Pack(Path("h.zip"), {scene, session, {name, "x"}}), "leads out of a folder");
    }
    ExpectRefused(Pack(Path("h.zip"), {scene, scene, session}), "it has scene.json twice");
    ExpectRefused(Pack(Path("h.zip"), {{member::kScene, "/etc/passwd", AE_IFLNK}, session}),
                  "scene.json is no file");
    ExpectRefused(Pack(Path("h.zip"), {scene, {member::kRecording, std::string(40 << 20, '\n')}}),
                  "recording.txt has more than 32 MiB");
    ExpectRefused(Pack(Path("h.zip"), std::vector<Hostile>(1001, {"x", "y"})),
                  "more than 1000 members");
    const std::string deep(1 << 20, '[');
    ExpectRefused(Report(kScene, "> start\n> desktop {\"command\": " + deep + "\n> ask JPth\n"),
                  "line 2 of the recording: ");
    ExpectRefused(Report(kScene, "> start\n> desktop {\"command\": " + deep +
                                     std::string(1 << 20, ']') + "}\n> ask JPth\n"),
                  "line 2 of the recording: ");
    WriteArchive(Path("h.zip"), {{member::kReport, "{\"missing\": " + deep}});
    ExpectRefused(Path("h.zip"), "the report has no scene.json");
    std::string steps = "> start\n";
    for (int i = 0; i < 20001; ++i) {
        steps += "> ask JPth\n";
    }
    ExpectRefused(Pack(Path("h.zip"), {scene, {member::kRecording, steps}}),
                  "more than 20000 steps");
}

// What a report need not have is left alone, so that one may add to it.
TEST_F(Replay, LeavesOtherMembersAlone) {
    const std::string file = Pack(Path("h.zip"), {{"notes/what I did.txt", "x"},
                                                  {member::kScene, kScene},
                                                  {"big", std::string(40 << 20, 'x')},
                                                  {member::kRecording, kRecording}});
    EXPECT_EQ(Run(file).status, 0);
}

TEST_F(Replay, EndsWithTheFirstRequestThatIsNotDelivered) {
    const auto driver = folder_.Write(
        "driver", "#!/bin/sh\nexec timeout -s KILL 1 '" + Stage::ImpatientDriverPath() + "'\n");
    std::filesystem::permissions(driver, std::filesystem::perms::owner_all);
    std::string recording = "> start\n> tick 10\n> tick 10\n";
    for (int i = 0; i < 3; ++i) {
        recording += "> ask JElV 59\n    reply   01000000 = 1\n";
    }
    const ProcessResult result = Run(Report(kScene, recording), {"--driver", driver.string()});
    EXPECT_EQ(result.status, 15) << result.standardError;
    EXPECT_THAT(test_support::LinesOf(result.standardOutput),
                testing::ElementsAre(testing::MatchesRegex(
                    "line 5: ask JElV 59: recorded 01000000 = 1, now (no-driver|transport)")));
    EXPECT_THAT(result.standardError, HasSubstr("of 1 requests"));
}

TEST_F(Replay, RepeatsWhatAHangingApplicationLeavesUnread) {
    std::string scene = kScene;
    scene.insert(scene.find("\"windows\""), R"("hung": true, )");
    const std::string recording = "> start\n> ask JElV 59\n    reply   (none)\n";
    EXPECT_EQ(Run(Report(scene, recording), {"--driver", Stage::ImpatientDriverPath()}).status, 0);
}

}  // namespace
}  // namespace krt9ctl
