// Loading scenes, refusing bad ones, and writing them back.
#include <random>

#include "tests/unit/desktop/Client.h"

namespace desktop {

namespace {

// Allocations cost a hundred times as much under the sanitizers, which see the same mistakes in a
// scene of a tenth of the size.
#if __has_feature(address_sanitizer)
constexpr std::size_t kScale = 10;
#else
constexpr std::size_t kScale = 1;
#endif

using testing::HasSubstr;
using testing::StartsWith;

TEST(Scene, EmptySceneIsASessionWithOneScreenAndNothingInFront) {
    Desktop desktop("{}");
    const Client client{desktop};
    const auto hello = client.Ask(Operation::hello);
    ASSERT_TRUE(hello->session);
    EXPECT_FALSE(hello->session->frontApplication);
    EXPECT_EQ(hello->session->messagingTimeout, 6.0);
    EXPECT_TRUE(client.Ask(Operation::isTrusted)->flag);
    EXPECT_EQ(client.Ask(Operation::screens)->values.size(), 1u);
    EXPECT_EQ(client.Ask(Operation::midiDevices)->text, R"({"devices":[]})");
}

TEST(Scene, FrontApplicationIsKnownFromTheStart) {
    Desktop desktop(R"({"front": "com.example.editor", "messagingTimeout": 0.5, "applications": [
        {"bundleID": "com.example.other"}, {"bundleID": "com.example.editor", "name": "Editor",
         "pid": 77}]})");
    const auto session = Client{desktop}.Ask(Operation::hello)->session;
    EXPECT_EQ(session->frontApplication,
              (desktop_link::Application{77, "com.example.editor", std::nullopt, "Editor"}));
    EXPECT_EQ(session->messagingTimeout, 0.5);
}

TEST(Scene, NullFrontIsASessionWithNothingInFront) {
    Desktop desktop(R"({"front": null, "applications": [{"bundleID": "a"}]})");
    EXPECT_FALSE(Client{desktop}.Ask(Operation::hello)->session->frontApplication);
}

TEST(Scene, ApplicationWithoutNameIsNamedByTheLastPartOfItsBundleIdentifier) {
    Desktop desktop(R"({"front": "com.example.editor",
        "applications": [{"bundleID": "com.example.editor", "pid": 77}]})");
    EXPECT_EQ(Client{desktop}.Ask(Operation::hello)->session->frontApplication,
              (desktop_link::Application{77, "com.example.editor", std::nullopt, "editor"}));
}

TEST(Scene, ApplicationWithoutBundleIdentifierIsNamedByItsProcessId) {
    Desktop desktop(R"({"front": "pid:33", "applications": [{"pid": 33, "name": "tool"}]})");
    const auto front = Client{desktop}.Ask(Operation::hello)->session->frontApplication;
    EXPECT_EQ(front, (desktop_link::Application{33, std::nullopt, std::nullopt, "tool"}));
    EXPECT_EQ(Client{desktop}.Do({{"command", "state"}})["front"], "pid:33");
}

TEST(Scene, ApplicationCanBeOneThatTheSystemHasNoProcessIdFor) {
    Desktop desktop(R"({"front": "pid:-1", "applications": [{"pid": -1}]})");
    EXPECT_EQ(Client{desktop}.Ask(Operation::hello)->session->frontApplication->pid, -1);
}

TEST(Scene, ProcessIdsAreGivenOutWhenTheSceneHasNone) {
    Desktop desktop(R"({"applications": [{"bundleID": "a"}, {"bundleID": "b", "pid": 502},
                                         {"bundleID": "c"}]})");
    const json applications = Client{desktop}.Do({{"command", "state"}})["applications"];
    EXPECT_EQ(applications[0]["pid"], 501);
    EXPECT_EQ(applications[1]["pid"], 502);
    EXPECT_EQ(applications[2]["pid"], 503);
}

struct BadScene {
    const char* text;
    const char* problem;
};

