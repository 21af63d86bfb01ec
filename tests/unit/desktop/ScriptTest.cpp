// Commands, activation, the playing of scripts.
#include "tests/unit/desktop/Client.h"

namespace desktop {

namespace {

using desktop_link::Notification;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const char* const kThree = R"({"front": "com.example.one", "applications": [
    {"bundleID": "com.example.one", "pid": 501, "windows": [{"AXRole": "AXWindow"}]},
    {"bundleID": "com.example.two", "pid": 502},
    {"name": "tool", "pid": 503}]})";

// What the listeners were told: names, or "-" for nothing in front.
struct Listener {
    explicit Listener(Desktop& desktop) {
        desktop.Subscribe([this](const Notification& notification) {
            heard.push_back(notification.activated
                                ? notification.activated->bundleIdentifier.value_or("no bundle")
                                : "-");
        });
    }
    std::vector<std::string> heard;
};

json Activation(const json& application) {
    return {{"command", "activate"}, {"application", application}};
}

TEST(Activation, ListenersAndLogAreToldOfEachChange) {
    Desktop desktop(kThree);
    const Client client{desktop};
    const Listener listener(desktop);
    client.Do(Activation("com.example.two"));
    client.Do(Activation("com.example.two"));
    client.Do(Activation("pid:503"));
    client.Do(Activation(nullptr));
    EXPECT_THAT(listener.heard, ElementsAre("com.example.two", "no bundle", "-"));
    EXPECT_THAT(client.Log(),
                ElementsAre(json({{"activated", "com.example.two"}}),
                            json({{"activated", "pid:503"}}), json({{"activated", nullptr}})));
}

TEST(Activation, CanLeaveAMomentWithNothingInFront) {
    Desktop desktop(kThree);
    const Client client{desktop};
    const Listener listener(desktop);
    json command = Activation("com.example.two");
    command["gap"] = 0.05;
    client.Do(command);
    EXPECT_THAT(listener.heard, ElementsAre("-"));
    EXPECT_FALSE(client.Ask(Operation::hello)->session->frontApplication);
    desktop.Advance(0.05);
    EXPECT_THAT(listener.heard, ElementsAre("-", "com.example.two"));
}

TEST(Activation, SceneCanGiveEveryActivationAGap) {
    json scene = json::parse(kThree);
    scene["activationGap"] = 1;
    Desktop desktop(scene);
    const Client client{desktop};
    const Listener listener(desktop);
    client.Do(Activation("com.example.two"));
    client.Do(Activation("pid:503"));  // overtakes the one that waits
    desktop.Advance(5);
    EXPECT_THAT(listener.heard, ElementsAre("-", "no bundle"));
}

TEST(Activation, OfWhatIsInFrontIsNoNews) {
    json scene = json::parse(kThree);
    scene["activationGap"] = 1;
    Desktop desktop(scene);
    const Client client{desktop};
    client.Do(Activation("com.example.two"));
    desktop.Advance(5);
    const Listener listener(desktop);
    client.Do(Activation("com.example.two"));
    desktop.Advance(5);
    EXPECT_TRUE(listener.heard.empty()) << "it left the front for the gap";
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], "com.example.two");
}

TEST(Activation, ApplicationThatEndsInTheGapDoesNotComeToTheFront) {
    Desktop desktop(kThree);
    const Client client{desktop};
    json command = Activation("com.example.two");
    command["gap"] = 1;
    client.Do(command);
    client.Do({{"command", "quit"}, {"application", "com.example.two"}});
    desktop.Advance(2);
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], nullptr);
}

TEST(Activation, EndOfTheFrontApplicationBringsBackTheOneBefore) {
    Desktop desktop(kThree);
    const Client client{desktop};
    const Listener listener(desktop);
    client.Do(Activation("com.example.two"));
    client.Do(Activation("pid:503"));
    client.Do({{"command", "kill"}, {"application", "pid:503"}});
    client.Do({{"command", "quit"}, {"application", "com.example.two"}});
    client.Do({{"command", "quit"}, {"application", "com.example.one"}});
    EXPECT_THAT(listener.heard, ElementsAre("com.example.two", "no bundle", "com.example.two",
                                            "com.example.one", "-"));
}

TEST(Activation, SettingFrontmostActivates) {
    Desktop desktop(kThree);
    const Client client{desktop};
    EXPECT_EQ(client.Ask(Operation::setAttribute, {502, 0}, {"AXFrontmost"}, {true})->error, 0);
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], "com.example.two");
}

