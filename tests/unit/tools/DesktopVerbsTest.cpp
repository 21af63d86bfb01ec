// Verbs that script the simulated desktop.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/ScriptedDesktop.h"
#include "tests/unit/tools/Carried.h"

namespace krt9ctl {
namespace {

using test_support::ScriptedDesktop;
using testing::HasSubstr;

constexpr char kScene[] = R"({"front": "com.apple.FinalCut", "applications": [
    {"bundleID": "com.apple.FinalCut", "pid": 501,
     "editor": {"clipTable": "_NS:139", "clipNames": ["_NS:100"], "playhead": "_NS:9",
                "framesPerSecond": 25},
     "windows": [{"AXRole": "AXWindow", "AXChildren": [
       {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:159", "AXValue": 0},
       {"AXRole": "AXStaticText", "AXIdentifier": "_NS:100", "AXValue": ""},
       {"AXRole": "AXValueIndicator", "AXIdentifier": "_NS:9",
        "AXValueDescription": "01:00:00:00"},
       {"AXRole": "AXTable", "AXIdentifier": "_NS:139", "AXChildren": [
         {"AXRole": "AXRow", "AXChildren": [{"AXRole": "AXCell", "AXValue": "Clip 1"}]},
         {"AXRole": "AXRow", "AXChildren": [{"AXRole": "AXCell", "AXValue": "Clip 2"}]}]}]}]},
    {"bundleID": "org.example.Notes", "pid": 502}],
    "script": [{"command": "activate", "application": "org.example.Notes"},
               {"command": "pointer", "position": [7, 8]}]})";

Json Asked(ScriptedDesktop& session, const char* command) {
    return Json::parse(session->Run(command));
}

Json State(ScriptedDesktop& session) {
    return Asked(session, R"({"command": "state"})");
}

Json Attributes(ScriptedDesktop& session, const std::string& element) {
    const Json answer =
        Asked(session, OneLine({{"command", "element"}, {"element", element}}).c_str());
    return answer.value("attributes", Json::object());
}

void Done(std::vector<std::string> words) {
    words.insert(words.begin(), "desktop");
    const Outcome outcome = Carried(words);
    EXPECT_EQ(outcome.code, ExitCode::ok) << testing::PrintToString(words) << outcome.err;
}

TEST(DesktopVerbs, ActivateBringsAnApplicationOrNothingToTheFront) {
    ScriptedDesktop session(kScene);
    Done({"activate", "org.example.Notes"});
    EXPECT_EQ(State(session)["front"], "org.example.Notes");
    Done({"activate"});
    EXPECT_EQ(State(session)["front"], nullptr);
}

TEST(DesktopVerbs, LaunchAndQuitChangeTheApplications) {
    ScriptedDesktop session(kScene);
    Done({"launch", R"({"bundleID": "a.b", "pid": 9})"});
    EXPECT_EQ(State(session)["front"], "a.b");
    Done({"launch", R"({"bundleID": "c.d"})", "--behind"});
    EXPECT_EQ(State(session)["front"], "a.b");
    EXPECT_EQ(State(session)["applications"].size(), 4U);
    Done({"quit", "a.b"});
    EXPECT_EQ(State(session)["applications"].size(), 3U);
}

TEST(DesktopVerbs, KillAndHangShowInTheState) {
    ScriptedDesktop session(kScene);
    Done({"hang", "com.apple.FinalCut"});
    EXPECT_EQ(State(session)["applications"][0]["hung"], true);
    Done({"unhang", "com.apple.FinalCut"});
    Done({"hang", "com.apple.FinalCut", "--for", "2.5"});
    Done({"advance", "2.6"});
    EXPECT_FALSE(State(session)["applications"][0].contains("hung"));
    Done({"kill", "org.example.Notes"});
    EXPECT_EQ(State(session)["applications"][1]["dead"], true);
}

TEST(DesktopVerbs, TrustIsGivenAndRevoked) {
    ScriptedDesktop session(kScene);
    Done({"trust", "--revoke"});
    EXPECT_EQ(State(session)["trusted"], false);
    Done({"trust"});
    EXPECT_EQ(State(session)["trusted"], true);
}

TEST(DesktopVerbs, SetTakesJsonAndPlainText) {
    ScriptedDesktop session(kScene);
    Done({"set", "_NS:159", "AXValue", "1"});
    EXPECT_EQ(Attributes(session, "_NS:159")["AXValue"], 1);
    Done({"set", "_NS:159", "AXValue", "two words"});
    EXPECT_EQ(Attributes(session, "_NS:159")["AXValue"], "two words");
    Done({"set", "_NS:159", "AXValue", "\"1\""});
    EXPECT_EQ(Attributes(session, "_NS:159")["AXValue"], "1");
    Done({"set", "_NS:159", "AXHelp", "null"});
}

TEST(DesktopVerbs, PressFlipsACheckBox) {
    ScriptedDesktop session(kScene);
    Done({"press", "_NS:159"});
    EXPECT_EQ(Attributes(session, "_NS:159")["AXValue"], 1);
    Done({"press", "_NS:159", "--application", "com.apple.FinalCut", "--action", "AXPress"});
    EXPECT_EQ(Attributes(session, "_NS:159")["AXValue"], 0);
}

TEST(DesktopVerbs, ElementsAreNumbersIdentifiersOrPaths) {
    ScriptedDesktop session(kScene);
    for (const char* element : {"159", "0x9f", "_NS:159", "/0/0"}) {
        EXPECT_THAT(Carried({"desktop", "element", element}).out, HasSubstr("AXCheckBox"))
            << element;
    }
}

