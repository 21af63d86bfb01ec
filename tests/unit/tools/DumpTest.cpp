// Accessibility trees recorded as scenes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/ScriptedDesktop.h"
#include "tests/unit/tools/Carried.h"

namespace krt9ctl {
namespace {

using test_support::ScriptedDesktop;
using testing::HasSubstr;
using testing::Not;

std::string DumpOf(const std::string& scene, std::vector<std::string> words = {"dump"}) {
    const ScriptedDesktop session(scene);
    const Outcome outcome = Carried(std::move(words));
    EXPECT_EQ(outcome.code, ExitCode::ok) << outcome.err;
    return outcome.out;
}

// An editor whose only window holds these elements.
std::string SceneWith(const std::string& elements) {
    return R"({"front": "com.apple.FinalCut", "applications": [
        {"bundleID": "com.apple.FinalCut", "name": "Final Cut Pro", "pid": 501,
         "windows": [{"AXRole": "AXWindow", "AXChildren": [)" +
           elements + "]}]}]}";
}

TEST(Dump, IsASceneWithOneElementALine) {
    EXPECT_EQ(DumpOf(R"({"front": "com.apple.FinalCut", "applications": [
                  {"bundleID": "com.apple.FinalCut", "name": "Final Cut Pro", "pid": 501,
                   "info": {"CFBundleShortVersionString": "10.4.6", "CFBundleSignature": "abcd"},
                   "windows": [
                     {"AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [0, 22],
                      "AXSize": [1440, 878.5], "AXChildren": [
                        {"AXValue": 1, "AXIdentifier": "_NS:159", "AXRole": "AXCheckBox"},
                        {"AXRole": "AXGroup", "AXChildren": []}]}]}]})"),
              R"({ "front": "com.apple.FinalCut",
  "applications": [
    { "bundleID": "com.apple.FinalCut", "name": "Final Cut Pro", "pid": 501, "info": {"CFBundleShortVersionString":"10.4.6","CFBundleSignature":"abcd"},
      "windows": [
        { "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [0,22], "AXSize": [1440,878.5], "AXMain": true, "AXChildren": [
          { "AXRole": "AXCheckBox", "AXIdentifier": "_NS:159", "AXValue": 1 },
          { "AXRole": "AXGroup", "AXChildren": [] }] }] }
  ]
}
)");
}

TEST(Dump, FedBackAsASceneGivesTheSameDump) {
    const std::string scene = R"({"front": "com.apple.FinalCut", "applications": [
        {"bundleID": "com.apple.FinalCut", "name": "Final Cut Pro", "pid": 77,
         "info": {"CFBundleShortVersionString": "10.4.6"},
         "windows": [
           {"AXRole": "AXWindow", "AXTitle": "One", "AXTitleUIElement": {"element": "/1/0"}},
           {"AXRole": "AXWindow", "AXTitle": "Two", "AXMain": true, "AXChildren": [
             {"AXRole": "AXStaticText", "AXValue": "caf\u00e9 \u6f22 \ud83c\udfac \u0001 \""},
             {"AXRole": "AXSlider", "AXValue": 0.1, "AXMinValue": -2.0,
              "AXMaxValue": {"double": "inf"}, "AXValueIncrement": {"double": "nan"}},
             {"AXRole": "AXGroup", "AXPosition": [-1, 2.5], "AXSize": [3, 4], "AXEnabled": false},
             {"AXRole": "AXGroup", "AXFrame": [1, 2, 3, 4]},
             {"AXRole": "AXGroup", "AXFrame": {"point": [1, 2]}, "AXPosition": {"size": [1, 2]},
              "AXSize": "odd", "AXCustomRect": {"rect": [1, 2, 3, 4]}},
             {"AXRole": "AXTextField", "AXSelectedTextRange": {"range": [3, 4]},
              "AXBlob": {"data": "00ff"}, "AXNothing": {"null": true}, "AXNoValue": null,
              "AXBroken": {"error": -25200}, "AXNested": [{"axerror": -25204}, [1, "a", true]],
              "AXMap": {"dictionary": {"b": 1, "a": {"point": [1, 2]}}},
              "AXLost": {"element": null}, "AXSelectedRows": {"array": [1]},
              "AXChildren": {"error": -25200}},
             {"AXRole": "AXTable", "AXSelectedRows": [2, 1], "AXChildren": [
               {"AXRole": "AXColumn"}, {"AXRole": "AXRow", "AXIndex": 7},
               {"AXRole": "AXRow", "AXChildren": [{"AXRole": "AXCell", "AXValue": "Clip"}]},
               {"AXRole": "AXRow", "AXSelected": true}]},
             {"AXRole": "AXOutline", "AXVisibleRows": [{"element": "/1/7/0"}],
              "AXChildren": [{"AXRole": "AXRow"}, {"AXRole": "AXRow"}]}]}]}]})";
    const std::string dump = DumpOf(scene);
    EXPECT_EQ(DumpOf(dump), dump);
    EXPECT_THAT(dump, HasSubstr(R"("AXSelectedRows": [1,2])"));
    EXPECT_THAT(dump, HasSubstr(R"("AXTitleUIElement": {"element":"/1/0"})"));
    EXPECT_THAT(dump, HasSubstr(R"("AXMap": {"dictionary":{"a":{"point":[1,2]},"b":1}})"));
    EXPECT_THAT(dump, HasSubstr(R"("AXIndex": 7)"));
    EXPECT_THAT(dump, HasSubstr(R"("AXChildren": {"error":-25200})"));
    EXPECT_THAT(dump, Not(HasSubstr("AXParent")));
    EXPECT_THAT(dump, Not(HasSubstr("AXTopLevelUIElement")));
}

