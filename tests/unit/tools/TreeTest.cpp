// The verbs tree and find: what they show of an application, of a dump, and of trees that mean
// harm.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tests/support/ChildProcess.h"
#include "tests/support/Paths.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/tools/Carried.h"
#include "tests/unit/tools/OnTerminal.h"

namespace krt9ctl {
namespace {

using test_support::ScriptedDesktop;
using testing::HasSubstr;
using testing::Not;

constexpr char kProgram[] = KRT9_BINARIES "/krt9ctl";

std::string SceneWith(const std::string& elements) {
    return R"({"front": "com.apple.FinalCut", "applications": [
        {"bundleID": "com.apple.FinalCut", "name": "Final Cut Pro", "pid": 501,
         "windows": [{"AXRole": "AXWindow", "AXTitle": "Viewer", "AXIdentifier": "_NS:1",
                      "AXChildren": [)" +
           elements + "]}]}]}";
}

constexpr char kEditor[] = R"(
    {"AXRole": "AXGroup", "AXDescription": "Tools", "AXChildren": [
      {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:159", "AXTitle": "Index", "AXValue": 1},
      {"AXRole": "AXSlider", "AXIdentifier": "_NS:33", "AXValue": 0.5},
      {"AXRole": "AXTextField", "AXSubrole": "AXSearchField", "AXIdentifier": "_NS:8",
       "AXValue": "Sch\u00f6n"},
      {"AXRole": "AXButton", "AXIdentifier": "close", "AXTitle": "Close"},
      {"AXRole": "AXButton", "AXIdentifier": "_NS:159", "AXTitle": "Again"}]},
    {"AXRole": "AXTable", "AXIdentifier": "_NS:139", "AXChildren": [
      {"AXRole": "AXRow", "AXChildren": [
        {"AXRole": "AXButton", "AXIdentifier": "_NS:171"}]}]},
    {"AXRole": "AXButton", "AXTitle": "Nameless", "AXPosition": [1, 2], "AXValue": [1, 2]})";

// Runs the verb on the scene, once in front and once as a file: both must be the same.
Outcome OnBoth(const std::string& scene, std::vector<std::string> words, bool json = false) {
    const ScriptedDesktop session(scene);
    const test_support::TemporaryFolder folder;
    const Outcome live = Carried(words, json);
    words.insert(words.end(), {"--scene", folder.Write("scene.json", scene)});
    const Outcome ofFile = Carried(words, json);
    EXPECT_EQ(live.out, ofFile.out);
    EXPECT_EQ(live.code, ofFile.code);
    return live;
}

TEST(Tree, ShowsEveryElementBelowItsParentAndWhatRequestsCanName) {
    EXPECT_EQ(OnBoth(SceneWith(kEditor), {"tree"}).out,
              R"(  AXApplication "Final Cut Pro"
-   AXWindow _NS:1 "Viewer" [a window]
      AXGroup (Tools)
+       AXCheckBox _NS:159 "Index" = 1
-       AXSlider _NS:33 = 0.5 [its role]
-       AXTextField _NS:8 = Schön [a search field]
-       AXButton close "Close" [not _NS: and a number]
-       AXButton _NS:159 "Again" [behind /0/0/0]
+     AXTable _NS:139
        AXRow
-         AXButton _NS:171 [inside AXTable]
      AXButton "Nameless" = [1,2]
)");
}

TEST(Tree, WithAFilterShowsWhatSurroundsTheElementsFound) {
    const std::string scene = SceneWith(kEditor);
    EXPECT_EQ(OnBoth(scene, {"tree", "--role", "AXSlider"}).out,
              R"(  AXApplication "Final Cut Pro"
-   AXWindow _NS:1 "Viewer" [a window]
      AXGroup (Tools)
-       AXSlider _NS:33 = 0.5 [its role]
)");
    EXPECT_THAT(OnBoth(scene, {"tree", "--identifier", "171"}).out, HasSubstr("_NS:171"));
    EXPECT_THAT(OnBoth(scene, {"tree", "--identifier", "close"}).out, HasSubstr("\"Close\""));
    EXPECT_THAT(OnBoth(scene, {"tree", "--text", "SCHÖN"}).out, HasSubstr("Schön"));
    const Outcome none = OnBoth(scene, {"tree", "--role", "AXSlider", "--text", "index"});
    EXPECT_EQ(none.code, ExitCode::notThere);
    EXPECT_THAT(none.err, HasSubstr("none of the 12 elements fits"));
}

TEST(Tree, IsOneObjectALineForPrograms) {
    const Outcome outcome = OnBoth(SceneWith(kEditor), {"tree"}, true);
    const auto objects = ObjectsOf(outcome.out);
    ASSERT_EQ(objects.size(), 12U);
    EXPECT_EQ(objects[0], Json::parse(R"({"path": "/", "depth": 0, "role": "AXApplication",
        "title": "Final Cut Pro", "reach": "nameless"})"));
    EXPECT_EQ(objects[3], Json::parse(R"({"path": "/0/0/0", "depth": 3, "role": "AXCheckBox",
        "identifier": "_NS:159", "title": "Index", "value": 1, "reach": "reached"})"));
    EXPECT_EQ(objects[5]["subrole"], "AXSearchField");
    EXPECT_EQ(objects[5]["reach"], "search-field");
    EXPECT_EQ(objects[7]["reach"], "shadowed");
    EXPECT_EQ(objects[7]["behind"], "/0/0/0");
    EXPECT_EQ(objects[10]["reach"], "inside");
    EXPECT_EQ(objects[10]["inside"], "/0/1");
    EXPECT_EQ(objects[10]["insideRole"], "AXTable");
    const Outcome filtered = OnBoth(SceneWith(kEditor), {"tree", "--role", "AXSlider"}, true);
    EXPECT_EQ(Json::parse(filtered.out)["identifier"], "_NS:33");
}

TEST(Find, LooksInIdentifierTitleDescriptionAndValueWhateverTheCase) {
    const std::string scene = SceneWith(kEditor);
    EXPECT_EQ(OnBoth(scene, {"find", "iNDEX"}).out, "+ /0/0/0 AXCheckBox _NS:159 \"Index\" = 1\n");
    EXPECT_EQ(OnBoth(scene, {"find", "schÖN"}).out,
              "- /0/0/2 AXTextField _NS:8 = Schön [a search field]\n");
    EXPECT_EQ(OnBoth(scene, {"find", "tools"}).out, "  /0/0 AXGroup (Tools)\n");
    EXPECT_EQ(OnBoth(scene, {"find", "_ns:17"}).out,
              "- /0/1/0/0 AXButton _NS:171 [inside AXTable]\n");
    EXPECT_EQ(OnBoth(scene, {"find", "0.5"}).out, "- /0/0/1 AXSlider _NS:33 = 0.5 [its role]\n");
    const Outcome none = OnBoth(scene, {"find", "elsewhere"}, true);
    EXPECT_EQ(none.code, ExitCode::notThere);
    EXPECT_EQ(Json::parse(none.out)["error"], "not-there");
}

TEST(Tree, SaysWhyItCannotRead) {
    const struct {
        const char* scene;
        const char* sentence;
    } cases[] = {
        {R"({"front": null})", "no application is in front"},
        {R"({"trusted": false, "front": "a.b", "applications": [{"bundleID": "a.b"}]})",
         "not trusted"},
        {R"({"front": "a.b", "applications": [{"bundleID": "a.b", "hung": true}]})",
         "does not reply"},
        {R"({"front": "a.b", "applications": [{"bundleID": "a.b",
             "windows": {"error": -25200}}]})",
         "windows cannot be read (accessibility error -25200)"},
    };
    for (const auto& each : cases) {
        const ScriptedDesktop session(each.scene);
        for (const std::vector<std::string>& words :
             {std::vector<std::string>{"tree"}, {"find", "x"}}) {
            const Outcome outcome = Carried(words);
            EXPECT_EQ(outcome.code, ExitCode::accessibility) << each.scene;
            EXPECT_THAT(outcome.err, HasSubstr(each.sentence)) << each.scene;
            EXPECT_EQ(outcome.out, "");
        }
    }
}

TEST(Tree, SaysThatThereIsNoDesktopToRead) {
    const test_support::SessionFixture session;
    for (const std::vector<std::string>& words : {std::vector<std::string>{"tree"},
                                                  {"tree", "--pid", "5"},
                                                  {"why", "5"},
                                                  {"dump"},
                                                  {"profile"},
                                                  {"view"}}) {
        const Outcome outcome = Carried(words);
        EXPECT_EQ(outcome.code, ExitCode::accessibility) << words[0];
        EXPECT_THAT(outcome.out + outcome.err,
                    HasSubstr("no simulated desktop runs in the session"))
            << words[0];
    }
}

TEST(Tree, ShowsControlCharactersAsTextAndShortensWhatIsLong) {
    const std::string scene = SceneWith(
        R"({"AXRole": "AX\u001b[31m", "AXIdentifier": "\u0007", "AXTitle": "a\nb\u009b",
            "AXDescription": ")" +
        std::string(41, 'x') + R"(", "AXValue": ")" + std::string(50000, 'v') + R"("})");
    EXPECT_THAT(OnBoth(scene, {"tree"}).out, HasSubstr(R"(- )"
                                                       R"(    AX\x1b[31m \x07 "a\x0ab\x9b" ()" +
                                                       std::string(40, 'x') + "...) = " +
                                                       std::string(40, 'v') + "... [its role]\n"));
}

TEST(Tree, CountsCharactersAndNotBytesWhenItShortens) {
    std::string forty;
    for (int i = 0; i < 40; ++i) {
        forty += "ä";
    }
    EXPECT_THAT(
        OnBoth(SceneWith(R"({"AXRole": "AXGroup", "AXTitle": ")" + forty + R"("})"), {"tree"}).out,
        HasSubstr("\"" + forty + "\"\n"));
    EXPECT_THAT(
        OnBoth(SceneWith(R"({"AXRole": "AXGroup", "AXTitle": ")" + forty + R"(ö"})"), {"tree"}).out,
        HasSubstr("\"" + forty + "...\"\n"));
}

TEST(Tree, OfAnyDepthHasLinesOfBoundedLength) {
    constexpr int kDepth = 3000;
    std::string deep;
    for (int i = 0; i < kDepth; ++i) {
        deep += R"({"AXRole": "AXGroup", "AXChildren": [)";
    }
    deep += R"({"AXRole": "AXButton", "AXIdentifier": "_NS:5"})";
    for (int i = 0; i < kDepth; ++i) {
        deep += "]}";
    }
    for (const bool json : {false, true}) {
        const std::string out = OnBoth(SceneWith(deep), {"tree"}, json).out;
        EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), kDepth + 3);
        EXPECT_LT(out.size(), kDepth * 250U);
    }
    EXPECT_THAT(OnBoth(SceneWith(deep), {"tree"}).out, HasSubstr("(3002) AXButton _NS:5\n"));
    EXPECT_THAT(OnBoth(SceneWith(deep), {"find", "_NS:5"}).out,
                HasSubstr("+ /0/0/0/0/0/0/0/0/0/0/.../0/0/0/0/0/0/0/0/0/0 AXButton"));
}

