// What elements return and how they react.
#include "tests/unit/desktop/Client.h"

namespace desktop {

namespace {

using desktop_link::Array;
using desktop_link::Point;
using desktop_link::Rect;
using desktop_link::Size;
using testing::ElementsAre;

Value References(std::initializer_list<ElementReference> references) {
    Array array;
    for (const ElementReference& reference : references) {
        array.push_back({reference});
    }
    return {array};
}

TEST(Elements, JsonValuesBecomeTheTypesOfTheFrameworks) {
    Desktop desktop(WindowWith({{{"AXRole", "AXGroup"},
                                 {"AXPosition", {10, 22.5}},
                                 {"AXSize", {300, 200}},
                                 {"AXFrame", {1, 2, 3, 4}},
                                 {"AXValue", 7},
                                 {"AXMaxValue", 7.0},
                                 {"AXEnabled", true},
                                 {"AXTitles", {"a", 1}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXRole"), Text("AXGroup"));
    EXPECT_EQ(client.Read("/0/0", "AXPosition"), (Value{Point{10, 22.5}}));
    EXPECT_EQ(client.Read("/0/0", "AXSize"), (Value{Size{300, 200}}));
    EXPECT_EQ(client.Read("/0/0", "AXFrame"), (Value{Rect{{1, 2}, {3, 4}}}));
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(7));
    EXPECT_EQ(client.Read("/0/0", "AXMaxValue"), Value{7.0});
    EXPECT_EQ(client.Read("/0/0", "AXEnabled"), Value{true});
    EXPECT_EQ(client.Read("/0/0", "AXTitles"), (Value{Array{Text("a"), Number(1)}}));
}

TEST(Elements, TaggedFormsGiveValuesOfAnyType) {
    Desktop desktop(WindowWith({{{"AXRole", "AXGroup"},
                                 {"AXValue", {{"point", {1, 2}}}},
                                 {"AXPosition", {{"size", {3, 4}}}},
                                 {"AXSize", {{"rect", {1, 2, 3, 4}}}},
                                 {"AXTitle", {{"range", {5, -6}}}},
                                 {"AXHelp", {{"data", "00fF80"}}},
                                 {"AXIdentifier", {{"null", true}}},
                                 {"AXDescription", {{"axerror", -25205}}},
                                 {"AXLabel", {{"array", {1, {{"array", json::array()}}}}}},
                                 {"AXInfo", {{"dictionary", {{"k", {{"point", {0, 0}}}}}}}},
                                 {"AXOwner", {{"element", "/0"}}},
                                 {"AXRate", {{"double", "inf"}}},
                                 {"AXScale", {{"double", 2}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXValue"), (Value{Point{1, 2}}));
    EXPECT_EQ(client.Read("/0/0", "AXPosition"), (Value{Size{3, 4}}));
    EXPECT_EQ(client.Read("/0/0", "AXSize"), (Value{Rect{{1, 2}, {3, 4}}}));
    EXPECT_EQ(client.Read("/0/0", "AXTitle"), (Value{desktop_link::Range{5, -6}}));
    EXPECT_EQ(client.Read("/0/0", "AXHelp"), (Value{desktop_link::Bytes{{0, 0xFF, 0x80}}}));
    EXPECT_EQ(client.Read("/0/0", "AXIdentifier"), Value{std::monostate{}});
    EXPECT_EQ(client.Read("/0/0", "AXDescription"), Failing(-25205));
    EXPECT_EQ(client.Read("/0/0", "AXLabel"), (Value{Array{Number(1), Value{Array{}}}}));
    EXPECT_EQ(client.Read("/0/0", "AXInfo"),
              (Value{desktop_link::Dictionary{{"k", Value{Point{0, 0}}}}}));
    EXPECT_EQ(client.Read("/0/0", "AXOwner"), Value{client.At("/0")});
    EXPECT_EQ(client.Read("/0/0", "AXRate"), Value{std::numeric_limits<double>::infinity()});
    EXPECT_EQ(client.Read("/0/0", "AXScale"), Value{2.0});
}

TEST(Elements, ErrorValueIsAValueAndErrorIsAFailure) {
    Desktop desktop(WindowWith({{{"AXRole", "AXGroup"},
                                 {"AXValue", {{"axerror", -25205}}},
                                 {"AXTitle", {{"error", -25204}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Ask(Operation::copyAttribute, client.At("/0/0"), {"AXValue"})->error, 0);
    EXPECT_EQ(client.Ask(Operation::copyAttribute, client.At("/0/0"), {"AXTitle"})->error, -25204);
}

TEST(Elements, AbsentAttributeIsUnsupportedAndNullHasNoValue) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}, {"AXTitle", nullptr}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXHelp"), Failing(-25205));
    EXPECT_EQ(client.Read("/0/0", "AXTitle"), Failing(-25212));
    EXPECT_EQ(client.Read("/0/0", "AXChildren"), Failing(-25205));
}

TEST(Elements, NothingIsSuccessWithoutValue) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}, {"AXTitle", {{"nothing", true}}}}}));
    const Client client{desktop};
    const auto reply = client.Ask(Operation::copyAttribute, client.At("/0/0"), {"AXTitle"});
    EXPECT_EQ(reply->error, 0);
    EXPECT_TRUE(reply->values.empty());
}

TEST(Elements, TreeGivesParentWindowAndIdentity) {
    Desktop desktop(
        WindowWith({{{"AXRole", "AXGroup"}, {"AXChildren", {{{"AXRole", "AXButton"}}}}}}));
    const Client client{desktop};
    const ElementReference button = client.At("/0/0/0");
    EXPECT_EQ(client.Read("/0/0", "AXChildren"), References({button}));
    EXPECT_EQ(client.Read(button, "AXParent"), Value{client.At("/0/0")});
    EXPECT_EQ(client.Read(button, "AXWindow"), Value{client.At("/0")});
    EXPECT_EQ(client.Read(button, "AXTopLevelUIElement"), Value{client.At("/0")});
    EXPECT_EQ(client.Read("/0", "AXParent"), (Value{ElementReference{501, 0}}));
    EXPECT_EQ(client.Read("/0", "AXWindow"), Failing(-25205));
}

TEST(Elements, ApplicationHasItsOwnAttributes) {
    Desktop desktop(SceneWith({{{"AXRole", "AXWindow"}}, {{"AXRole", "AXWindow"}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/", "AXRole"), Text("AXApplication"));
    EXPECT_EQ(client.Read("/", "AXTitle"), Text("Editor"));
    EXPECT_EQ(client.Read("/", "AXFrontmost"), Value{true});
    EXPECT_EQ(client.Read("/", "AXWindows"), References({client.At("/0"), client.At("/1")}));
    EXPECT_EQ(client.Read("/", "AXMainWindow"), Value{client.At("/0")});
    EXPECT_EQ(client.Read("/", "AXParent"), Failing(-25205));
}

TEST(Elements, ApplicationWithoutWindowsHasAnEmptyList) {
    Desktop desktop(SceneWith(json::array()));
    EXPECT_EQ(Client{desktop}.Read("/", "AXWindows"), Value{Array{}});
    EXPECT_EQ(Client{desktop}.Read("/", "AXMainWindow"), Failing(-25212));
}

TEST(Elements, WindowListCanFail) {
    Desktop desktop(SceneWith({{"error", -25204}}));
    EXPECT_EQ(Client{desktop}.Read("/", "AXWindows"), Failing(-25204));
}

TEST(Elements, FrameFollowsPositionAndSize) {
    Desktop desktop(
        SceneWith({{{"AXRole", "AXWindow"}, {"AXPosition", {0, 22}}, {"AXSize", {1440, 878}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0", "AXFrame"), (Value{Rect{{0, 22}, {1440, 878}}}));
    EXPECT_EQ(client.Set("/0", "AXPosition", {Point{5, 6}}), 0);
    EXPECT_EQ(client.Read("/0", "AXFrame"), (Value{Rect{{5, 6}, {1440, 878}}}));
}

TEST(Elements, SeveralAttributesInOneCallHaveErrorsInTheirPlaces) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}, {"AXIdentifier", "_NS:5"}}}));
    const Client client{desktop};
    const std::vector<std::string> names = {"AXRole", "AXChildren", "AXIdentifier", "AXSubrole"};
    const auto reply = client.Ask(Operation::copyAttributes, client.At("/0/0"), names);
    EXPECT_EQ(reply->error, 0);
    EXPECT_THAT(reply->values,
                ElementsAre(Text("AXButton"), Failing(-25205), Text("_NS:5"), Failing(-25205)));
    const auto stopped = client.Ask(Operation::copyAttributes, client.At("/0/0"), names, {}, true);
    EXPECT_EQ(stopped->error, -25205);
    EXPECT_TRUE(stopped->values.empty());
}

TEST(Elements, AttributeNamesAreThoseThatCanBeRead) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}, {"AXHelp", "h"}, {"AXIdentifier", "i"}}}));
    const Client client{desktop};
    EXPECT_THAT(client.Ask(Operation::attributeNames, client.At("/0/0"))->values,
                ElementsAre(Text("AXRole"), Text("AXIdentifier"), Text("AXHelp"), Text("AXParent"),
                            Text("AXTopLevelUIElement"), Text("AXWindow")));
}

TEST(Elements, PressFlipsACheckBox) {
    Desktop desktop(WindowWith({{{"AXRole", "AXCheckBox"}, {"AXValue", 1}},
                                {{"AXRole", "AXCheckBox"}, {"AXValue", false}},
                                {{"AXRole", "AXCheckBox"}, {"AXValue", 2}},
                                {{"AXRole", "AXCheckBox"}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Perform("/0/0", "AXPress"), 0);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
    client.Perform("/0/0", "AXPress");
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(1));
    client.Perform("/0/1", "AXPress");
    EXPECT_EQ(client.Read("/0/1", "AXValue"), Value{true});
    client.Perform("/0/2", "AXPress");
    EXPECT_EQ(client.Read("/0/2", "AXValue"), Number(0));
    client.Perform("/0/3", "AXPress");
    EXPECT_EQ(client.Read("/0/3", "AXValue"), Number(1));
}

TEST(Elements, PressSelectsARadioButtonAmongItsSiblings) {
    Desktop desktop(WindowWith({{{"AXRole", "AXRadioGroup"},
                                 {"AXChildren",
                                  {{{"AXRole", "AXRadioButton"}, {"AXValue", 1}},
                                   {{"AXRole", "AXStaticText"}, {"AXValue", 1}},
                                   {{"AXRole", "AXRadioButton"}, {"AXValue", 0}}}}},
                                {{"AXRole", "AXRadioButton"}, {"AXValue", 1}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Perform("/0/0/2", "AXPress"), 0);
    EXPECT_EQ(client.Read("/0/0/0", "AXValue"), Number(0));
    EXPECT_EQ(client.Read("/0/0/1", "AXValue"), Number(1)) << "a text is not a radio button";
    EXPECT_EQ(client.Read("/0/0/2", "AXValue"), Number(1));
    EXPECT_EQ(client.Read("/0/1", "AXValue"), Number(1)) << "another group was touched";
    client.Perform("/0/0/2", "AXPress");
    EXPECT_EQ(client.Read("/0/0/2", "AXValue"), Number(1)) << "pressing again keeps the selection";
}

TEST(Elements, ButtonCountsItsPressesInTheLog) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}, {"AXIdentifier", "_NS:9"}}}));
    const Client client{desktop};
    client.Perform("/0/0", "AXPress");
    client.Perform("/0/0", "AXPress");
    const json first = {{"action", "AXPress"}, {"application", "com.example.editor"},
                        {"element", "/0/0"},   {"identifier", "_NS:9"},
                        {"error", 0},          {"works", true},
                        {"presses", 1}};
    json second = first;
    second["presses"] = 2;
    EXPECT_THAT(client.Log(), ElementsAre(first, second));
}

TEST(Elements, ActionThatAnElementDoesNotHaveIsUnsupported) {
    Desktop desktop(WindowWith({{{"AXRole", "AXStaticText"}},
                                {{"AXRole", "AXButton"}, {"AXEnabled", false}},
                                {{"AXRole", "AXStaticText"}, {"actions", {"AXPress"}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Perform("/0/0", "AXPress"), -25206);
    EXPECT_EQ(client.Perform("/0/1", "AXPress"), -25206) << "disabled";
    EXPECT_EQ(client.Perform("/0/2", "AXPress"), 0) << "its scene gives it the action";
    EXPECT_TRUE(client.Ask(Operation::actionNames, client.At("/0/0"))->values.empty());
    EXPECT_THAT(client.Ask(Operation::actionNames, client.At("/0/2"))->values,
                ElementsAre(Text("AXPress")));
}

TEST(Elements, EnabledOneHasItsActions) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}, {"AXEnabled", true}}}));
    EXPECT_EQ(Client{desktop}.Perform("/0/0", "AXPress"), 0);
}

TEST(Elements, OutlineHasRowsLikeATable) {
    Desktop desktop(
        WindowWith({{{"AXRole", "AXOutline"}, {"AXChildren", {{{"AXRole", "AXRow"}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXRows"), References({client.At("/0/0/0")}));
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"), Value{Array{}});
}

TEST(Elements, ConfirmedTextIsKeptAndUnconfirmedTextCanBeTakenBack) {
    Desktop desktop(WindowWith({{{"AXRole", "AXTextField"}, {"AXValue", "5"}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0/0", "AXValue", Text("12")), 0);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Text("12"));
    EXPECT_EQ(client.Perform("/0/0", "AXCancel"), 0);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Text("5"));
    client.Set("/0/0", "AXValue", Text("30"));
    EXPECT_EQ(client.Perform("/0/0", "AXConfirm"), 0);
    client.Perform("/0/0", "AXCancel");
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Text("30"));
}

TEST(Elements, SettingIsRefusedForOtherTypesAndForWhatCannotBeSet) {
    Desktop desktop(
        WindowWith({{{"AXRole", "AXTextField"}, {"AXValue", "5"}},
                    {{"AXRole", "AXStaticText"}, {"AXValue", "x"}},
                    {{"AXRole", "AXStaticText"}, {"AXHelp", "x"}, {"settable", {"AXHelp"}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0/0", "AXValue", Number(5)), -25201);
    EXPECT_EQ(client.Set("/0/1", "AXValue", Text("y")), -25205);
    EXPECT_EQ(client.Set("/0/1", "AXTitle", Text("y")), -25205);
    EXPECT_EQ(client.Set("/0/2", "AXHelp", Text("y")), 0);
    EXPECT_EQ(client.Read("/0/1", "AXValue"), Text("x"));
}

TEST(Elements, SettableQueryTellsUnsupportedFromNotSettable) {
    Desktop desktop(
        WindowWith({{{"AXRole", "AXTextField"}, {"AXValue", "5"}, {"AXIdentifier", "_NS:1"}},
                    {{"AXRole", "AXButton"}}}));
    const Client client{desktop};
    EXPECT_TRUE(client.Ask(Operation::isSettable, client.At("/0/0"), {"AXValue"})->flag);
    const auto identifier = client.Ask(Operation::isSettable, client.At("/0/0"), {"AXIdentifier"});
    EXPECT_EQ(identifier->error, 0);
    EXPECT_FALSE(identifier->flag);
    EXPECT_EQ(client.Ask(Operation::isSettable, client.At("/0/1"), {"AXIdentifier"})->error,
              -25205);
}

TEST(Elements, MainMovesBetweenWindows) {
    Desktop desktop(SceneWith({{{"AXRole", "AXWindow"}},
                               {{"AXRole", "AXWindow"}, {"AXMain", true}},
                               {{"AXRole", "AXWindow"}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/1", "AXMain"), Value{true});
    EXPECT_EQ(client.Read("/0", "AXMain"), Value{false});
    EXPECT_EQ(client.Set("/2", "AXMain", {true}), 0);
    EXPECT_EQ(client.Read("/1", "AXMain"), Value{false});
    EXPECT_EQ(client.Read("/2", "AXMain"), Value{true});
    EXPECT_EQ(client.Read("/", "AXMainWindow"), Value{client.At("/2")});
    EXPECT_EQ(client.Set("/2", "AXMain", {false}), 0);
    EXPECT_EQ(client.Read("/2", "AXMain"), Value{true}) << "a window cannot resign";
}

TEST(Elements, RaiseMovesAWindowToTheFrontOfTheList) {
    Desktop desktop(SceneWith(
        {{{"AXTitle", "a"}, {"AXRole", "AXWindow"}}, {{"AXTitle", "b"}, {"AXRole", "AXWindow"}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Perform("/1", "AXRaise"), 0);
    EXPECT_EQ(client.Read("/0", "AXTitle"), Text("b"));
    EXPECT_EQ(client.Read("/1", "AXTitle"), Text("a"));
}

json Table() {
    json row = {{"AXRole", "AXRow"}};
    json column = {{"AXRole", "AXColumn"}};
    return {
        {"AXRole", "AXTable"}, {"AXSelectedRows", {1, 3}}, {"AXChildren", {column, row, row, row}}};
}

TEST(Elements, RowsHaveIndexesAmongRows) {
    Desktop desktop(WindowWith(json::array({Table()})));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0/0", "AXIndex"), Failing(-25205)) << "a column is not a row";
    EXPECT_EQ(client.Read("/0/0/1", "AXIndex"), Number(0));
    EXPECT_EQ(client.Read("/0/0/3", "AXIndex"), Number(2));
    EXPECT_EQ(client.Read("/0/0", "AXRows"),
              References({client.At("/0/0/1"), client.At("/0/0/2"), client.At("/0/0/3")}));
}

TEST(Elements, IndexesFollowInsertionAndRemoval) {
    Desktop desktop(WindowWith(json::array({Table()})));
    const Client client{desktop};
    const ElementReference last = client.At("/0/0/3");
    client.Do({{"command", "remove"}, {"element", "/0/0/1"}});
    EXPECT_EQ(client.Read(last, "AXIndex"), Number(1));
    client.Do({{"command", "insert"},
               {"parent", "/0/0"},
               {"position", 0},
               {"element", {{"AXRole", "AXRow"}}}});
    EXPECT_EQ(client.Read(last, "AXIndex"), Number(2));
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"), References({last}))
        << "a removed row is selected no more";
}

TEST(Elements, SelectedRowsAreReadAsElementsInTheirOrder) {
    Desktop desktop(WindowWith({Table(), {{"AXRole", "AXTable"}}, {{"AXRole", "AXGroup"}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"),
              References({client.At("/0/0/1"), client.At("/0/0/3")}));
    EXPECT_EQ(client.Read("/0/0/1", "AXSelected"), Value{true});
    EXPECT_EQ(client.Read("/0/0/2", "AXSelected"), Value{false});
    EXPECT_EQ(client.Read("/0/1", "AXSelectedRows"), Value{Array{}});
    EXPECT_EQ(client.Read("/0/2", "AXSelectedRows"), Failing(-25205));
}

TEST(Elements, SelectedRowsOfACommandTakeThePlaceOfAnotherValue) {
    Desktop desktop(WindowWith(json::array({Table()})));
    const Client client{desktop};
    const auto set = [&](const json& value) {
        client.Do({{"command", "set"},
                   {"element", "/0/0"},
                   {"attribute", "AXSelectedRows"},
                   {"value", value}});
    };
    set("no rows");
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"), Value{std::string("no rows")});
    set({2});
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"), References({client.At("/0/0/2")}));
}

TEST(Elements, SelectedRowsCanBeSetToRowsOfTheTableOnly) {
    Desktop desktop(WindowWith(json::array({Table()})));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0/0", "AXSelectedRows", References({client.At("/0/0/2")})), 0);
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"), References({client.At("/0/0/2")}));
    EXPECT_EQ(client.Set("/0/0", "AXSelectedRows", References({client.At("/0")})), -25201);
    EXPECT_EQ(client.Set("/0/0", "AXSelectedRows", Number(1)), -25201);
    EXPECT_EQ(client.Set("/0/0/3", "AXSelected", {true}), 0);
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"), References({client.At("/0/0/3")}));
    EXPECT_EQ(client.Set("/0/0/3", "AXSelected", {false}), 0);
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"), Value{Array{}});
}

TEST(Elements, SliderStepsBetweenItsLimits) {
    Desktop desktop(WindowWith({{{"AXRole", "AXSlider"},
                                 {"AXValue", 9},
                                 {"AXMaxValue", 10},
                                 {"AXMinValue", 0},
                                 {"AXValueIncrement", 4}}}));
    const Client client{desktop};
    client.Perform("/0/0", "AXIncrement");
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(10));
    client.Perform("/0/0", "AXDecrement");
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(6));
}

TEST(Elements, DestroyedElementIsInvalidAndItsIdIsNeverUsedAgain) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}}}));
    const Client client{desktop};
    const ElementReference button = client.At("/0/0");
    client.Do({{"command", "remove"}, {"element", "/0/0"}});
    EXPECT_EQ(client.Read(button, "AXRole"), Failing(-25202));
    client.Do({{"command", "insert"}, {"parent", "/0"}, {"element", {{"AXRole", "AXButton"}}}});
    EXPECT_GT(client.At("/0/0").id, button.id);
    EXPECT_EQ(client.Read(button, "AXRole"), Failing(-25202));
}

TEST(Elements, ElementOfAnotherProcessIdIsInvalid) {
    Desktop desktop(WindowWith({{{"AXRole", "AXButton"}}}));
    const Client client{desktop};
    const ElementReference button = client.At("/0/0");
    EXPECT_EQ(client.Read(ElementReference{502, button.id}, "AXRole"), Failing(-25202));
    EXPECT_EQ(client.Read(ElementReference{502, 0}, "AXRole"), Failing(-25202));
}

}  // namespace

}  // namespace desktop