TEST(Applications, AreLaunchedAndUseTheProcessIdOfDeadOnesAgain) {
    Desktop desktop(kThree);
    const Client client{desktop};
    const Listener listener(desktop);
    const json launched =
        client.Do({{"command", "launch"},
                   {"application",
                    {{"bundleID", "com.example.new"}, {"windows", {{{"AXRole", "AXWindow"}}}}}}});
    EXPECT_EQ(launched["pid"], 504);
    EXPECT_THAT(listener.heard, ElementsAre("com.example.new"));
    EXPECT_EQ(client.Read("/0", "AXRole"), Text("AXWindow"));
    const json again = {{"command", "launch"},
                        {"front", false},
                        {"application", {{"bundleID", "com.example.second"}, {"pid", 502}}}};
    EXPECT_THAT(client.ProblemOf(again), HasSubstr("process id is taken"));
    client.Do({{"command", "kill"}, {"application", "com.example.two"}});
    client.Do(again);
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], "com.example.new");
}

TEST(Applications, ProcessIdOfADeadOneInFrontStaysTaken) {
    Desktop desktop(R"({"front": "pid:501", "applications": [{"pid": 501, "dead": true}]})");
    const Client client{desktop};
    EXPECT_THAT(client.ProblemOf({{"command", "launch"}, {"application", {{"pid", 501}}}}),
                HasSubstr("process id is taken"));
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], "pid:501");
}

TEST(Applications, BadLaunchChangesNothing) {
    Desktop desktop(kThree);
    const Client client{desktop};
    const std::string before = desktop.Dump();
    for (const json& bad : {json{{"pid", 501}}, json{{"windows", {1}}},
                            json{{"windows", {{{"AXOwner", {{"element", "none"}}}}}}},
                            json{{"info", {{"k", nullptr}}}}, json("x")}) {
        EXPECT_NE(client.ProblemOf({{"command", "launch"}, {"application", bad}}), "") << bad;
        EXPECT_EQ(desktop.Dump(), before) << bad;
    }
    EXPECT_EQ(client.Do({{"command", "state"}})["elements"], 1) << "nothing is left behind";
}

TEST(Applications, BadLaunchWithTheProcessIdOfADeadOneLeavesTheDeadOne) {
    Desktop desktop(kThree);
    const Client client{desktop};
    client.Do({{"command", "kill"}, {"application", "com.example.two"}});
    const std::string before = desktop.Dump();
    EXPECT_THAT(before, HasSubstr("com.example.two"));
    for (const json& bad :
         {json{{"pid", 502}, {"windows", {1}}}, json{{"pid", 502}, {"info", {{"k", nullptr}}}}}) {
        EXPECT_NE(client.ProblemOf({{"command", "launch"}, {"application", bad}}), "") << bad;
        EXPECT_EQ(desktop.Dump(), before) << bad;
    }
    client.Do({{"command", "launch"}, {"application", {{"name", "new"}, {"pid", 502}}}});
    EXPECT_THAT(desktop.Dump(), testing::Not(HasSubstr("com.example.two")));
}