TEST(Tree, HasAddressesThatAreWholeUpToAHundredSteps) {
    std::string deep;
    for (int i = 0; i < 99; ++i) {
        deep += R"({"AXRole": "AXImage"}, {"AXRole": "AXGroup", "AXTitle": ")" +
                std::to_string(i + 2) + R"(", "AXChildren": [)";
    }
    for (int i = 0; i < 99; ++i) {
        deep += i == 0 ? R"({"AXRole": "AXButton", "AXTitle": "101"}]})" : "]}";
    }
    std::string whole = "/0";
    for (int i = 0; i < 99; ++i) {
        whole += "/1";
    }
    const std::string scene = SceneWith(deep);
    EXPECT_EQ(OnBoth(scene, {"find", "100"}).out, "  " + whole + " AXGroup \"100\"\n");
    EXPECT_EQ(OnBoth(scene, {"find", "101"}).out,
              "  /0/1/1/1/1/1/1/1/1/1/.../1/1/1/1/1/1/1/1/1/0 AXButton \"101\"\n");
}

TEST(Tree, ThatListsItselfIsShownOnce) {
    const std::string scene = SceneWith(
        R"({"AXRole": "AXGroup", "AXChildren": {"array": [{"element": "/0"}, {"element": "/0/0"},
            {"element": "/"}]}}, {"AXRole": "AXButton", "AXIdentifier": "_NS:5"})");
    EXPECT_EQ(OnBoth(scene, {"tree"}).out, R"(  AXApplication "Final Cut Pro"
-   AXWindow _NS:1 "Viewer" [its role]
      AXGroup
+     AXButton _NS:5
)");
}