TEST(DesktopVerbs, SelectClipGoesByNameByRowAndToNone) {
    ScriptedDesktop session(kScene);
    Done({"select-clip", "Clip 2"});
    EXPECT_EQ(Attributes(session, "_NS:100")["AXValue"], "Clip 2");
    Done({"select-clip", "--row", "0"});
    EXPECT_EQ(Attributes(session, "_NS:100")["AXValue"], "Clip 1");
    Done({"select-clip", "--none"});
    EXPECT_EQ(Attributes(session, "_NS:100")["AXValue"], "");
    EXPECT_THROW(Carried({"desktop", "select-clip"}), UsageError);
    EXPECT_THROW(Carried({"desktop", "select-clip", "Clip 1", "--none"}), UsageError);
}

TEST(DesktopVerbs, PlayheadGoesToATimecodeAndByFrames) {
    ScriptedDesktop session(kScene);
    Done({"playhead", "01:00:00:24"});
    EXPECT_EQ(Attributes(session, "_NS:9")["AXValueDescription"], "01:00:00:24");
    Done({"playhead", "--frames", "1"});
    EXPECT_EQ(Attributes(session, "_NS:9")["AXValueDescription"], "01:00:01:00");
    Done({"playhead", "--frames", "-2"});
    EXPECT_EQ(Attributes(session, "_NS:9")["AXValueDescription"], "01:00:00:23");
    EXPECT_THROW(Carried({"desktop", "playhead"}), UsageError);
}

TEST(DesktopVerbs, PlugAndUnplugShowInTheLog) {
    ScriptedDesktop session(kScene);
    Done({"plug", R"({"name": "KRT-9 USB"})"});
    Done({"unplug", "KRT-9 USB"});
    const Outcome log = Carried({"desktop", "log"});
    EXPECT_THAT(log.out, HasSubstr(R"("midi":"plug")"));
    EXPECT_THAT(log.out, HasSubstr(R"("midi":"unplug")"));
}

TEST(DesktopVerbs, LogIsOneEntryALineForPeopleAndOneObjectForPrograms) {
    ScriptedDesktop session(kScene);
    Done({"press", "_NS:159"});
    Done({"plug", R"({"name": "a"})"});
    Done({"unplug", "a"});
    const std::string lines = Carried({"desktop", "log"}).out;
    const Json object = Json::parse(Carried({"desktop", "log"}, true).out);
    ASSERT_GE(object["entries"].size(), 2U);
    EXPECT_EQ(static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n')),
              object["entries"].size());
    const std::string last = std::to_string(object["last"].get<std::int64_t>());
    EXPECT_EQ(Carried({"desktop", "log", "--since", last}).out, "");
    Done({"log", "--clear"});
    EXPECT_EQ(Carried({"desktop", "log"}).out, "");
}

TEST(DesktopVerbs, StepAndPlayRunTheScenesScript) {
    ScriptedDesktop session(kScene);
    Done({"step"});
    EXPECT_EQ(State(session)["front"], "org.example.Notes");
    Done({"play"});
    Done({"advance", "0.1"});
    EXPECT_EQ(State(session)["pointer"], Json::array({7, 8}));
}

TEST(DesktopVerbs, PointerAdvanceElementAndRawReachTheDesktop) {
    ScriptedDesktop session(kScene);
    Done({"pointer", "-3,4"});
    EXPECT_EQ(State(session)["pointer"], Json::array({-3, 4}));
    Done({"advance", "0.5"});
    EXPECT_EQ(State(session)["time"], 0.5);
    EXPECT_THAT(Carried({"desktop", "element", "_NS:159"}).out, HasSubstr("AXCheckBox"));
    EXPECT_THAT(Carried({"desktop", "raw", R"({"command": "state"})"}, true).out,
                HasSubstr(R"("front":"com.apple.FinalCut")"));
    EXPECT_THAT(Carried({"desktop", "state"}).out, HasSubstr("com.apple.FinalCut"));
}

TEST(DesktopVerbs, ARefusalIsAnExitCodeOfItsOwnAndTheDesktopsReason) {
    const ScriptedDesktop session(kScene);
    const Outcome outcome = Carried({"desktop", "quit", "no.such"});
    EXPECT_EQ(outcome.code, ExitCode::refused);
    EXPECT_THAT(outcome.err, HasSubstr("no application"));
    EXPECT_EQ(Carried({"desktop", "raw", "[]"}).code, ExitCode::refused);
}

TEST(DesktopVerbs, JsonThatIsNoneOrTooDeepIsAUsageError) {
    EXPECT_THROW(Carried({"desktop", "raw", "{"}), UsageError);
    EXPECT_THROW(Carried({"desktop", "launch", "nonsense"}), UsageError);
    EXPECT_THROW(Carried({"desktop", "raw", std::string(100000, '[')}), UsageError);
    EXPECT_THROW(Carried({"desktop", "set", "_NS:1", "AXValue", std::string(100000, '[')}),
                 UsageError);
}

TEST(DesktopVerbs, WithoutADesktopTheyHaveAnExitCodeOfTheirOwn) {
    ScriptedDesktop desktop;
    desktop.reachable = false;
    const Outcome outcome = Carried({"desktop", "state"});
    EXPECT_EQ(outcome.code, ExitCode::noDesktop);
    EXPECT_THAT(outcome.err, HasSubstr("start one with krt9-desktop"));
}

}  // namespace
}  // namespace krt9ctl
