// Settings and actions in their less common forms.
#include <cmath>
#include <limits>

#include "tests/unit/desktop/Client.h"

namespace desktop {

namespace {

using desktop_link::Array;
using desktop_link::Point;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(Actions, NumberKeepsTheTypeThatItHad) {
    Desktop desktop(WindowWith({{{"AXRole", "AXCheckBox"}, {"AXValue", 0.0}},
                                {{"AXRole", "AXDisclosureTriangle"}, {"AXValue", true}},
                                {{"AXRole", "AXSlider"}, {"AXValue", 1.5}},
                                {{"AXRole", "AXSlider"}, {"AXValue", true}}}));
    const Client client{desktop};
    client.Perform("/0/0", "AXPress");
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Value{1.0});
    EXPECT_EQ(client.Perform("/0/1", "AXPress"), 0);
    EXPECT_EQ(client.Read("/0/1", "AXValue"), Value{false});
    client.Perform("/0/2", "AXIncrement");
    EXPECT_EQ(client.Read("/0/2", "AXValue"), Value{2.5});
    client.Perform("/0/3", "AXDecrement");
    EXPECT_EQ(client.Read("/0/3", "AXValue"), Value{false});
}

TEST(Actions, WholeNumberStopsWhereADoubleCountsNoMore) {
    Desktop desktop(WindowWith(
        {{{"AXRole", "AXSlider"}, {"AXValue", 1}, {"AXValueIncrement", {{"double", "inf"}}}}}));
    const Client client{desktop};
    client.Perform("/0/0", "AXIncrement");
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(9007199254740992));
    client.Perform("/0/0", "AXDecrement");
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(-9007199254740992));
}