TEST(SceneErrors, EachIsOneLineThatNamesThePlace) {
    const BadScene kBad[] = {
        {"", "parse error at line 1, column 1"},
        {"{", "parse error at line 1, column 2"},
        {"[]", "expected an object, got array"},
        {R"({"fornt": null})", R"(unknown key "fornt")"},
        {R"({"trusted": 1})", "trusted: expected true or false, got number"},
        {R"({"front": "x"})", R"(front: no application "x")"},
        {R"({"front": 5})", "front: expected a text, got number"},
        {R"({"pointer": [1]})", "pointer: expected an array of 2 numbers"},
        {R"({"pointer": {"point": [1, "x"]}})", "pointer.point[1]: expected a number, got string"},
        {R"({"screens": [{}]})", R"(screens[0]: "frame" is missing)"},
        {R"({"screens": [{"frame": [0, 0, 1]}]})", "screens[0].frame: expected an array of 4"},
        {R"({"messagingTimeout": -1})", "messagingTimeout: expected seconds"},
        {R"({"activationGap": "x"})", "activationGap: expected a number"},
        {R"({"applications": {}})", "applications: expected an array, got object"},
        {R"({"applications": [5]})", "applications[0]: expected an object, got number"},
        {R"({"applications": [{"pid": 1}, {"pid": 1}]})",
         "applications[1].pid: the process id is taken"},
        {R"({"applications": [{"pid": 0.5}]})", "applications[0].pid: expected a whole number"},
        {R"({"applications": [{"pid": 99999999999}]})",
         "applications[0].pid: the number 99999999999 is out of range"},
        {R"({"applications": [{"name": 1}]})", "applications[0].name: expected a text"},
        {R"({"applications": [{"info": 1}]})", "applications[0].info: expected an object"},
        {R"({"applications": [{"info": {"k": null}}]})",
         "info.k: a property list cannot contain null"},
        {R"({"applications": [{"info": {"k": "\u0001"}}]})",
         "info.k: a property list cannot contain a control character"},
        {R"({"applications": [{"localizations": {}}]})", "applications[0].localizations: only"},
        {R"({"applications": [{"info": {}, "localizations": {"de": {"k": 1}}}]})",
         "applications[0].localizations.de.k: expected a text"},
        {R"({"applications": [{"windows": [1]}]})",
         "applications[0].windows[0]: expected an object, got number"},
        {R"({"applications": [{"windows": [{"AXRole": "AXWindow"}, {"AXPosition": [1, 2, 3]}]}]})",
         "applications[0].windows[1].AXPosition: expected an array of 2 numbers"},
        {R"({"applications": [{"windows": [{"AXChildren": [{}, {"AXSize": ["a", 1]}]}]}]})",
         "applications[0].windows[0].AXChildren[1].AXSize[0]: expected a number, got string"},
        {R"({"applications": [{"windows": [{"axRole": "x"}]}]})",
         "applications[0].windows[0].axRole: no attribute"},
        {R"({"applications": [{"windows": [{"AXValue": {"pint": 1}}]}]})",
         R"(windows[0].AXValue: unknown tag "pint")"},
        {R"({"applications": [{"windows": [{"AXValue": {"point": [1, 2], "size": 1}}]}]})",
         "windows[0].AXValue: expected one tag"},
        {R"({"applications": [{"windows": [{"AXValue": {"data": "0"}}]}]})",
         "AXValue.data: expected two hexadecimal digits"},
        {R"({"applications": [{"windows": [{"AXValue": [null]}]}]})",
         "AXValue[0]: null is not a value"},
        {R"({"applications": [{"windows": [{"AXValue": 9223372036854775808}]}]})",
         "AXValue: the number 9223372036854775808 is out of range"},
        {R"({"applications": [{"windows": [{"AXValue": {"error": "x"}}]}]})",
         "AXValue.error: expected a whole number"},
        {R"({"applications": [{"windows": [{"AXValue": {"element": "_NS:1"}}]}]})",
         R"(windows[0].AXValue: no element "_NS:1")"},
        {R"({"applications": [{"windows": [{"AXValue": {"element": "/0", "application": "x"}}]}]})",
         R"(windows[0].AXValue: no application "x")"},
        {R"({"applications": [{"windows": [{"AXSelectedRows": [0]}]}]})",
         "windows[0].AXSelectedRows[0]: there is no child 0"},
        {R"({"applications": [{"windows": [{"AXSelectedRows": [-1]}]}]})",
         "windows[0].AXSelectedRows[0]: the number -1 is out of range"},
        {R"({"applications": [{"windows": [{"actions": [1]}]}]})",
         "windows[0].actions[0]: expected a text"},
        {R"({"applications": [{"windows": [{"misbehaviour": {"reed": {}}}]}]})",
         R"(windows[0].misbehaviour: unknown key "reed")"},
        {R"({"applications": [{"windows": [{"misbehaviour": {"read": {"AXRole": {}}}}]}]})",
         R"(windows[0].misbehaviour.read.AXRole: expected "error")"},
        {R"({"applications": [{"misbehaviour": {"action": {"AXPress": {"delay": -1}}}}]})",
         "applications[0].misbehaviour.action.AXPress.delay: expected seconds"},
        {R"({"applications": [{"editor": {"rate": 1}}]})", "applications[0].editor: unknown key"},
        {R"({"midi": {"devices": [{}]}})", R"(midi.devices[0]: "name" is missing)"},
        {R"({"midi": {"devices": [{"name": "a", "id": 1}, {"name": "b", "id": 1}]}})",
         "midi.devices[1].id: the id is taken"},
        {R"({"midi": {"devices": [{"name": "a", "entities": [{"name": "b", "sources": [7]}]}]}})",
         "midi.devices[0].entities[0].sources[0]: expected an object"},
        {R"({"script": [1]})", "script[0]: expected an object"},
    };
    for (const BadScene& bad : kBad) {
        const std::string problem = ProblemOfScene(std::string(bad.text));
        EXPECT_THAT(problem, HasSubstr(bad.problem)) << bad.text;
        EXPECT_EQ(problem.find('\n'), std::string::npos) << problem;
    }
}