// By position, by role and by identifier; before and after the place where they are written.
TEST(Tree, HasChildrenThatAreListedByTheirAddress) {
    const std::string scene = SceneWith(R"(
        {"AXRole": "AXGroup", "AXTitle": "first", "AXChildren": {"array": [
          {"element": "/0/2"}, {"element": "_NS:7"}, {"element": "/AXWindow/AXGroup[1]"}]}},
        {"AXRole": "AXGroup", "AXTitle": "second", "AXChildren": [
          {"AXRole": "AXButton", "AXIdentifier": "_NS:7"},
          {"AXRole": "AXGroup", "AXTitle": "deep"}]},
        {"AXRole": "AXButton", "AXIdentifier": "_NS:6"},
        {"AXRole": "AXTable", "AXChildren": {"array": [{"element": null}, {"element": "/0/1/1"}]}},
        {"AXRole": "AXGroup", "AXChildren": {"array": [1, {"element": "/0/1/1"}]}})");
    EXPECT_EQ(OnBoth(scene, {"tree"}).out, R"(  AXApplication "Final Cut Pro"
-   AXWindow _NS:1 "Viewer" [a window]
      AXGroup "first"
+       AXButton _NS:6
+       AXButton _NS:7
        AXGroup "second"
          AXGroup "deep"
      AXTable
      AXGroup
)");
    EXPECT_EQ(OnBoth(scene, {"find", "_NS:"}, true).code, ExitCode::ok);
}