TEST(Commands, BadOnesAnswerOneLineAndChangeNothing) {
    Desktop desktop(kThree);
    const Client client{desktop};
    const std::string before = desktop.Dump();
    const json elements = client.Do({{"command", "state"}})["elements"];
    const std::pair<const char*, const char*> kBad[] = {
        {"", "command: parse error"},
        {"[]", "command: expected an object"},
        {"{}", R"(command: "command" is missing)"},
        {R"({"command": 5})", "command: expected a text"},
        {R"({"command": "dance"})", R"(there is no command "dance")"},
        {R"({"command": "activate"})", R"("application" is missing)"},
        {R"({"command": "activate", "application": "x"})", R"(no application "x")"},
        {R"({"command": "activate", "application": null, "gap": -1})", "gap: expected seconds"},
        {R"({"command": "activate", "application": null, "spped": 1})", R"(unknown key "spped")"},
        {R"({"command": "set", "element": "/9", "attribute": "AXValue", "value": 1})",
         R"(element: no element "/9")"},
        {R"({"command": "set", "element": "/0", "attribute": "AXValue"})", R"("value" is missing)"},
        {R"({"command": "set", "element": "/0", "attribute": "value", "value": 1})",
         "attribute: no attribute; their names begin with a capital letter"},
        {R"({"command": "set", "element": "/0", "attribute": "AXChildren", "value": []})",
         "use \"insert\""},
        {R"({"command": "set", "element": "/0", "attribute": "AXPosition", "value": [1]})",
         "value: expected an array of 2"},
        {R"({"command": "insert", "parent": "/0", "element": {"axrole": 1}})", "no attribute"},
        {R"({"command": "insert", "parent": "/0", "element": {"AXChildren": [{}, 1]}})",
         "element[0].AXChildren[1]: expected an object"},
        {R"({"command": "insert", "parent": "/0", "element": {"AXOwner": {"element": "q"}}})",
         "no element"},
        {R"({"command": "remove", "element": "/"})", "is ended with"},
        {R"({"command": "selectClip", "row": 1})", "no \"editor\""},
        {R"({"command": "playhead", "frames": 1})", "no \"editor\""},
        {R"({"command": "plug", "device": {}})", R"("name" is missing)"},
        {R"({"command": "unplug", "device": "x"})", R"(no device "x")"},
        {R"({"command": "pointer", "position": 5})", "expected an array of 2 numbers"},
        {R"({"command": "log", "since": -1})", "since: the number -1 is out of range"},
        {R"({"command": "step"})", "the script is at its end"},
        {R"({"command": "advance", "seconds": "x"})", "seconds: expected a number"},
        {R"({"command": "misbehave", "misbehaviour": {"x": 1}})", "unknown key"},
    };
    for (const auto& [command, problem] : kBad) {
        const std::string answer = desktop.Run(command);
        EXPECT_THAT(json::parse(answer).value("error", ""), HasSubstr(problem)) << command;
        EXPECT_EQ(answer.find('\n'), std::string::npos);
        EXPECT_EQ(desktop.Dump(), before) << command;
    }
    EXPECT_THAT(client.Log(), IsEmpty());
    EXPECT_EQ(client.Do({{"command", "state"}})["elements"], elements) << "nothing is left behind";
}

TEST(Commands, NamesWithControlCharactersLeaveTheProblemOneLine) {
    Desktop desktop(kThree);
    const Client client{desktop};
    const std::string before = desktop.Dump();
    for (const std::string& name :
         {std::string("a\nb"), std::string(1, '\0'), std::string("\x7F")}) {
        const json application = {{"bundleID", name}, {"info", {{"k", nullptr}}}};
        const std::string problem =
            client.ProblemOf({{"command", "launch"}, {"application", application}});
        EXPECT_THAT(problem, HasSubstr("?")) << json(name);
        EXPECT_THAT(problem, HasSubstr("a property list cannot contain")) << json(name);
        EXPECT_EQ(desktop.Dump(), before);
    }
}

TEST(Commands, OverTheLinkAnswerTheirErrorInTheReplyToo) {
    Desktop desktop(kThree);
    Request request;
    request.operation = Operation::script;
    request.text = R"({"command": "state"})";
    EXPECT_EQ(desktop.Handle(1, request)->error, 0);
    request.text = "dance";
    const auto reply = desktop.Handle(1, request);
    EXPECT_EQ(reply->error, -25201);
    EXPECT_THAT(reply->text, HasSubstr("parse error"));
}

TEST(Commands, SetChangesAnyAttributeToAnyType) {
    Desktop desktop(kThree);
    const Client client{desktop};
    const auto set = [&](const char* attribute, const json& value) {
        client.Do(
            {{"command", "set"}, {"element", "/0"}, {"attribute", attribute}, {"value", value}});
    };
    set("AXRole", 5);
    EXPECT_EQ(client.Read("/0", "AXRole"), Number(5));
    set("AXTitle", {{"error", -25204}});
    EXPECT_EQ(client.Read("/0", "AXTitle"), Failing(-25204));
    set("AXMain", false);
    EXPECT_EQ(client.Read("/0", "AXMain"), Value{false});
    set("AXMain", true);
    EXPECT_EQ(client.Read("/0", "AXMain"), Value{true});
    client.Do({{"command", "remove"}, {"element", "/0"}, {"attribute", "AXTitle"}});
    EXPECT_EQ(client.Read("/0", "AXTitle"), Failing(-25205));
}