TEST(Dump, OfAnApplicationWithoutMainWindowSaysSo) {
    const std::string scene = R"({"front": "a.b", "applications": [{"bundleID": "a.b", "pid": 5,
        "windows": [{"AXRole": "AXWindow", "AXMain": false}, {"AXRole": "AXWindow"}]}]})";
    const std::string dump = DumpOf(scene);
    EXPECT_THAT(dump, HasSubstr(R"("AXMain": false)"));
    EXPECT_EQ(DumpOf(dump), dump);
}

TEST(Dump, OfAnApplicationWithoutWindowsHasAnEmptyList) {
    const std::string dump =
        DumpOf(R"({"front": "pid:9", "applications": [{"pid": 9, "name": "x", "windows": []}]})");
    EXPECT_THAT(dump, HasSubstr("\"front\": \"pid:9\""));
    EXPECT_THAT(dump, HasSubstr("\"windows\": []"));
    EXPECT_EQ(DumpOf(dump), dump);
}

TEST(Dump, KeepsTheErrorOfAWindowListThatCannotBeRead) {
    const std::string dump = DumpOf(R"({"front": "a.b", "applications": [{"bundleID": "a.b",
        "pid": 5, "windows": {"error": -25200}}]})");
    EXPECT_THAT(dump, HasSubstr(R"("windows": {"error":-25200})"));
    EXPECT_EQ(DumpOf(dump), dump);
}

TEST(Dump, WalksATreeOfAnyDepth) {
    constexpr int kDepth = 2000;
    std::string deep;
    for (int i = 0; i < kDepth; ++i) {
        deep += R"({"AXRole": "AXGroup", "AXChildren": [)";
    }
    for (int i = 0; i < kDepth; ++i) {
        deep += "]}";
    }
    const std::string dump = DumpOf(SceneWith(deep));
    EXPECT_EQ(std::count(dump.begin(), dump.end(), '\n'), kDepth + 7);
}

std::string Nested(const std::string& opening, const std::string& closing, int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) {
        text += opening;
    }
    text += "1";
    for (int i = 0; i < depth; ++i) {
        text += closing;
    }
    return text;
}