TEST(SceneErrors, PlaceInAVeryDeepTreeStaysReadable) {
    json element = {{"AXPosition", 1}, {"AXSize", "not a size: that is fine"}};
    element["AXPosition"] = {{"point", 1}};
    for (int depth = 0; depth < 1000; ++depth) {
        json parent;
        parent["AXChildren"] = json::array();
        parent["AXChildren"].push_back(std::move(element));
        element = std::move(parent);
    }
    const std::string problem = ProblemOfScene(SceneWith(json::array({std::move(element)})));
    EXPECT_THAT(problem, StartsWith("applications[0].windows[0].AXChildren[0]"));
    EXPECT_THAT(problem, HasSubstr("expected an array of 2 numbers"));
    EXPECT_LT(problem.size(), 400u);
}

std::string Repeated(const std::string& text, std::size_t count) {
    std::string repeated;
    for (std::size_t i = 0; i < count; ++i) {
        repeated += text;
    }
    return repeated;
}

TEST(HostileScenes, DeeplyNestedJsonOfAnyKindIsRefusedWithoutRecursion) {
    constexpr std::size_t kDepth = 200000 / kScale;
    EXPECT_NE(ProblemOfScene(Repeated("[", kDepth)), "");
    EXPECT_NE(ProblemOfScene(Repeated("[", kDepth) + Repeated("]", kDepth)), "");
    for (const char* place :
         {R"({"applications": [{"windows": [{"AXValue": DEEP}]}]})",
          R"({"applications": [{"windows": [{"AXSelectedRows": DEEP}]}]})",
          R"({"applications": [{"windows": [{"misbehaviour": DEEP}]}]})",
          R"({"applications": [{"info": {"k": DEEP}}]})", R"({"script": [{"k": DEEP}]})",
          R"({"midi": {"devices": [{"name": "x", "entities": DEEP}]}})",
          R"({"applications": [{"windows": DEEP}]})", R"({"front": DEEP})"}) {
        std::string scene = place;
        scene.replace(scene.find("DEEP"), 4, Repeated("[", kDepth) + Repeated("]", kDepth));
        EXPECT_NE(ProblemOfScene(scene), "") << place;
    }
}

TEST(HostileScenes, ValuesNestAsDeepAsTheyCanTravel) {
    const std::string deep = Repeated("[", 64) + Repeated("]", 64);
    const std::string scene = R"({"front": "a", "applications": [{"bundleID": "a", "windows": [
        {"AXValue": )" + deep +
                              "}]}]}";
    Desktop desktop(scene);
    EXPECT_TRUE(
        std::holds_alternative<desktop_link::Array>(Client{desktop}.Read("/0", "AXValue").content));
    EXPECT_THAT(ProblemOfScene(R"({"applications": [{"windows": [{"AXValue": )" +
                               Repeated("[", 66) + Repeated("]", 66) + "}]}]}"),
                HasSubstr("nested too deep"));
}

