// The verb why: where the driver's search for an element ends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Files.h"
#include "tests/support/Paths.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/tools/Carried.h"
#include "tests/unit/tools/WhyScene.h"
#include "tools/Reach.h"

namespace krt9ctl {
namespace {

using desktop_link::Operation;
using test_support::ScriptedDesktop;
using testing::HasSubstr;
using testing::MatchesRegex;

struct Answer {
    ExitCode code;
    Json object;
    std::string sentence;
};

Answer Why(const std::string& scene, std::vector<std::string> words) {
    words.insert(words.begin(), "why");
    const ScriptedDesktop session(scene);
    const Outcome people = Carried(words);
    const Outcome programs = Carried(words, true);
    EXPECT_EQ(people.code, programs.code);
    EXPECT_EQ(people.err, "");
    Answer answer{programs.code, Json::parse(programs.out), people.out};
    EXPECT_EQ(answer.object.value("error", "ok"), ExitCodeName(answer.code));
    return answer;
}

TEST(Why, SaysWhereTheSearchFoundTheElementAndWhatItCost) {
    ScriptedDesktop session(SceneWith(kWindows));
    EXPECT_THAT(Carried({"why", "159"}).out,
                MatchesRegex("_NS:159: found at /1/0/1: AXCheckBox; 10 exchanges with "
                             "com.apple.FinalCut in [0-9]+\\.[0-9] ms\n"));
    EXPECT_EQ(session->Count(Operation::copyAttribute) + session->Count(Operation::copyAttributes),
              10U);
    const Json found = Json::parse(Carried({"why", "159"}, true).out);
    EXPECT_EQ(found["element"], "_NS:159");
    EXPECT_EQ(found["application"], "com.apple.FinalCut");
    EXPECT_EQ(found["pid"], 501);
    EXPECT_EQ(found["outcome"], "found");
    EXPECT_EQ(found["path"], "/1/0/1");
    EXPECT_EQ(found["role"], "AXCheckBox");
    EXPECT_EQ(found["exchanges"], 10);
    EXPECT_GT(found["milliseconds"], 0);
}

TEST(Why, TellsAnElementThatIsThereFromOneThatIsNot) {
    const std::string scene = SceneWith(kWindows);
    const struct {
        const char* element;
        ExitCode code;
        const char* outcome;
        const char* sentence;
    } cases[] = {
        {"33", ExitCode::outOfReach, "other-role",
         "at /0/0 it has the role AXSlider, but the search is for AXButton, AXCheckBox, AXTable, "
         "AXTextField, AXRadioGroup"},
        {"8", ExitCode::outOfReach, "search-field", "at /0/1 it is a search field"},
        {"171", ExitCode::outOfReach, "inside", "at /0/3/0/0 it is inside AXTable /0/3"},
        {"1", ExitCode::outOfReach, "window", "at /0 it is a window"},
        {"4711", ExitCode::notThere, "not-there", "has no such element in its 2 windows"},
    };
    for (const auto& each : cases) {
        const Answer answer = Why(scene, {each.element});
        EXPECT_EQ(answer.code, each.code) << each.element;
        EXPECT_EQ(answer.object["outcome"], each.outcome);
        EXPECT_THAT(answer.sentence, HasSubstr(each.sentence));
        EXPECT_THAT(answer.sentence, HasSubstr("10 exchanges"));
        EXPECT_THAT(answer.object["message"], HasSubstr(each.sentence));
    }
}

TEST(Why, SearchesForTheRoleThatIsGiven) {
    const std::string scene = SceneWith(kWindows);
    EXPECT_EQ(Why(scene, {"393", "--role", "AXLayoutArea"}).object["outcome"], "found");
    EXPECT_EQ(Why(scene, {"33", "--role", "AXSlider"}).object["path"], "/0/0");
    const Answer answer = Why(scene, {"159", "--role", "AXTextField"});
    EXPECT_EQ(answer.code, ExitCode::outOfReach);
    EXPECT_THAT(answer.sentence, HasSubstr("has the role AXCheckBox, but the search is for "
                                           "AXTextField; "));
    EXPECT_EQ(Why(scene, {"8", "--role", "AXTextField"}).object["outcome"], "search-field");
}

TEST(Why, SaysWhatKeepsTheDriverFromSearching) {
    const struct {
        const char* scene;
        std::vector<std::string> words;
        ExitCode code;
        const char* outcome;
        const char* sentence;
    } cases[] = {
        {R"({"front": null})",
         {"5"},
         ExitCode::accessibility,
         "nothing-in-front",
         "no application is in front"},
        {R"({"front": null})",
         {"5", "--application", "x.y"},
         ExitCode::accessibility,
         "no-application",
         "there is no such application"},
        {R"({"front": null})",
         {"5", "--pid", "4711"},
         ExitCode::accessibility,
         "no-application",
         "there is no such application"},
        {R"({"front": "pid:9", "applications": [{"pid": 9, "windows": []}]})",
         {"5"},
         ExitCode::outOfReach,
         "no-bundle-identifier",
         "has no bundle identifier"},
        {R"({"trusted": false, "front": "a.b", "applications": [{"bundleID": "a.b"}]})",
         {"5"},
         ExitCode::accessibility,
         "not-trusted",
         "not trusted"},
        {R"({"front": "a.b", "applications": [{"bundleID": "a.b", "hung": true}]})",
         {"5"},
         ExitCode::accessibility,
         "not-replying",
         "does not reply"},
        {R"({"front": "a.b", "applications": [{"bundleID": "a.b", "windows": {"error": -25200}}]})",
         {"5"},
         ExitCode::accessibility,
         "windows-unreadable",
         "windows cannot be read (accessibility error -25200)"},
        {R"({"front": "a.b", "applications": [{"bundleID": "a.b", "windows": {"point": [1, 2]}}]})",
         {"5"},
         ExitCode::accessibility,
         "windows-unreadable",
         "windows are not a list"},
        {R"({"front": "a.b", "applications": [{"bundleID": "a.b", "windows": [
             {"AXRole": "AXWindow", "AXChildren": []},
             {"AXRole": "AXWindow", "AXChildren": {"error": -25204}}]}]})",
         {"5"},
         ExitCode::accessibility,
         "window-unreadable",
         "the children of window /1 cannot be read (accessibility error -25204)"},
    };
    for (const auto& each : cases) {
        const Answer answer = Why(each.scene, each.words);
        EXPECT_EQ(answer.code, each.code) << each.scene;
        EXPECT_EQ(answer.object["outcome"], each.outcome) << each.scene;
        EXPECT_THAT(answer.sentence, HasSubstr(each.sentence)) << each.scene;
    }
}