TEST(Commands, AddressesAreIdentifiersOrPaths) {
    json group = {{"AXRole", "AXGroup"}};
    group["AXChildren"] = {{{"AXRole", "AXRow"}},
                           {{"AXRole", "AXButton"}, {"AXIdentifier", "b"}},
                           {{"AXRole", "AXButton"}, {"AXIdentifier", "c"}}};
    Desktop desktop(WindowWith({{{"AXRole", "AXImage"}}, group}));
    const Client client{desktop};
    const ElementReference wanted = client.At("c");
    EXPECT_EQ(client.At("/0/1/2"), wanted);
    EXPECT_EQ(client.At("/AXWindow/AXGroup/AXButton[1]"), wanted);
    EXPECT_EQ(client.At("/AXWindow[0]/1/AXButton[1]"), wanted);
    EXPECT_EQ(client.At("/"), (ElementReference{501, 0}));
    for (const char* bad : {"", "d", "/1", "/0/9", "/AXWindow[1]", "/AXWindow[", "/AXWindow[x]",
                            "/0/", "//", "/18446744073709551616", "/-1"}) {
        EXPECT_THROW(client.At(bad), SceneError) << bad;
    }
}

TEST(Commands, FirstElementInPreOrderBearsTheIdentifier) {
    json deep = {{"AXRole", "AXGroup"}};
    deep["AXChildren"] = {{{"AXRole", "AXImage"}, {"AXIdentifier", "twice"}}};
    Desktop desktop(WindowWith({deep, {{"AXRole", "AXRow"}, {"AXIdentifier", "twice"}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("twice", "AXRole"), Text("AXImage"));
}

TEST(Commands, ElementTellsItsAttributesAndPresses) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}, {"AXPosition", {1, 2}}}}));
    const Client client{desktop};
    client.Do({{"command", "press"}, {"element", "/0/0"}});
    const json element = client.Do({{"command", "element"}, {"element", "/0/0"}});
    EXPECT_EQ(element["presses"], 1);
    EXPECT_EQ(element["actions"], json({"AXPress"}));
    EXPECT_EQ(element["attributes"]["AXPosition"], json({1, 2}));
    EXPECT_EQ(element["attributes"]["AXParent"], json({{"element", "/0"}}));
}

TEST(Commands, LogIsReadInPiecesAndCleared) {
    Desktop desktop(kThree);
    const Client client{desktop};
    client.Do(Activation("com.example.two"));
    client.Do(Activation("com.example.one"));
    json log = client.Do({{"command", "log"}});
    EXPECT_EQ(log["entries"].size(), 2u);
    EXPECT_EQ(log["last"], 2);
    log = client.Do({{"command", "log"}, {"since", 1}, {"clear", true}});
    EXPECT_EQ(log["entries"], json({{{"n", 2}, {"activated", "com.example.one"}}}));
    EXPECT_THAT(client.Do({{"command", "log"}})["entries"], IsEmpty());
    client.Do(Activation("com.example.two"));
    log = client.Do({{"command", "log"}, {"since", 2}});
    EXPECT_EQ(log["entries"][0]["n"], 3) << "numbers go on";
    EXPECT_THAT(client.Do({{"command", "log"}, {"since", 99}})["entries"], IsEmpty());
}

json EditorScene() {
    const auto row = [](const char* name) -> json {
        json cell = {{"AXRole", "AXCell"}, {"AXValue", name}};
        return {{"AXRole", "AXRow"}, {"AXChildren", json::array({cell})}};
    };
    json table = {
        {"AXRole", "AXTable"}, {"AXIdentifier", "table"}, {"AXSelectedRows", json::array()}};
    table["AXChildren"] = {{{"AXRole", "AXColumn"}}, row("Gulls"), row("Crowd")};
    json scene =
        WindowWith({table,
                    {{"AXRole", "AXStaticText"}, {"AXIdentifier", "name"}, {"AXValue", ""}},
                    {{"AXRole", "AXValueIndicator"},
                     {"AXIdentifier", "playhead"},
                     {"AXValueDescription", "00:59:59:24"}}});
    scene["applications"][0]["editor"] = {
        {"clipTable", "table"}, {"clipNames", {"name"}}, {"playhead", "playhead"}};
    return scene;
}