TEST(HostileScenes, ValuesThatNameElementsNestNoDeeper) {
    EXPECT_THAT(
        ProblemOfScene(R"({"applications": [{"windows": [{"AXOwner": )" + Repeated("[", 66) +
                       R"({"element": "/0"})" + Repeated("]", 66) + "}]}]}"),
        HasSubstr("nested too deep"));
}

TEST(HostileScenes, EveryTruncationOfASceneIsRefused) {
    const std::string scene =
        R"({"trusted": true, "applications": [{"windows": [{"AXRole": "x"}]}]})";
    for (std::size_t length = 0; length < scene.size(); ++length) {
        EXPECT_NE(ProblemOfScene(scene.substr(0, length)), "") << length;
    }
    EXPECT_EQ(ProblemOfScene(scene), "");
}

TEST(HostileScenes, TextThatIsNotUtf8IsRefused) {
    const std::string scene = "{\"applications\": [{\"name\": \"caf\xE9\"}]}";
    EXPECT_NE(ProblemOfScene(scene), "");
}

TEST(BigScenes, TreeTenThousandDeepIsLoadedWalkedDumpedAndDestroyed) {
    constexpr std::size_t kDepth = 10000 / kScale;
    std::string scene = R"({"front": "a", "applications": [{"bundleID": "a", "windows": [)";
    scene += Repeated(R"({"AXRole": "AXGroup", "AXChildren": [)", kDepth);
    scene += R"({"AXRole": "AXButton", "AXIdentifier": "bottom"})";
    scene += Repeated("]}", kDepth) + "]}]}";
    Desktop desktop(scene);
    const Client client{desktop};
    const ElementReference bottom = client.At("bottom");
    EXPECT_EQ(client.Read(bottom, "AXWindow"), Value{client.At("/0")});
    EXPECT_EQ(client.Perform("bottom", "AXPress"), 0);
    const std::string dump = desktop.Dump();
    EXPECT_EQ(Desktop(dump).Dump(), dump);
    client.Do({{"command", "remove"}, {"element", "/0"}});
    EXPECT_EQ(client.Read(bottom, "AXRole"), Failing(-25202));
    EXPECT_EQ(client.Do({{"command", "state"}})["elements"], 0);
}