TEST(Tree, HasChildrenOfAnotherApplication) {
    const std::string scene = R"({"front": "a.b", "applications": [
        {"bundleID": "a.b", "name": "Host", "windows": [{"AXRole": "AXWindow", "AXChildren": {"array": [
          {"element": "/0", "application": "c.d"}, {"element": "/0/0", "application": "pid:9"}]}}]},
        {"bundleID": "c.d", "pid": 9, "windows": [{"AXRole": "AXGroup", "AXChildren": [
          {"AXRole": "AXButton", "AXIdentifier": "_NS:5"}]}]}]})";
    EXPECT_EQ(OnBoth(scene, {"tree"}).out, R"(  AXApplication "Host"
    AXWindow
      AXGroup
+       AXButton _NS:5
)");
}

TEST(SceneFile, LeavesOutChildrenThatItDoesNotHave) {
    const test_support::TemporaryFolder folder;
    for (const char* child :
         {R"({"element": "/0/7"})", R"({"element": "_NS:9"})", R"({"element": "/0/AXRow[1]"})",
          R"({"element": "/0/"})", R"({"element": "//"})", R"({"element": ""})",
          R"({"element": "/0/AXRow[x]"})", R"({"element": "/0", "application": "x.y"})",
          R"({"element": 5})"}) {
        const std::string file = folder.Write(
            "scene.json", std::string(R"({"applications": [{"windows": [{"AXRole": "AXWindow",
                "AXChildren": {"array": [)") +
                              child + R"(, {"element": "/"}]}}]}]})");
        EXPECT_EQ(Carried({"tree", "--scene", file}).out, "  AXApplication\n    AXWindow\n")
            << child;
    }
}

std::string Failure(const std::string& file, std::vector<std::string> more = {}) {
    const test_support::TemporaryFolder folder;
    std::vector<std::string> words = {"tree", "--scene", folder.Write("scene.json", file)};
    words.insert(words.end(), more.begin(), more.end());
    std::ostringstream out, err;
    EXPECT_EQ(RunCommandLine(words, {out, err}), ExitCode::failure);
    EXPECT_EQ(out.str(), "");
    const std::string sentence = err.str();
    EXPECT_EQ(std::count(sentence.begin(), sentence.end(), '\n'), 1) << sentence;
    return sentence;
}

TEST(SceneFile, ThatIsNoSceneIsRefusedInOneLine) {
    for (const char* text : {"", "[1]", "nonsense\x01", "{\"applications\": 1}", "{}",
                             "{\"applications\": [1]}", "{\"a\": \"\xff\"}"}) {
        EXPECT_THAT(Failure(text), testing::StartsWith("krt9ctl: tree: '/")) << text;
    }
    EXPECT_THAT(Failure(R"({"applications": [{}, {}]})"), HasSubstr("choose one"));
    EXPECT_THAT(Failure(R"({"applications": [{}]})", {"--pid", "5"}),
                HasSubstr("no such application"));
    EXPECT_THAT(Failure(R"({"applications": [{"windows": [{"AXChildren": [1]}]}]})"),
                HasSubstr("applications[0].windows[0].AXChildren[0]: expected an object"));
    EXPECT_THAT(Failure(R"({"applications": [{"windows": [{"AXValue": {"point": 1}}]}]})"),
                HasSubstr("applications[0].windows[0].AXValue.point: "));
    std::ostringstream out, err;
    EXPECT_EQ(RunCommandLine({"find", "x", "--scene", "/nowhere/a\nb"}, {out, err}),
              ExitCode::failure);
    EXPECT_THAT(err.str(), HasSubstr("'/nowhere/a\\x0ab' cannot be read: No such file"));
    EXPECT_EQ(RunCommandLine({"tree", "--scene", "/"}, {out, err}), ExitCode::failure);
    EXPECT_THAT(err.str(), HasSubstr("'/' cannot be read: Is a directory"));
}

TEST(SceneFile, OffersEachOfItsApplications) {
    const test_support::TemporaryFolder folder;
    const std::string file = folder.Write("scene.json", R"({"front": "pid:7", "applications": [
        {"bundleID": "a.b", "pid": 5, "name": "First"}, {"pid": 7, "name": "Second"}]})");
    EXPECT_THAT(Carried({"tree", "--scene", file}).out, HasSubstr("Second"));
    EXPECT_THAT(Carried({"tree", "--scene", file, "--application", "a.b"}).out, HasSubstr("First"));
    EXPECT_THAT(Carried({"tree", "--scene", file, "--pid", "5"}).out, HasSubstr("First"));
    const std::string dump =
        folder.Write("dump.json", R"({"front": null, "applications": [{"name": "Only"}]})");
    EXPECT_THAT(Carried({"tree", "--scene", dump}).out, HasSubstr("Only"));
}

