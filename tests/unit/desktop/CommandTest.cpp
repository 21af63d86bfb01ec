// Commands and scenes in their less common forms.
#include "desktop/InProcessTransport.h"
#include "desktop/Timecode.h"
#include "tests/unit/desktop/Client.h"

namespace desktop {

namespace {

using desktop_link::Array;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

json SetCommand(const char* element, const char* attribute, const json& value) {
    return {{"command", "set"}, {"element", element}, {"attribute", attribute}, {"value", value}};
}

TEST(Timecodes, ThatAreNoneCountFromZero) {
    for (const char* bad : {"", "01:00:00", "01:00:00:", "01:00:00:00:", "-1:00:00:00",
                            "01:00:x:00", "01:00:00:00x", "01"}) {
        EXPECT_EQ(TimecodeAfter(bad, 3, 25), "00:00:00:03") << bad;
    }
    EXPECT_EQ(TimecodeAfter("01;02.03 04", 0, 25), "01:02:03:04") << "any separator";
}

TEST(Commands, MainWindowChangesAndGoes) {
    Desktop desktop(SceneWith({{{"AXRole", "AXWindow"}}, {{"AXRole", "AXWindow"}}}));
    const Client client{desktop};
    client.Do(SetCommand("/1", "AXMain", false));
    EXPECT_EQ(client.Read("/", "AXMainWindow"), Value{client.At("/0")})
        << "another one than the main window resigned";
    client.Do({{"command", "remove"}, {"element", "/1"}});
    EXPECT_EQ(client.Read("/", "AXMainWindow"), Value{client.At("/0")});
    client.Do({{"command", "remove"}, {"element", "/0"}});
    EXPECT_EQ(client.Read("/", "AXMainWindow"), Failing(-25212));
    client.Do({{"command", "insert"},
               {"parent", "/"},
               {"element", {{"AXRole", "AXWindow"}, {"AXMain", true}}}});
    EXPECT_EQ(client.Read("/", "AXMainWindow"), Value{client.At("/0")});
    client.Do(SetCommand("/0", "AXMain", false));
    EXPECT_EQ(client.Read("/", "AXMainWindow"), Failing(-25212));
}

TEST(Commands, MainOfWhatIsNoWindowIsAnAttributeLikeAnyOther) {
    Desktop desktop(WindowWith({{{"AXRole", "AXGroup"}}}));
    const Client client{desktop};
    client.Do(SetCommand("/0/0", "AXMain", true));
    EXPECT_EQ(client.Read("/0/0", "AXMain"), Value{true});
    EXPECT_EQ(client.Read("/", "AXMainWindow"), Value{client.At("/0")});
}

TEST(Commands, RowsAreCountedAnewWhenARoleIsTakenAway) {
    Desktop desktop(WindowWith(
        {{{"AXRole", "AXTable"}, {"AXChildren", {{{"AXRole", "AXRow"}}, {{"AXRole", "AXRow"}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0/1", "AXIndex"), Number(1));
    client.Do({{"command", "remove"}, {"element", "/0/0/0"}, {"attribute", "AXRole"}});
    EXPECT_EQ(client.Read("/0/0/1", "AXIndex"), Number(0));
    client.Do(SetCommand("/0/0/0", "AXRole", "AXRow"));
    EXPECT_EQ(client.Read("/0/0/1", "AXIndex"), Number(1));
    client.Do(SetCommand("/", "AXRole", "AXRow"));
    client.Do({{"command", "remove"}, {"element", "/"}, {"attribute", "AXRole"}});
    EXPECT_EQ(client.Read("/", "AXRole"), Text("AXApplication"));
}

TEST(Commands, IdentifiersThatAreNoTextsAreFoundByNobody) {
    Desktop desktop(WindowWith({{{"AXRole", "AXImage"}, {"AXIdentifier", 5}},
                                {{"AXRole", "AXRow"}, {"AXIdentifier", {{"error", -25204}}}},
                                {{"AXRole", "AXCell"}, {"AXIdentifier", "5"}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("5", "AXRole"), Text("AXCell"));
}

TEST(Commands, ElementLeavesOutWhatACountSays) {
    Desktop desktop(WindowWith({{{"AXRole", "AXTable"}, {"AXChildren", {{{"AXRole", "AXRow"}}}}}}));
    const Client client{desktop};
    const json table = client.Do({{"command", "element"}, {"element", "/0/0"}});
    EXPECT_EQ(table["children"], 1);
    for (const char* list : {"AXChildren", "AXRows", "AXVisibleRows"}) {
        EXPECT_FALSE(table["attributes"].contains(list)) << list;
    }
    EXPECT_TRUE(table["attributes"].contains("AXSelectedRows"));
    EXPECT_FALSE(table.contains("presses")) << "it was never pressed";
    const json application = client.Do({{"command", "element"}, {"element", "/"}});
    EXPECT_EQ(application["children"], 1);
    EXPECT_FALSE(application["attributes"].contains("AXWindows"));
    EXPECT_TRUE(application["attributes"].contains("AXMainWindow"));
}

TEST(Commands, WithoutAnApplicationMeanTheFrontOne) {
    Desktop desktop(R"({"applications": [{"bundleID": "a"}]})");
    const Client client{desktop};
    for (const json& command : {json{{"command", "misbehave"}, {"misbehaviour", nullptr}},
                                json{{"command", "selectClip"}, {"row", nullptr}},
                                json{{"command", "element"}, {"element", "/"}}}) {
        EXPECT_NE(client.ProblemOf(command), "") << command;
    }
    EXPECT_THAT(client.ProblemOf({{"command", "misbehave"}, {"misbehaviour", nullptr}}),
                HasSubstr("no application is in front"));
    EXPECT_THROW(client.At("/"), SceneError);
    EXPECT_EQ(client.At("/", "a").id, 0u);
}

TEST(Commands, ActivationOfNothingTakesNoTime) {
    Desktop desktop(R"({"front": "a", "applications": [{"bundleID": "a"}]})");
    const Client client{desktop};
    client.Do({{"command", "activate"}, {"application", nullptr}, {"gap", 5}});
    EXPECT_THAT(client.Log(), ElementsAre(json({{"activated", nullptr}})));
    client.Do({{"command", "activate"}, {"application", "a"}, {"gap", 5}});
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], "a") << "there is nothing to leave";
}

TEST(Commands, EndOfAnApplicationPassesOverThoseThatAreGone) {
    Desktop desktop(R"({"front": "a", "applications": [
        {"bundleID": "a"}, {"bundleID": "b"}, {"bundleID": "c"}, {"bundleID": "d"}]})");
    const Client client{desktop};
    for (const char* next : {"b", "c", "d"}) {
        client.Do({{"command", "activate"}, {"application", next}});
    }
    client.Do({{"command", "quit"}, {"application", "c"}});
    client.Do({{"command", "kill"}, {"application", "b"}});
    client.Do({{"command", "quit"}, {"application", "d"}});
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], "a");
}

TEST(Commands, HungApplicationThatQuitsIsNotReleasedLater) {
    Desktop desktop(R"({"applications": [{"bundleID": "a", "pid": 7}]})");
    const Client client{desktop};
    client.Do({{"command", "hang"}, {"application", "a"}, {"for", 1}});
    EXPECT_EQ(client.Do({{"command", "state"}})["applications"][0]["hung"], true);
    client.Do({{"command", "quit"}, {"application", "a"}});
    desktop.Advance(2);
    EXPECT_THAT(client.Do({{"command", "state"}})["applications"], IsEmpty());
}

TEST(Commands, LogStaysWhenItIsNotToBeCleared) {
    Desktop desktop(R"({"applications": [{"bundleID": "a"}]})");
    const Client client{desktop};
    client.Do({{"command", "activate"}, {"application", "a"}});
    client.Do({{"command", "log"}, {"clear", false}});
    EXPECT_EQ(client.Log().size(), 1u);
}

TEST(Commands, ScriptThatStepsItselfIsRefused) {
    Desktop desktop(R"({"script": [{"command": "step"}, {"command": "dance"}, {"at": 1}]})");
    const Client client{desktop};
    EXPECT_THAT(client.ProblemOf({{"command", "step"}}), HasSubstr("cannot step itself"));
    EXPECT_THAT(client.ProblemOf({{"command", "step"}}), HasSubstr("dance"));
    EXPECT_THAT(client.ProblemOf({{"command", "step"}}), HasSubstr("\"command\" is missing"));
}

TEST(Scene, TellsWhatIsWrongWithScreensPointersAndRanges) {
    EXPECT_THAT(ProblemOfScene(json{{"screens", {{{"frame", "wide"}}}}}),
                HasSubstr("screens[0].frame: expected an array of 4 numbers"));
    EXPECT_THAT(ProblemOfScene(json{{"pointer", "left"}}),
                HasSubstr("pointer: expected an array of 2 numbers"));
    for (const json& range : {json("x"), json{1}, json{1, 2, 3}}) {
        EXPECT_THAT(ProblemOfScene(WindowWith({{{"AXValue", {{"range", range}}}}})),
                    HasSubstr("expected an array of 2 whole numbers"))
            << range;
    }
    EXPECT_THAT(ProblemOfScene(SceneWith(
                    {{{"misbehaviour", {{"read", {{"AXRole", {{"error", 1}, {"answer", 2}}}}}}}}})),
                HasSubstr("exclude each other"));
}

TEST(Scene, CommentsAreAllowedAnywhere) {
    json scene = WindowWith({{{"AXRole", "AXImage"}, {"comment", "a picture"}}});
    scene["comment"] = "all of it";
    Desktop desktop(scene);
    EXPECT_EQ(Client{desktop}.Read("/0/0", "comment"), Failing(-25205));
}

TEST(Scene, WindowWhoseMainFails) {
    Desktop desktop(SceneWith({{{"AXRole", "AXWindow"}, {"AXMain", {{"error", -25204}}}}}));
    EXPECT_EQ(Client{desktop}.Read("/0", "AXMain"), Failing(-25204));
}

TEST(Scene, ReferenceToNobodyIsAnElementThatIsInvalid) {
    Desktop desktop(WindowWith({{{"AXRole", "AXImage"}, {"AXOwner", {{"element", ""}}}}}));
    const Client client{desktop};
    const Value owner = client.Read("/0/0", "AXOwner");
    const auto* reference = std::get_if<ElementReference>(&owner.content);
    ASSERT_NE(reference, nullptr);
    EXPECT_EQ(reference->pid, 501);
    EXPECT_EQ(client.Read(*reference, "AXRole"), Failing(-25202));
}

TEST(Scene, ElementsOfNamesakesAreToldApartByTheirProcessIds) {
    json scene = {{"applications",
                   {{{"bundleID", "a"}, {"pid", 7}, {"windows", {{{"AXRole", "AXWindow"}}}}},
                    {{"bundleID", "a"}, {"pid", 8}, {"windows", {{{"AXRole", "AXWindow"}}}}}}}};
    Desktop desktop(scene);
    const Client client{desktop};
    EXPECT_EQ(client.At("/0", "a").pid, 7);
    EXPECT_EQ(client.At("/0", "pid:8").pid, 8);
    client.Do({{"command", "set"},
               {"application", "a"},
               {"element", "/0"},
               {"attribute", "AXOwner"},
               {"value", {{"element", "/0"}, {"application", "pid:8"}}}});
    EXPECT_EQ(json::parse(desktop.Dump())["applications"][0]["windows"][0]["AXOwner"],
              (json{{"element", "/0"}, {"application", "pid:8"}}));
}

TEST(Midi, FreeIdsPassOverThoseThatAreGiven) {
    Desktop desktop(R"({"midi": {"devices": [{"name": "a", "id": 1}, {"name": "b"}]}})");
    EXPECT_EQ(json::parse(Client{desktop}.Ask(Operation::midiDevices)->text)["devices"][1]["id"],
              2);
}

TEST(EventLog, EventOfAnUnknownTypeIsCalledOther) {
    Desktop desktop("{}");
    const Client client{desktop};
    Event event;
    event.type = 30;
    event.position = {5, 6};
    client.Post(event);
    EXPECT_EQ(client.Log().at(0)["event"], "other");
    EXPECT_EQ(client.Do({{"command", "state"}})["pointer"], json({0, 0}))
        << "only the mouse moves the pointer";
    event.type = 5;
    event.position = {5, std::numeric_limits<double>::infinity()};
    client.Post(event);
    EXPECT_EQ(client.Do({{"command", "state"}})["pointer"], json({0, 0}));
}

TEST(EventLog, ScrollingWithTheNumberOfAModifierKeyHoldsNothing) {
    Desktop desktop("{}");
    const Client client{desktop};
    Event event;
    event.type = 22;
    event.keyCode = 56;
    event.flags = 0x00020000;
    client.Post(event);
    EXPECT_EQ(client.Do({{"command", "state"}})["modifiers"], json::array());
}

TEST(EventLog, TellsItsSinkEachLine) {
    Desktop desktop(R"({"applications": [{"bundleID": "a"}]})");
    std::vector<std::string> lines;
    desktop.Log().SetSink([&](const std::string& line) { lines.push_back(line); });
    Client{desktop}.Do({{"command", "activate"}, {"application", "a"}});
    EXPECT_THAT(lines, ElementsAre(R"({"n":1,"activated":"a"})"));
}

TEST(EventLog, DropsTheOlderHalfOfWhatIsTooMuchAndGoesOnCounting) {
    EventLog log(4);
    for (std::uint16_t key = 1; key <= 5; ++key) {
        Event event;
        event.type = 10;
        event.keyCode = key;
        log.AddEvent(event);
    }
    ASSERT_EQ(log.Events().size(), 3U);
    EXPECT_EQ(log.Events()[0].keyCode, 3);
    EXPECT_EQ(log.Events()[2].keyCode, 5);
    EXPECT_EQ(log.LastNumber(), 5U);
    const auto lines = log.LinesSince(0);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(json::parse(lines[0])["n"], 3);
    EXPECT_EQ(json::parse(log.LinesSince(4).at(0))["keyCode"], 5);
}

TEST(InProcess, NotificationsWithoutAHandlerAreDropped) {
    Desktop desktop(R"({"applications": [{"bundleID": "a"}]})");
    InProcessTransport transport(desktop);
    Client{desktop}.Do({{"command", "activate"}, {"application", "a"}});
    EXPECT_EQ(transport.DeliverNotifications(), 1u);
    EXPECT_EQ(transport.DeliverNotifications(), 0u);
}

TEST(InProcess, RequestThatCannotTravelIsNotAnswered) {
    Desktop desktop(SceneWith(json::array()));
    InProcessTransport transport(desktop);
    Request request;
    request.operation = static_cast<Operation>(99);
    request.element = {501, 0};
    EXPECT_FALSE(transport.Exchange(request, 6));
}

}  // namespace

}  // namespace desktop