TEST(Dump, KeepsValuesNestedAsDeepAsAScenesMayBe) {
    for (const int depth : {1, 32, 33, 64}) {
        const std::string list = Nested("[", "]", depth);
        const std::string map = Nested(R"({"dictionary":{"k":)", "}}", depth);
        const std::string scene =
            SceneWith(R"({"AXRole": "AXGroup", "AXList": )" + list + R"(, "AXMap": )" + map + "}");
        const std::string dump = DumpOf(scene);
        EXPECT_THAT(dump, HasSubstr("\"AXList\": " + list)) << depth;
        EXPECT_THAT(dump, HasSubstr("\"AXMap\": " + map)) << depth;
        EXPECT_EQ(DumpOf(dump), dump) << depth;
    }
}

TEST(Dump, OfDeepValuesThatHoldAnElementLoadsAgain) {
    std::string map = Nested(R"({"dictionary":{"k":)", "}}", 64);
    map.replace(map.find('1'), 1, R"({"element":"/0"})");
    const std::string dump = DumpOf(SceneWith(R"({"AXRole": "AXGroup", "AXMap": )" + map + "}"));
    EXPECT_THAT(dump, HasSubstr("\"AXMap\": " + map));
    EXPECT_EQ(DumpOf(dump), dump);
}

TEST(Dump, IsOneObjectInOneLineWithJsonUnlessPretty) {
    const std::string scene =
        SceneWith(R"({"AXRole": "AXButton", "AXTitle": "a\n   b", "AXChildren": [{}, {}]})");
    const ScriptedDesktop session(scene);
    const std::string pretty = Carried({"dump"}).out;
    const std::string line = Carried({"dump"}, true).out;
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
    EXPECT_EQ(Json::parse(line), Json::parse(pretty));
    EXPECT_EQ(Carried({"dump", "--pretty"}, true).out, pretty);
    EXPECT_EQ(Carried({"dump", "--pretty"}).out, pretty);
}

TEST(Dump, PutsAnElementWhereItWasMetFirst) {
    const std::string dump = DumpOf(SceneWith(
        R"({"AXRole": "AXGroup", "AXChildren": {"array": [{"element": "/0"}, {"element": "/"}]}},
           {"AXRole": "AXButton"})"));
    EXPECT_THAT(dump, HasSubstr(R"({ "AXRole": "AXGroup", "AXChildren": [] })"));
    EXPECT_EQ(DumpOf(dump), dump);
}

TEST(Dump, CostsTwoExchangesForEachElement) {
    ScriptedDesktop session(SceneWith(R"({"AXRole": "AXButton"}, {"AXRole": "AXButton"})"));
    Carried({"dump"});
    constexpr unsigned long kElements = 4;  // with the application and the window
    EXPECT_EQ(session->Count(desktop_link::Operation::attributeNames), kElements);
    EXPECT_EQ(session->Count(desktop_link::Operation::copyAttributes), kElements);
    EXPECT_EQ(session->Count(desktop_link::Operation::copyAttribute), 1U);
    EXPECT_EQ(session->Count(desktop_link::Operation::actionNames), 0U);
}

TEST(Dump, TakesTheActionsWhenAsked) {
    const std::string scene =
        SceneWith(R"({"AXRole": "AXButton"}, {"AXRole": "AXImage", "actions": ["AXShowMenu"]})");
    const std::string dump = DumpOf(scene, {"dump", "--actions"});
    EXPECT_THAT(dump, HasSubstr(R"("AXRole": "AXButton", "actions": ["AXPress"])"));
    EXPECT_THAT(dump, HasSubstr(R"("actions": ["AXShowMenu"])"));
    EXPECT_EQ(DumpOf(dump, {"dump", "--actions"}), dump);
}

TEST(Dump, LeavesOutAnElementThatGoesAwayWhileItIsRead) {
    ScriptedDesktop session(SceneWith(R"({"AXRole": "AXButton"}, {"AXRole": "AXImage"})"));
    bool done = false;
    // The second child dies while the first one is read.
    session->onRead = [&](const desktop_link::ElementReference& element, const std::string&) {
        if (!done && element == session->Find("", "/0/0")) {
            done = true;
            session->Run(R"({"command": "remove", "element": "/0/1"})");
        }
    };
    const Outcome outcome = Carried({"dump"});
    EXPECT_EQ(outcome.code, ExitCode::ok);
    EXPECT_THAT(outcome.out, HasSubstr("AXButton"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("AXImage")));
    EXPECT_THAT(outcome.err, HasSubstr("1 elements disappeared"));
}

TEST(Dump, OfAnotherApplicationIsNotInFront) {
    const std::string scene = R"({"front": "a.b", "applications": [
        {"bundleID": "a.b", "pid": 5, "windows": []},
        {"bundleID": "c.d", "pid": 6, "windows": [{"AXRole": "AXWindow", "AXTitle": "Other"}]}]})";
    const std::string byName = DumpOf(scene, {"dump", "--application", "c.d"});
    EXPECT_THAT(byName, HasSubstr("\"front\": null"));
    EXPECT_THAT(byName, HasSubstr("\"bundleID\": \"c.d\""));
    EXPECT_THAT(byName, HasSubstr("Other"));
    EXPECT_THAT(DumpOf(scene, {"dump", "--pid", "6"}), HasSubstr("Other"));
    EXPECT_THAT(DumpOf(scene, {"dump", "--pid", "5"}), HasSubstr("\"front\": \"a.b\""));
}