TEST(BigScenes, HundredThousandChildrenAreReadInOneCall) {
    constexpr std::size_t kWidth = 100000 / kScale;
    std::string scene = R"({"front": "a", "applications": [{"bundleID": "a", "windows": [
        {"AXRole": "AXTable", "AXChildren": [{"AXRole": "AXRow"})";
    scene += Repeated(R"(,{"AXRole": "AXRow"})", kWidth - 1) + "]}]}]}";
    Desktop desktop(scene);
    const Client client{desktop};
    const Value children = client.Read("/0", "AXChildren");
    const auto& array = std::get<desktop_link::Array>(children.content);
    ASSERT_EQ(array.size(), kWidth);
    for (std::size_t i = 0; i < kWidth; i += 997) {
        EXPECT_EQ(client.Read(std::get<ElementReference>(array[i].content), "AXIndex"),
                  Number(static_cast<std::int64_t>(i)));
    }
}

TEST(BigScenes, MillionWindowsLoad) {
    constexpr std::size_t kWindows = 1000000 / (kScale * kScale);
    std::string scene =
        R"({"front": "a", "applications": [{"bundleID": "a", "windows": [{"AXRole": "AXWindow"})";
    scene += Repeated(R"(,{"AXRole": "AXWindow"})", kWindows - 1) + "]}]}";
    Desktop desktop(scene);
    const Value windows = Client{desktop}.Read("/", "AXWindows");
    EXPECT_EQ(std::get<desktop_link::Array>(windows.content).size(), kWindows);
}

// Uses everything that a scene can say.
const char* const kRichScene = R"({
  "trusted": false, "screens": [{"frame": [0, 0, 1440, 900]}, {"frame": [-800, 0.5, 800, 600]}],
  "pointer": [100, 200.25], "front": "com.example.editor", "messagingTimeout": 0.25,
  "activationGap": 0.5, "comment": "not kept",
  "script": [{"at": 1, "command": "step"}],
  "midi": {"devices": [{"name": "KRT-9 USB", "entities": [{"name": {"error": -10835},
     "sources": [{"name": "S", "connectError": -10842}, "T"], "destinations": ["D"]}]}]},
  "applications": [
    {"bundleID": "com.example.editor", "name": "Editor \"1\"", "pid": 501, "hung": true,
     "editor": {"clipTable": "table", "clipNames": ["/0/0"], "playhead": "/0/0"},
     "misbehaviour": {"read": {"AXTitle": {"error": -25204, "after": 2, "times": 3}}},
     "windows": [
      {"AXRole": "AXWindow", "AXTitle": "é <\u0001>", "AXChildren": [
         {"AXRole": "AXStaticText", "AXValue": "x", "AXPosition": [1, 2.5], "AXSize": [3, 4],
          "AXFrame": [1, 2, 3, 4], "AXHelp": null, "AXTitle": {"error": -25200},
          "AXMatteHole": {"nothing": true}, "AXOwner": {"element": "/0/1"},
          "AXLinked": [{"element": "/", "application": "pid:77"}, {"element": null}],
          "actions": ["AXPress"], "settable": [], "AXRate": {"double": "nan"}, "AXMax": 5.0,
          "misbehaviour": {
            "read": {"AXValue": {"answer": {"point": [1, 2]}, "then": [{"command": "state"}]},
                     "multiple": {"error": -25204}, "AXPosition": {"answer": [7, 8]}},
            "set": {"*": {"error": -25200, "works": true}},
            "action": {"AXPress": {"delay": 0.5}, "AXPick": {"works": false}}}},
         {"AXRole": "AXTable", "AXIdentifier": "table", "AXSelectedRows": [0, 2],
          "AXChildren": [{"AXRole": "AXRow"}, {"AXRole": "AXColumn"}, {"AXRole": "AXRow"}]},
         {"AXRole": "AXGroup", "AXChildren": []},
         {"AXRole": "AXGroup", "AXChildren": {"array": [{"element": "/0"}, 1]}},
         {"AXRole": "AXTable", "AXSelectedRows": {"array": [1]}, "AXPosition": {"array": [1, 2]},
          "AXValue": {"dictionary": {"k": {"data": "00ff"}, "r": {"range": [1, 2]}}}},
         {}]},
      {"AXRole": "AXWindow", "AXMain": true}]},
    {"pid": 77, "name": "tool", "windows": {"error": -25211}},
    {"bundleID": "com.example.dead", "dead": true}, {"bundleID": "com.example.editor"},
    {"bundleID": "com.example.none", "windows": [{"AXMain": false}, {"AXMain": {"error": -25200}}]}
  ]})";

// Changes one to three bytes of a text.
std::string Mutated(std::string text, std::mt19937& random) {
    const std::string likely = "[]{},:\"0123456789-.eAXtruefalsn\\ \x01\xFF";
    for (unsigned changes = 1 + random() % 3; changes != 0; --changes) {
        const std::size_t at = random() % text.size();
        switch (random() % 3) {
            case 0:
                text[at] = likely[random() % likely.size()];
                break;
            case 1:
                text.erase(at, 1 + random() % 20);
                break;
            default:
                text.insert(at, text.substr(random() % text.size(), random() % 30));
        }
        text += text.empty() ? " " : "";
    }
    return text;
}

TEST(HostileScenes, EveryMutationIsRefusedInOneLineOrDumpsTheSameAgain) {
    std::mt19937 random(4);
    int loaded = 0;
    for (int round = 0; round < 3000 / int(kScale); ++round) {
        const std::string scene = Mutated(kRichScene, random);
        try {
            Desktop desktop(scene);
            ++loaded;
            const std::string dump = desktop.Dump();
            EXPECT_EQ(Desktop(dump).Dump(), dump) << scene;
        } catch (const SceneError& error) {
            EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
        }
    }
    EXPECT_GT(loaded, 100 / int(kScale)) << "the mutations spoil everything";
}