TEST(Why, OfAnotherApplicationIsWhatTheDriverWouldFindInIt) {
    const std::string scene = R"({"front": "a.b", "applications": [
        {"bundleID": "a.b", "pid": 5, "windows": []},
        {"bundleID": "c.d", "pid": 6, "windows": [{"AXRole": "AXWindow", "AXChildren": [
          {"AXRole": "AXButton", "AXIdentifier": "_NS:7"}]}]}]})";
    EXPECT_EQ(Why(scene, {"7"}).object["outcome"], "not-there");
    EXPECT_EQ(Why(scene, {"7", "--application", "c.d"}).object["outcome"], "found");
    EXPECT_EQ(Why(scene, {"_NS:7", "--pid", "6"}).object["outcome"], "found");
    EXPECT_EQ(
        Why(R"({"front": null, "applications": [{"pid": 6, "windows": []}]})", {"7", "--pid", "6"})
            .object["outcome"],
        "not-there");
}

TEST(Why, SaysOfAnElementThatAppearsAfterTheSearchThatTheApplicationChanges) {
    ScriptedDesktop session(SceneWith(R"([{"AXRole": "AXWindow", "AXChildren": [
        {"AXRole": "AXButton", "AXIdentifier": "_NS:7"}]}])"));
    // The search meets it under another identifier, the reading of the whole tree does not.
    session.Run(R"({"command": "set", "element": "_NS:7", "attribute": "AXIdentifier",
                    "value": "_NS:8"})");
    bool hasNewName = false;
    session->onRead = [&](const desktop_link::ElementReference&, const std::string& attribute) {
        if (!hasNewName && attribute == "AXTitle") {
            hasNewName = true;
            session->Run(R"({"command": "set", "element": "_NS:8", "attribute": "AXIdentifier",
                             "value": "_NS:7"})");
        }
    };
    const Json answer = Json::parse(Carried({"why", "7"}, true).out);
    EXPECT_TRUE(hasNewName);
    EXPECT_EQ(answer["outcome"], "changing");
    EXPECT_EQ(answer["error"], "out-of-reach");
}

TEST(Why, CountsTheElementsWhoseRoleItCouldNotRead) {
    const Answer answer = Why(SceneWith(R"([{"AXRole": "AXWindow", "AXChildren": [
        {"AXRole": {"error": -25200}}, {"AXIdentifier": "_NS:6"},
        {"AXRole": "AXGroup", "AXChildren": [{}]}]}])"),
                              {"7"});
    EXPECT_EQ(answer.object["outcome"], "not-there");
    EXPECT_EQ(answer.object["unread"], 3);
    EXPECT_THAT(answer.sentence, HasSubstr("but 3 elements could not be read"));
}

TEST(Why, EndsInATreeWithoutEnd) {
    const Answer answer = Why(SceneWith(R"([{"AXRole": "AXWindow", "AXChildren": [
        {"AXRole": "AXGroup", "AXChildren": {"array": [{"element": "/0/0"}, {"element": "/0/1"}]}},
        {"AXRole": "AXGroup", "AXChildren": {"array": [{"element": "/0/0"}, {"element": "/0"}]}}
        ]}])"),
                              {"7"});
    EXPECT_EQ(answer.object["outcome"], "not-there");
}

TEST(Why, LeavesNoControlCharacterInItsSentence) {
    const Answer answer = Why(SceneWith(R"([{"AXRole": "AXWindow", "AXChildren": [
        {"AXRole": "AX\u001b[2J", "AXIdentifier": "_NS:7"}]}])"),
                              {"7"});
    EXPECT_THAT(answer.sentence, HasSubstr("AX\\x1b[2J"));
    EXPECT_EQ(answer.object["role"], "AX\x1b[2J");
}

TEST(Why, AsksForAnElementLikeEveryVerb) {
    EXPECT_THROW(Carried({"why", "x"}), UsageError);
    EXPECT_THROW(Carried({"why", "5", "--pid", "1", "--application", "a.b"}), UsageError);
}

}  // namespace
}  // namespace krt9ctl