TEST(Dump, OfAnApplicationThatIsNotInFrontCarriesWhatIsKnownOfItAsWell) {
    const std::string scene = R"({"front": "a.b", "applications": [
        {"bundleID": "a.b", "pid": 5, "windows": []},
        {"bundleID": "c.d", "pid": 6, "name": "Other", "windows": [],
         "info": {"CFBundleShortVersionString": "10.4.6", "CFBundleSignature": "abcd"}},
        {"pid": 7, "name": "Tool", "windows": []}]})";
    const std::string dump = DumpOf(scene, {"dump", "--pid", "6"});
    const Json application = Json::parse(dump)["applications"][0];
    EXPECT_EQ(application["bundleID"], "c.d");
    EXPECT_EQ(application["info"]["CFBundleShortVersionString"], "10.4.6");
    EXPECT_EQ(application["info"]["CFBundleSignature"], "abcd");
    EXPECT_EQ(DumpOf(scene, {"dump", "--application", "c.d"}), dump);
    EXPECT_EQ(DumpOf(dump, {"dump", "--pid", "6"}), dump) << "it is a scene";
    EXPECT_FALSE(
        Json::parse(DumpOf(scene, {"dump", "--pid", "7"}))["applications"][0].contains("bundleID"));
}

TEST(Dump, SaysWhyItCannotRead) {
    const struct {
        const char* scene;
        std::vector<std::string> words;
        const char* sentence;
    } cases[] = {
        {R"({"front": null})", {"dump"}, "no application is in front"},
        {R"({"trusted": false, "front": "a.b", "applications": [{"bundleID": "a.b", "pid": 5}]})",
         {"dump"},
         "not trusted"},
        {R"({"front": "a.b", "applications": [{"bundleID": "a.b", "pid": 5, "hung": true}]})",
         {"dump"},
         "does not reply"},
        {R"({"front": null})", {"dump", "--pid", "4711"}, "no such application"},
        {R"({"front": null})", {"dump", "--application", "x.y"}, "no such application"},
    };
    for (const auto& each : cases) {
        const ScriptedDesktop session(each.scene);
        const Outcome outcome = Carried(each.words);
        EXPECT_EQ(outcome.code, ExitCode::accessibility) << each.scene;
        EXPECT_THAT(outcome.err, HasSubstr(each.sentence)) << each.scene;
        EXPECT_EQ(outcome.out, "") << each.scene;
    }
}

TEST(Dump, PidAndApplicationExcludeEachOther) {
    EXPECT_THROW(Carried({"dump", "--pid", "1", "--application", "a.b"}), UsageError);
}

}  // namespace
}  // namespace krt9ctl