TEST(HostileScenes, MutatedCommandsAreSurvived) {
    std::mt19937 random(5);
    const std::vector<std::string> commands = {
        R"({"command": "activate", "application": "pid:77", "gap": 0.5})",
        R"({"command": "launch", "application": {"pid": 9, "windows": [{"AXRole": "AXWindow"}]}})",
        R"({"command": "insert", "application": "pid:501", "parent": "table", "position": 1,
            "element": {"AXRole": "AXRow", "AXChildren": [{"AXOwner": {"element": "/0"}}]}})",
        R"({"command": "remove", "application": "pid:501", "element": "/0/1/1"})",
        R"({"command": "set", "application": "pid:501", "element": "table",
            "attribute": "AXSelectedRows", "value": [0, 1]})",
        R"({"command": "misbehave", "application": "pid:501", "element": "table",
            "misbehaviour": {"read": {"AXRole": {"then": [{"command": "step"}]}}}})",
        R"({"command": "selectClip", "application": "pid:501", "row": 0})",
        R"({"command": "playhead", "application": "pid:501", "frames": 5})",
        R"({"command": "plug", "device": {"name": "a", "entities": [{"name": "b"}]}})",
        R"({"command": "kill", "application": "pid:501"})",
        R"({"command": "log", "since": 3, "clear": true})",
        R"({"command": "advance", "seconds": 2})",
    };
    for (int round = 0; round < 40 / int(kScale); ++round) {
        Desktop desktop(kRichScene);
        for (int i = 0; i < 50; ++i) {
            const std::string& command = commands[random() % commands.size()];
            const json answer =
                json::parse(desktop.Run(random() % 4 == 0 ? command : Mutated(command, random)));
            EXPECT_NE(answer.contains("ok"), answer.contains("error")) << answer;
        }
        const std::string dump = desktop.Dump();
        EXPECT_EQ(Desktop(dump).Dump(), dump);
    }
}

TEST(Dump, IsASceneThatDumpsTheSame) {
    Desktop first(kRichScene);
    const std::string dump = first.Dump();
    Desktop second(dump);
    EXPECT_EQ(second.Dump(), dump);
    EXPECT_EQ(json::parse(dump), json::parse(second.Dump()));
}

TEST(Dump, KeepsWhatTheSceneSaid) {
    Desktop desktop(kRichScene);
    const json scene = json::parse(kRichScene);
    const json dump = json::parse(desktop.Dump());
    for (const char* key : {"trusted", "screens", "pointer", "front", "messagingTimeout",
                            "activationGap", "script"}) {
        EXPECT_EQ(dump[key], scene[key]) << key;
    }
    const json& window = scene["applications"][0]["windows"][0];
    const json& dumped = dump["applications"][0]["windows"][0];
    EXPECT_EQ(dumped["AXTitle"], window["AXTitle"]);
    for (std::size_t i = 0; i < window["AXChildren"].size(); ++i) {
        for (const auto& [key, value] : window["AXChildren"][i].items()) {
            if (key != "misbehaviour") {
                EXPECT_EQ(dumped["AXChildren"][i][key], value) << i << " " << key;
            }
        }
    }
    EXPECT_EQ(dump["applications"][1]["windows"], scene["applications"][1]["windows"]);
}

TEST(Dump, HasOneLineForEachElement) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}}, {{"AXRole", "AXGroup"}}}));
    EXPECT_THAT(desktop.Dump(), HasSubstr("\n          { \"AXRole\": \"AXButton\" },\n"
                                          "          { \"AXRole\": \"AXGroup\" }] }"));
}

TEST(Dump, ShowsChangesAndCanBeTakenUpAgain) {
    Desktop desktop(WindowWith({{{"AXRole", "AXCheckBox"}, {"AXValue", 0}},
                                {{"AXRole", "AXTextField"}, {"AXValue", "a"}}}));
    const Client client{desktop};
    client.Perform("/0/0", "AXPress");
    client.Set("/0/1", "AXValue", Text("b"));
    client.Do({{"command", "insert"}, {"parent", "/0"}, {"element", {{"AXRole", "AXButton"}}}});
    Desktop taken(desktop.Dump());
    const Client other{taken};
    EXPECT_EQ(other.Read("/0/0", "AXValue"), Number(1));
    EXPECT_EQ(other.Read("/0/1", "AXValue"), Text("b"));
    EXPECT_EQ(other.Read("/0/2", "AXRole"), Text("AXButton"));
}