TEST(SceneFile, WithOddMembersIsReadAsFarAsItGoes) {
    const test_support::TemporaryFolder folder;
    const std::string file = folder.Write("scene.json", R"({"applications": [{"windows": [
        {"AXRole": 5, "AXIdentifier": null, "AXValue": {"error": -25200}, "AXChildren": {"a": 1}},
        {"AXRole": "AXGroup", "AXValue": {"element": "/0"}}, {"AXValue": {"nothing": true}}]}]})");
    EXPECT_EQ(Carried({"tree", "--scene", file}).out, R"(  AXApplication
    (no role)
    AXGroup = an element
    (no role)
)");
}

TEST(SceneFile, WithAValueOfAnyDepthHarmsNothing) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    EXPECT_THAT(Failure(R"({"applications": [{"windows": [{"AXValue": )" + deep + "}]}]}"),
                HasSubstr("AXValue"));
}

TEST(Tree, HasColoursOnATerminalOnly) {
    const test_support::TemporaryFolder folder;
    const std::string file = folder.Write("scene.json", SceneWith(kEditor));
    const std::vector<std::string> words = {kProgram, "tree", "--scene", file};
    const auto coloured =
        test_support::OnTerminal(words, 80, {{"TERM", "xterm"}, {"NO_COLOR", ""}});
    EXPECT_THAT(coloured, HasSubstr("\x1B[32m_NS:159\x1B[0m \"Index\""));
    EXPECT_THAT(coloured, HasSubstr("\x1B[31m[inside AXTable]\x1B[0m"));
    EXPECT_THAT(test_support::OnTerminal(words, 80, {{"TERM", "xterm"}, {"NO_COLOR", "1"}}),
                Not(HasSubstr("\x1B")));
    EXPECT_THAT(test_support::RunProcess(kProgram, {"tree", "--scene", file},
                                         {{"TERM", "xterm"}, {"NO_COLOR", ""}})
                    .standardOutput,
                Not(HasSubstr("\x1B")));
    EXPECT_THAT(test_support::OnTerminal({kProgram, "tree", "--json", "--scene", file}, 80,
                                         {{"TERM", "xterm"}, {"NO_COLOR", ""}}),
                Not(HasSubstr("\x1B")));
}

}  // namespace
}  // namespace krt9ctl