TEST(Editor, SelectsClipsByNameOrRow) {
    Desktop desktop(EditorScene());
    const Client client{desktop};
    EXPECT_EQ(client.Do({{"command", "selectClip"}, {"clip", "Crowd"}})["clip"], "Crowd");
    EXPECT_EQ(client.Read("name", "AXValue"), Text("Crowd"));
    EXPECT_EQ(client.Read("/0/0/2", "AXSelected"), Value{true});
    client.Do({{"command", "selectClip"}, {"row", 0}});
    EXPECT_EQ(client.Read("name", "AXValue"), Text("Gulls"));
    EXPECT_EQ(client.Read("table", "AXSelectedRows"),
              (Value{desktop_link::Array{{client.At("/0/0/1")}}}));
    client.Do({{"command", "selectClip"}, {"row", nullptr}});
    EXPECT_EQ(client.Read("name", "AXValue"), Text(""));
    EXPECT_EQ(client.Read("table", "AXSelectedRows"), Value{desktop_link::Array{}});
    EXPECT_NE(client.ProblemOf({{"command", "selectClip"}, {"clip", "None"}}), "");
    EXPECT_NE(client.ProblemOf({{"command", "selectClip"}, {"row", 2}}), "");
}

TEST(Editor, SelectsNothingWhenAClipNameIsGone) {
    Desktop desktop(EditorScene());
    const Client client{desktop};
    client.Do({{"command", "selectClip"}, {"clip", "Crowd"}});
    client.Do({{"command", "remove"}, {"element", "name"}});
    const std::string before = desktop.Dump();
    EXPECT_THAT(client.ProblemOf({{"command", "selectClip"}, {"row", 0}}),
                HasSubstr("editor.clipNames"));
    EXPECT_EQ(desktop.Dump(), before);
}

TEST(Editor, MovesThePlayheadToATimecodeOrByFrames) {
    Desktop desktop(EditorScene());
    const Client client{desktop};
    client.Do({{"command", "playhead"}, {"frames", 1}});
    EXPECT_EQ(client.Read("playhead", "AXValueDescription"), Text("01:00:00:00"));
    client.Do({{"command", "playhead"}, {"frames", -26}});
    EXPECT_EQ(client.Read("playhead", "AXValueDescription"), Text("00:59:58:24"));
    client.Do({{"command", "playhead"}, {"timecode", "not a timecode"}});
    EXPECT_EQ(client.Read("playhead", "AXValueDescription"), Text("not a timecode"));
    client.Do({{"command", "playhead"}, {"frames", -1}});
    EXPECT_EQ(client.Read("playhead", "AXValueDescription"), Text("00:00:00:00"));
    client.Do({{"command", "playhead"}, {"frames", 1000000000}});
    EXPECT_EQ(client.Read("playhead", "AXValueDescription"), Text("99:59:59:24"));
}

json TimedScene() {
    json scene = json::parse(kThree);
    scene["script"] = {{{"at", 1}, {"command", "activate"}, {"application", "com.example.two"}},
                       {{"command", "activate"}, {"application", "pid:503"}},
                       {{"at", 3}, {"command", "remove"}, {"element", "/5"}},
                       {{"at", 2}, {"command", "activate"}, {"application", nullptr}}};
    return scene;
}

TEST(ScriptPlaying, StepsThroughTheScript) {
    Desktop desktop(TimedScene());
    const Client client{desktop};
    EXPECT_EQ(client.Do({{"command", "state"}})["nextStep"], 0);
    client.Do({{"command", "step"}});
    EXPECT_EQ(client.Do({{"command", "state"}})["nextStep"], 1);
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], "com.example.two");
    client.Do({{"command", "step"}});
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], "pid:503");
    EXPECT_THAT(client.ProblemOf({{"command", "step"}}), HasSubstr("no element"));
    client.Do({{"command", "step"}});
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], nullptr);
    EXPECT_THAT(client.ProblemOf({{"command", "step"}}), HasSubstr("at its end"));
}

TEST(ScriptPlaying, BadTimeRefusesTheWholePlay) {
    json scene = TimedScene();
    scene["script"][2]["at"] = "soon";
    Desktop desktop(scene);
    const Client client{desktop};
    EXPECT_THAT(client.ProblemOf({{"command", "play"}}), HasSubstr("script[2].at"));
    desktop.Advance(5);
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], "com.example.one");
    client.Do({{"command", "step"}});
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], "com.example.two");
}