// Children, selected rows, main window and windows are the tree's own; an answer that a command
// sets in place of one of them hides it. The dump has both, each once.
TEST(Dump, KeepsTheTreeBelowAnAnswerThatHidesIt) {
    const std::string scene = R"({"front": "e", "applications": [
        {"bundleID": "e", "pid": 501, "windows": [
            {"AXRole": "AXWindow", "AXOwner": {"element": "/0/0/1"}, "AXChildren": [
                {"AXRole": "AXTable", "AXSelectedRows": [1],
                 "misbehaviour": {"read": {"AXHelp": {"error": -25204}, "AXTitle": {"answer": 1}}},
                 "AXChildren": [{"AXRole": "AXRow"}, {"AXRole": "AXRow"}]}]}]},
        {"pid": 77, "windows": [{"AXLinked": {"element": "/0/0/1", "application": "e"}}]}]})";
    const std::pair<const char*, const char*> places[] = {
        {"/", "AXWindows"}, {"/0", "AXMain"}, {"/0/0", "AXChildren"}, {"/0/0", "AXSelectedRows"}};
    for (const auto& [address, attribute] : places) {
        SCOPED_TRACE(attribute);
        Desktop desktop(scene);
        const Client client{desktop};
        const Value hidden = client.Read(address, attribute);
        client.Do({{"command", "set"},
                   {"element", address},
                   {"attribute", attribute},
                   {"value", {{"error", -25200}}}});
        EXPECT_EQ(client.Read(address, attribute), Failing(-25200));
        const std::string dump = desktop.Dump();
        Desktop taken(dump);
        const Client other{taken};
        EXPECT_EQ(taken.Dump(), dump);
        EXPECT_EQ(other.Read(address, attribute), Failing(-25200));
        EXPECT_EQ(other.Read("/0/0", "AXTitle"), Number(1));
        other.Do({{"command", "misbehave"}, {"element", address}, {"misbehaviour", nullptr}});
        EXPECT_EQ(other.Read(address, attribute).content.index(), hidden.content.index());
    }
}

TEST(Dump, ReferenceToADestroyedElementStaysOne) {
    Desktop desktop(WindowWith(
        {{{"AXRole", "AXGroup"}, {"AXOwner", {{"element", "/0/1"}}}}, {{"AXRole", "AXGroup"}}}));
    const Client client{desktop};
    client.Do({{"command", "remove"}, {"element", "/0/1"}});
    Desktop taken(desktop.Dump());
    const Client other{taken};
    const Value owner = other.Read("/0/0", "AXOwner");
    EXPECT_EQ(other.Read(std::get<ElementReference>(owner.content), "AXRole"), Failing(-25202));
}

TEST(Dump, DeadApplicationHasNoWindowsWhateverItsWindowListWas) {
    Desktop desktop(R"({ "applications": [
        { "pid": 501, "windows": "no list" }, { "pid": 502, "windows": { "error": -25204 } } ] })");
    const Client client{desktop};
    for (const char* application : {"pid:501", "pid:502"}) {
        client.Do({{"command", "kill"}, {"application", application}});
    }
    const std::string dump = desktop.Dump();
    const json scene = json::parse(dump);
    for (const json& application : scene["applications"]) {
        EXPECT_EQ(application["windows"], json::array());
    }
    EXPECT_EQ(Desktop(dump).Dump(), dump);
}

TEST(Determinism, SameSceneAndScriptGiveTheSameLogAndDump) {
    const auto run = [] {
        Desktop desktop(WindowWith({{{"AXRole", "AXCheckBox"}, {"AXIdentifier", "_NS:1"}}}));
        const Client client{desktop};
        for (int i = 0; i < 20; ++i) {
            client.Perform("/0/0", "AXPress");
            client.Do(
                {{"command", "insert"}, {"parent", "/0"}, {"element", {{"AXRole", "AXRow"}}}});
            client.Do({{"command", "activate"}, {"application", nullptr}});
            client.Do({{"command", "activate"}, {"application", "pid:501"}});
        }
        std::string all = desktop.Dump();
        for (const std::string& line : desktop.Log().LinesSince(0)) {
            all += line + "\n";
        }
        return all;
    };
    EXPECT_EQ(run(), run());
}

}  // namespace

}  // namespace desktop