TEST(Actions, AttributesWithoutValueCountAsAbsent) {
    Desktop desktop(WindowWith(
        {{{"AXRole", "AXCheckBox"}, {"AXEnabled", nullptr}, {"AXValue", {{"error", -25204}}}},
         {{"AXRole", "AXSlider"}, {"AXValue", 5}, {"AXValueIncrement", "much"}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Perform("/0/0", "AXPress"), 0) << "whether it is enabled is unknown";
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(1));
    client.Perform("/0/1", "AXIncrement");
    EXPECT_EQ(client.Read("/0/1", "AXValue"), Number(5)) << "a text counts as the number 0";
}

TEST(Actions, OnlyWindowsOfTheListAreRaised) {
    Desktop desktop(WindowWith({{{"AXRole", "AXImage"}}, {{"AXRole", "AXWindow"}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Perform("/0/1", "AXRaise"), 0);
    EXPECT_EQ(client.Read("/0/1", "AXRole"), Text("AXWindow"));
    EXPECT_EQ(client.Read("/0/0", "AXRole"), Text("AXImage"));
}

TEST(Actions, OneThatASceneInventsSucceedsAndDoesNothing) {
    Desktop desktop(
        WindowWith({{{"AXRole", "AXCheckBox"}, {"AXValue", 1}, {"actions", {"AXShowMenu"}}}}));
    const Client client{desktop};
    const std::string before = desktop.Dump();
    EXPECT_EQ(client.Perform("/0/0", "AXShowMenu"), 0);
    EXPECT_EQ(desktop.Dump(), before);
    EXPECT_EQ(client.Perform("/0/0", "AXPress"), -25206) << "the scene's list is the whole list";
}

TEST(Actions, RadioButtonThatIsTheApplicationItselfSelectsNothing) {
    Desktop desktop(SceneWith(json::array()));
    const Client client{desktop};
    client.Do({{"command", "set"},
               {"element", "/"},
               {"attribute", "AXRole"},
               {"value", "AXRadioButton"}});
    EXPECT_EQ(client.Perform("/", "AXPress"), 0);
    EXPECT_EQ(client.Read("/", "AXValue"), Failing(-25205));
}

TEST(Settings, NumbersOfAnyTypeReplaceEachOther) {
    Desktop desktop(WindowWith({{{"AXRole", "AXSlider"}, {"AXValue", 1}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0/0", "AXValue", {2.5}), 0);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Value{2.5});
    EXPECT_EQ(client.Set("/0/0", "AXValue", {true}), 0);
    EXPECT_EQ(client.Set("/0/0", "AXValue", Number(3)), 0);
    EXPECT_EQ(client.Set("/0/0", "AXValue", {Point{1, 2}}), -25201);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(3));
}

TEST(Settings, WhatHasNoValueTakesOneOfAnyType) {
    Desktop desktop(WindowWith({{{"AXRole", "AXTextField"}, {"AXValue", nullptr}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0/0", "AXValue", Text("new")), 0);
    EXPECT_EQ(client.Perform("/0/0", "AXCancel"), 0);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Text("new")) << "there is no text to go back to";
}

TEST(Settings, TextThatIsSetTwiceIsTakenBackToTheFirst) {
    Desktop desktop(WindowWith({{{"AXRole", "AXTextField"}, {"AXValue", "a"}}}));
    const Client client{desktop};
    client.Set("/0/0", "AXValue", Text("b"));
    client.Set("/0/0", "AXValue", Text("c"));
    client.Perform("/0/0", "AXCancel");
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Text("a"));
}

TEST(Settings, SetRadioButtonIsPressedAndOneSetToZeroIsNot) {
    const json group = {{{"AXRole", "AXRadioButton"}, {"AXValue", 1}},
                        {{"AXRole", "AXRadioButton"}, {"AXValue", 0}}};
    Desktop desktop(WindowWith(group));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0/1", "AXValue", Number(7)), 0);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
    EXPECT_EQ(client.Read("/0/1", "AXValue"), Number(1)) << "a press, whatever the number";
    EXPECT_EQ(client.Set("/0/1", "AXValue", Number(0)), 0);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0)) << "nobody takes its place";
    EXPECT_EQ(client.Read("/0/1", "AXValue"), Number(0));
}

TEST(Settings, RowsGivenTwiceAreSelectedOnce) {
    Desktop desktop(WindowWith(
        {{{"AXRole", "AXTable"}, {"AXChildren", {{{"AXRole", "AXRow"}}, {{"AXRole", "AXRow"}}}}}}));
    const Client client{desktop};
    const Value row = {client.At("/0/0/1")};
    EXPECT_EQ(client.Set("/0/0", "AXSelectedRows", {Array{row, row}}), 0);
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"), (Value{Array{row}}));
    EXPECT_EQ(client.Set("/0/0", "AXSelectedRows", {Array{Text("row")}}), -25201);
    EXPECT_EQ(client.Set("/0/0", "AXSelectedRows", {Array{Value{ElementReference{501, 999}}}}),
              -25201);
    EXPECT_EQ(client.Set("/0/0/0", "AXSelected", {false}), 0) << "it is not selected";
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"), (Value{Array{row}}));
}

TEST(Settings, AnswersThatASceneStoresAreReplacedAsTheyAre) {
    Desktop desktop(SceneWith({{{"AXRole", "AXWindow"},
                                {"AXMain", "maybe"},
                                {"AXChildren",
                                 {{{"AXRole", "AXTable"}, {"AXSelectedRows", {{"error", -25204}}}},
                                  {{"AXRole", "AXRow"}, {"AXSelected", "maybe"}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0", "AXMain", Text("no")), 0);
    EXPECT_EQ(client.Read("/0", "AXMain"), Text("no"));
    EXPECT_EQ(client.Set("/0/0", "AXSelectedRows", Text("none")), 0);
    EXPECT_EQ(client.Read("/0/0", "AXSelectedRows"), Text("none"));
    EXPECT_EQ(client.Set("/0/1", "AXSelected", Text("no")), 0);
    EXPECT_EQ(client.Read("/0/1", "AXSelected"), Text("no"));
}

TEST(Settings, ControlsTakeTheFocusAndOnlyRowsTheSelection) {
    Desktop desktop(
        WindowWith({{{"AXRole", "AXButton"}, {"AXFocused", false}, {"AXSelected", false}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0/0", "AXFocused", {true}), 0);
    EXPECT_EQ(client.Read("/0/0", "AXFocused"), Value{true});
    EXPECT_EQ(client.Set("/0/0", "AXSelected", {true}), -25205);
}

TEST(Settings, ApplicationDoesNotLeaveTheFrontByBeingTold) {
    Desktop desktop(SceneWith(json::array()));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/", "AXFrontmost", {false}), 0);
    EXPECT_EQ(client.Read("/", "AXFrontmost"), Value{true});
    EXPECT_EQ(client.Set("/", "AXTitle", Text("other")), -25205);
}

TEST(Settings, DelayedOneThatIsImpossibleByThenIsForgotten) {
    json field = {{"AXRole", "AXTextField"}, {"AXValue", "a"}};
    field["misbehaviour"] = {{"set", {{"AXValue", {{"delay", 1}}}}}};
    Desktop desktop(WindowWith(json::array({field})));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0/0", "AXValue", Text("b")), 0);
    client.Do({{"command", "set"}, {"element", "/0/0"}, {"attribute", "AXValue"}, {"value", 5}});
    desktop.Advance(2);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(5));
}

TEST(Settings, QueryPassesOtherErrorsOnAndToleratesNoValue) {
    Desktop desktop(WindowWith({{{"AXRole", "AXTextField"}, {"AXValue", {{"error", -25204}}}},
                                {{"AXRole", "AXTextField"}, {"AXValue", nullptr}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Ask(Operation::isSettable, client.At("/0/0"), {"AXValue"})->error, -25204);
    const auto reply = client.Ask(Operation::isSettable, client.At("/0/1"), {"AXValue"});
    EXPECT_EQ(reply->error, 0);
    EXPECT_TRUE(reply->flag);
}

TEST(Settings, QueryOfAnElementThatGoesWhileItIsReadIsInvalid) {
    json field = {{"AXRole", "AXTextField"}, {"AXValue", "a"}};
    field["misbehaviour"] = {
        {"read", {{"AXValue", {{"then", {{{"command", "remove"}, {"element", "/0/0"}}}}}}}}};
    Desktop desktop(WindowWith(json::array({field})));
    const Client client{desktop};
    EXPECT_EQ(client.Ask(Operation::isSettable, client.At("/0/0"), {"AXValue"})->error, -25202);

    const json quit = {{"command", "quit"}, {"application", "com.example.editor"}};
    json application = SceneWith({{{"AXRole", "AXWindow"}}});
    application["applications"][0]["misbehaviour"] = {
        {"read", {{"AXRole", {{"then", json::array({quit})}}}}}};
    Desktop other(application);
    EXPECT_EQ(Client{other}.Ask(Operation::isSettable, {501, 0}, {"AXRole"})->error, -25202);
}

TEST(Requests, OfAnUnknownKindAreIllegalArguments) {
    Desktop desktop(WindowWith(json::array()));
    EXPECT_EQ(Client{desktop}.Ask(static_cast<Operation>(99), {501, 0}, {"AXRole"})->error, -25201);
}

TEST(Requests, RuleForEveryAttributeIsNoAnswerToACallForSeveral) {
    json button = {{"AXRole", "AXButton"}, {"AXTitle", "a"}};
    button["misbehaviour"] = {{"read", {{"*", {{"error", -25204}, {"after", 1}}}}}};
    json counted = button;
    counted["misbehaviour"] = {{"read",
                                {{"multiple",
                                  {{"then",
                                    {{{"command", "set"},
                                      {"element", "/0/0"},
                                      {"attribute", "AXHelp"},
                                      {"value", 1}}}}}}}}};
    Desktop desktop(WindowWith({button, counted}));
    const Client client{desktop};
    const std::vector<std::string> names = {"AXRole", "AXTitle"};
    EXPECT_THAT(client.Ask(Operation::copyAttributes, client.At("/0/0"), names)->values,
                ElementsAre(Text("AXButton"), Failing(-25204)))
        << "the call itself is not an occasion";
    EXPECT_THAT(client.Ask(Operation::copyAttributes, client.At("/0/1"), names)->values,
                ElementsAre(Text("AXButton"), Text("a")));
}

TEST(Pointer, WithoutScreensComesAlone) {
    Desktop desktop(R"({"screens": [], "pointer": [3, 4]})");
    EXPECT_THAT(Client{desktop}.Ask(Operation::pointerLocation)->values,
                ElementsAre(Value{Point{3, 4}}));
}

}  // namespace

}  // namespace desktop