TEST(ScriptPlaying, PlaysEachCommandAtItsTime) {
    Desktop desktop(TimedScene());
    const Client client{desktop};
    const Listener listener(desktop);
    client.Do({{"command", "play"}});
    client.Do({{"command", "advance"}, {"seconds", 0.99}});
    EXPECT_THAT(listener.heard, IsEmpty());
    client.Do({{"command", "advance"}, {"seconds", 0.02}});
    EXPECT_THAT(listener.heard, ElementsAre("com.example.two", "no bundle"));
    client.Do({{"command", "advance"}, {"seconds", 60}});
    EXPECT_THAT(listener.heard, ElementsAre("com.example.two", "no bundle", "-"));
    EXPECT_THAT(client.Log().back()["problem"], HasSubstr("no application is in front"));
}

TEST(ScriptPlaying, ScriptCannotStepOrAdvanceItself) {
    json scene = json::parse(kThree);
    scene["script"] = json::array();
    for (int i = 0; i < 100; ++i) {
        scene["script"].push_back({{"command", i % 2 == 0 ? "advance" : "step"}, {"seconds", 1}});
    }
    Desktop desktop(scene);
    const Client client{desktop};
    client.Do({{"command", "play"}});
    client.Do({{"command", "advance"}, {"seconds", 1}});
    EXPECT_EQ(client.Log().size(), 100u) << "each is a problem in the log";
}

TEST(Stop, IsAskedForByACommand) {
    Desktop desktop("{}");
    EXPECT_FALSE(desktop.QuitWanted());
    Client{desktop}.Do({{"command", "stop"}});
    EXPECT_TRUE(desktop.QuitWanted());
}

const char* const kMidiScene = R"({"midi": {"devices": [
    {"name": "KRT-9 USB", "entities": [{"name": "Private", "sources": ["In"],
     "destinations": ["Out"]}]},
    {"name": {"error": -10835}, "id": 9, "entities": []}]}})";

json Bus(const Client& client) {
    return json::parse(client.Ask(Operation::midiDevices)->text)["devices"];
}

std::int32_t Connect(Desktop& desktop, std::int64_t source) {
    Request request;
    request.operation = Operation::midiConnectSource;
    request.number = source;
    return desktop.Handle(1, request)->error;
}

TEST(Midi, BusIsDescribedInDeviceOrder) {
    Desktop desktop(kMidiScene);
    EXPECT_EQ(Bus(Client{desktop}), json::parse(R"([
        {"id": 1, "name": "KRT-9 USB", "entities": [{"id": 2, "name": "Private",
         "sources": [{"id": 3, "name": "In"}], "destinations": [{"id": 4, "name": "Out"}]}]},
        {"id": 9, "name": {"error": -10835}, "entities": []}])"));
}

TEST(Midi, OnlySourcesCanBeConnected) {
    Desktop desktop(kMidiScene);
    const Client client{desktop};
    EXPECT_EQ(Connect(desktop, 3), 0);
    EXPECT_EQ(Connect(desktop, 4), -10834);
    EXPECT_EQ(Connect(desktop, 0), -10834);
    EXPECT_THAT(client.Log().at(0), json({{"midi", "connect"}, {"source", 3}, {"error", 0}}));
}

TEST(Midi, ConnectingCanBeRefused) {
    Desktop desktop(R"({"midi": {"devices": [{"name": "a", "entities": [{"name": "b",
        "sources": [{"name": "c", "id": 5, "connectError": -10844}]}]}]}})");
    EXPECT_EQ(Connect(desktop, 5), -10844);
}

TEST(Midi, DevicesComeAndGoAndIdsAreNeverUsedAgain) {
    Desktop desktop(kMidiScene);
    const Client client{desktop};
    client.Do({{"command", "unplug"}, {"device", "KRT-9 USB"}});
    EXPECT_EQ(Bus(client).size(), 1u);
    EXPECT_EQ(Connect(desktop, 3), -10834);
    const json device = {{"name", "KRT-9 USB"},
                         {"entities", {{{"name", "Private"}, {"sources", {"In"}}}}}};
    EXPECT_EQ(client.Do({{"command", "plug"}, {"device", device}})["id"], 5);
    EXPECT_EQ(Bus(client)[1]["entities"][0]["sources"][0]["id"], 7);
    EXPECT_THAT(client.ProblemOf({{"command", "plug"}, {"device", {{"name", "x"}, {"id", 1}}}}),
                HasSubstr("taken"));
}

}  // namespace

}  // namespace desktop
