// The verb why on a scene file, which says what it says of the application that the scene
// describes.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "tests/support/Files.h"
#include "tests/support/Paths.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/tools/Carried.h"
#include "tests/unit/tools/WhyScene.h"

namespace krt9ctl {
namespace {

using test_support::ScriptedDesktop;
using testing::HasSubstr;

// Without the exchanges, which are those with an application that runs. Of the identifiers, in
// their order, every nth is asked for: each reads the file once more.
void ExpectSameInFile(const std::string& scene, const std::string& role, int nth = 1) {
    const ScriptedDesktop session(scene);
    const test_support::TemporaryFolder folder;
    const std::string file = folder.Write("scene.json", scene).string();
    std::istringstream lines(Carried({"tree", "--scene", file}, true).out);
    std::set<std::string> identifiers = {"_NS:4711"};
    for (std::string line; std::getline(lines, line);) {
        identifiers.insert(Json::parse(line).value("identifier", "_NS:4711"));
    }
    int turn = 0;
    for (const std::string& identifier : identifiers) {
        if (turn++ % nth != 0 || !ParseElement(identifier)) {
            continue;
        }
        Json live = Json::parse(Carried({"why", identifier, "--role", role}, true).out);
        Json ofFile =
            Json::parse(Carried({"why", identifier, "--role", role, "--scene", file}, true).out);
        for (const char* name : {"outcome", "path", "role", "element", "application", "error"}) {
            EXPECT_EQ(live.value(name, ""), ofFile.value(name, "")) << identifier << ' ' << name;
        }
        EXPECT_FALSE(ofFile.contains("exchanges"));
    }
}

TEST(WhyOfAScene, IsThatOfTheApplicationWhichTheSceneDescribes) {
    for (const char* role : {"VEKAXAllRoles", "AXTextField", "AXCheckBox"}) {
        ExpectSameInFile(SceneWith(kWindows), role);
    }
    ExpectSameInFile(test_support::ContentOf(KRT9_SCENES "/editor-10.4.6.json"), "VEKAXAllRoles",
                     7);
}

TEST(WhyOfAScene, MeetsWhatKeepsTheDriverFromSearching) {
    const struct {
        const char* session;
        const char* windows;
    } cases[] = {
        {R"("trusted": false)", R"("dead": true)"},
        {R"("trusted": true)", R"("dead": true, "hung": true)"},
        {R"("trusted": true)", R"("hung": true)"},
        {R"("comment": "")", R"("windows": {"error": -25200})"},
        {R"("comment": "")", R"("windows": {"nothing": true})"},
        {R"("comment": "")", R"("windows": null)"},
        {R"("comment": "")", R"("windows": {"point": [1, 2]})"},
        {R"("comment": "")", R"("windows": {"array": []})"},
        {R"("comment": "")", R"("name": "without windows")"},
        {R"("comment": "")", R"("windows": [{"AXRole": "AXWindow", "AXChildren": []},
                                            {"AXRole": "AXWindow"}])"},
        {R"("comment": "")", R"("windows": [{"AXRole": "AXWindow", "AXChildren": null}])"},
        {R"("comment": "")",
         R"("windows": [{"AXRole": "AXWindow", "AXChildren": {"size": [1, 2]}}])"},
    };
    for (const auto& [session, windows] : cases) {
        const std::string scene =
            fmt::format(R"({{{}, "front": "a.b", "applications": [{{"bundleID": "a.b", {}}}]}})",
                        session, windows);
        const ScriptedDesktop desktop(scene);
        const test_support::TemporaryFolder folder;
        const std::string file = folder.Write("scene.json", scene).string();
        const Outcome ofFile = Carried({"why", "5", "--scene", file}, true);
        Json expected = Json::parse(Carried({"why", "5"}, true).out);
        for (const char* name : {"exchanges", "milliseconds", "pid"}) {
            expected.erase(name);
        }
        std::string sentence = expected["message"];
        expected["message"] = sentence.substr(0, sentence.rfind("; "));
        EXPECT_EQ(Json::parse(ofFile.out), expected) << scene;
        EXPECT_EQ(ofFile.err, "");
    }
}

TEST(WhyOfAScene, SaysThatItDoesNotFollowItsRules) {
    const test_support::TemporaryFolder folder;
    const std::string file =
        folder
            .Write("scene.json", R"({"applications": [{"bundleID": "a.b", "windows": [
                {"AXRole": "AXWindow", "AXChildren": [{"AXRole": "AXButton", "AXIdentifier": "_NS:5",
                 "misbehaviour": {"read": {"AXRole": {"error": -25204}}}}]}]}]})")
            .string();
    const Outcome outcome = Carried({"why", "5", "--scene", file});
    EXPECT_EQ(outcome.code, ExitCode::ok);
    EXPECT_THAT(outcome.err, HasSubstr("rules of misbehaviour, which are not considered"));
}

TEST(WhyOfAScene, NeedsNoSession) {
    const test_support::TemporaryFolder folder;
    const std::string file = folder.Write("scene.json", SceneWith(kWindows)).string();
    const Outcome found = Carried({"why", "159", "--scene", file});
    EXPECT_EQ(found.code, ExitCode::ok);
    EXPECT_EQ(found.out, "_NS:159: found at /1/0/1: AXCheckBox\n");
    const Outcome inside = Carried({"why", "171", "--scene", file});
    EXPECT_EQ(inside.code, ExitCode::outOfReach);
    EXPECT_EQ(inside.out,
              "_NS:171: at /0/3/0/0 it is inside AXTable /0/3, which the driver does "
              "not search\n");
    EXPECT_EQ(Carried({"why", "4711", "--scene", file}).code, ExitCode::notThere);
    const std::string nameless =
        folder.Write("nameless.json", R"({"applications": [{}]})").string();
    EXPECT_EQ(Json::parse(Carried({"why", "5", "--scene", nameless}, true).out)["outcome"],
              "no-bundle-identifier");
}

}  // namespace
}  // namespace krt9ctl
