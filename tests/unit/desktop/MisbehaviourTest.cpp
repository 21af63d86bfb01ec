// Every way in which elements and applications can deviate.
#include "tests/unit/desktop/Client.h"

namespace desktop {

namespace {

using desktop_link::Array;
using testing::ElementsAre;
using testing::HasSubstr;

// A check box (/0/0) and a button (/0/1); the check box has this misbehaviour.
json SceneWithMisbehaviour(json misbehaviour) {
    return WindowWith({{{"AXRole", "AXCheckBox"},
                        {"AXValue", 0},
                        {"AXIdentifier", "_NS:1"},
                        {"misbehaviour", std::move(misbehaviour)}},
                       {{"AXRole", "AXButton"}, {"AXTitle", "Play"}}});
}

TEST(Misbehaviour, ReadFailsWithAnyCode) {
    for (const int code : {-25200, -25201, -25202, -25204, -25205, -25211, -25212, 7, 1 << 30}) {
        Desktop desktop(SceneWithMisbehaviour({{"read", {{"AXValue", {{"error", code}}}}}}));
        const Client client{desktop};
        EXPECT_EQ(client.Read("/0/0", "AXValue"), Failing(code));
        EXPECT_EQ(client.Read("/0/0", "AXRole"), Text("AXCheckBox")) << "another attribute";
        EXPECT_EQ(client.Read("/0/1", "AXTitle"), Text("Play")) << "another element";
    }
}

TEST(Misbehaviour, ReadAnswersAValueOfAnotherType) {
    Desktop desktop(SceneWithMisbehaviour(
        {{"read", {{"AXRole", {{"answer", 5}}}, {"AXValue", {{"answer", {{"point", {1, 2}}}}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXRole"), Number(5));
    EXPECT_EQ(client.Read("/0/0", "AXValue"), (Value{desktop_link::Point{1, 2}}));
}

TEST(Misbehaviour, ReadAnswersNullEmptyOrNothing) {
    Desktop desktop(SceneWithMisbehaviour({{"read",
                                            {{"AXRole", {{"answer", {{"null", true}}}}},
                                             {"AXTitle", {{"answer", ""}}},
                                             {"AXChildren", {{"answer", json::array()}}},
                                             {"AXValue", {{"answer", {{"nothing", true}}}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXRole"), Value{std::monostate{}});
    EXPECT_EQ(client.Read("/0/0", "AXTitle"), Text(""));
    EXPECT_EQ(client.Read("/0/0", "AXChildren"), Value{Array{}});
    const auto reply = client.Ask(Operation::copyAttribute, client.At("/0/0"), {"AXValue"});
    EXPECT_EQ(reply->error, 0);
    EXPECT_TRUE(reply->values.empty());
}

TEST(Misbehaviour, AfterAndTimesChooseTheOccasions) {
    Desktop desktop(SceneWithMisbehaviour(
        {{"read", {{"AXValue", {{"error", -25204}, {"after", 1}, {"times", 2}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Failing(-25204));
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Failing(-25204));
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
}

TEST(Misbehaviour, WildcardIsForEveryAttribute) {
    Desktop desktop(SceneWithMisbehaviour({{"read", {{"*", {{"error", -25204}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Failing(-25204));
    EXPECT_EQ(client.Read("/0/0", "AXParent"), Failing(-25204));
}

TEST(Misbehaviour, OfAnApplicationIsForAllItsElements) {
    json scene = SceneWithMisbehaviour({{"read", {{"AXRole", {{"answer", "AXOwn"}}}}}});
    scene["applications"][0]["misbehaviour"] = {{"read", {{"AXRole", {{"error", -25204}}}}}};
    Desktop desktop(scene);
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXRole"), Text("AXOwn")) << "its own rule goes first";
    EXPECT_EQ(client.Read("/0/1", "AXRole"), Failing(-25204));
    EXPECT_EQ(client.Read("/", "AXRole"), Failing(-25204));
}

TEST(Misbehaviour, CallForSeveralAttributesCanFailAsAWhole) {
    Desktop desktop(SceneWithMisbehaviour({{"read", {{"multiple", {{"error", -25204}}}}}}));
    const Client client{desktop};
    const auto reply = client.Ask(Operation::copyAttributes, client.At("/0/0"), {"AXRole"});
    EXPECT_EQ(reply->error, -25204);
    EXPECT_TRUE(reply->values.empty());
    EXPECT_EQ(client.Read("/0/0", "AXRole"), Text("AXCheckBox"));
}

TEST(Misbehaviour, WildcardIsForEachOfSeveralAttributesAndNotForTheCall) {
    Desktop once(SceneWithMisbehaviour({{"read", {{"*", {{"error", -25204}, {"times", 1}}}}}}));
    const Client asked{once};
    EXPECT_EQ(asked.Ask(Operation::copyAttributes, asked.At("/0/0"), {"AXRole"})->values,
              (std::vector<Value>{Failing(-25204)}));

    Desktop both(SceneWithMisbehaviour(
        {{"read", {{"*", {{"error", -25204}}}, {"multiple", {{"error", -25202}}}}}}));
    const Client client{both};
    EXPECT_EQ(client.Ask(Operation::copyAttributes, client.At("/0/0"), {"AXRole"})->error, -25202);
    EXPECT_EQ(client.Read("/0/0", "AXRole"), Failing(-25204));
}

TEST(Misbehaviour, CallForSeveralAttributesCanAnswerTooFew) {
    Desktop desktop(
        SceneWithMisbehaviour({{"read", {{"multiple", {{"answer", {{"array", {"AXButton"}}}}}}}}}));
    const Client client{desktop};
    const auto reply =
        client.Ask(Operation::copyAttributes, client.At("/0/0"), {"AXRole", "AXChildren"});
    EXPECT_EQ(reply->error, 0);
    EXPECT_THAT(reply->values, ElementsAre(Text("AXButton")));
}

TEST(Misbehaviour, PressCanBeRefused) {
    Desktop desktop(SceneWithMisbehaviour({{"action", {{"AXPress", {{"error", -25204}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Perform("/0/0", "AXPress"), -25204);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
    EXPECT_EQ(client.Log().at(0)["error"], -25204);
    EXPECT_EQ(client.Log().at(0)["works"], false);
}

TEST(Misbehaviour, PressCanAnswerAnErrorAlthoughItWorked) {
    Desktop desktop(
        SceneWithMisbehaviour({{"action", {{"AXPress", {{"error", -25204}, {"works", true}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Perform("/0/0", "AXPress"), -25204);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(1));
}

TEST(Misbehaviour, PressCanSucceedWithoutEffect) {
    Desktop desktop(SceneWithMisbehaviour({{"action", {{"AXPress", {{"works", false}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Perform("/0/0", "AXPress"), 0);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
}

TEST(Misbehaviour, EffectOfAPressCanComeLater) {
    Desktop desktop(SceneWithMisbehaviour({{"action", {{"AXPress", {{"delay", 0.5}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Perform("/0/0", "AXPress"), 0);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
    EXPECT_EQ(desktop.NextDue(), 0.5);
    desktop.Advance(0.4);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
    desktop.Advance(0.2);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(1));
    EXPECT_FALSE(desktop.NextDue());
}

TEST(Misbehaviour, DelayedPressOfAnElementThatWentIsForgotten) {
    Desktop desktop(SceneWithMisbehaviour(
        {{"action", {{"AXPress", {{"delay", 0.5}}}}}, {"set", {{"AXValue", {{"delay", 0.5}}}}}}));
    const Client client{desktop};
    client.Perform("/0/0", "AXPress");
    client.Set("/0/0", "AXValue", Number(1));
    client.Do({{"command", "remove"}, {"element", "/0/0"}});
    desktop.Advance(1);
    EXPECT_EQ(client.Read("/0/0", "AXRole"), Text("AXButton"));
}

TEST(Misbehaviour, SetCanBeRefusedDelayedOrWorkInSpiteOfItsError) {
    Desktop desktop(SceneWithMisbehaviour({{"set", {{"AXValue", {{"error", -25201}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0/0", "AXValue", Number(1)), -25201);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
    client.Do({{"command", "misbehave"},
               {"element", "/0/0"},
               {"misbehaviour", {{"set", {{"AXValue", {{"error", -25204}, {"works", true}}}}}}}});
    EXPECT_EQ(client.Set("/0/0", "AXValue", Number(1)), -25204);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(1));
    client.Do({{"command", "misbehave"},
               {"element", "/0/0"},
               {"misbehaviour", {{"set", {{"*", {{"delay", 1}}}}}}}});
    EXPECT_EQ(client.Set("/0/0", "AXValue", Number(0)), 0);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(1));
    desktop.Advance(1);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
}

TEST(Misbehaviour, WorkingErrorDoesNotMakeAnImpossibleSettingPossible) {
    Desktop desktop(SceneWithMisbehaviour({{"set", {{"*", {{"works", true}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Set("/0/0", "AXRole", Text("AXButton")), 0);
    EXPECT_EQ(client.Read("/0/0", "AXRole"), Text("AXCheckBox"));
}

TEST(Misbehaviour, CanBeTakenBack) {
    Desktop desktop(SceneWithMisbehaviour({{"read", {{"*", {{"error", -25204}}}}}}));
    const Client client{desktop};
    client.Do({{"command", "misbehave"}, {"element", "/0/0"}, {"misbehaviour", nullptr}});
    EXPECT_EQ(client.Read("/0/0", "AXRole"), Text("AXCheckBox"));
}

TEST(Misbehaviour, TreeChangesInTheMiddleOfAWalk) {
    Desktop desktop(SceneWithMisbehaviour({{"read",
                                            {{"AXIdentifier",
                                              {{"times", 1},
                                               {"then",
                                                {{{"command", "remove"}, {"element", "/0/1"}},
                                                 {{"command", "insert"},
                                                  {"parent", "/0"},
                                                  {"element", {{"AXRole", "AXRow"}}}}}}}}}}}));
    const Client client{desktop};
    const ElementReference button = client.At("/0/1");
    EXPECT_EQ(client.Read("/0/0", "AXIdentifier"), Text("_NS:1")) << "the answer is the old one";
    EXPECT_EQ(client.Read(button, "AXRole"), Failing(-25202));
    EXPECT_EQ(client.Read("/0/1", "AXRole"), Text("AXRow"));
}

TEST(Misbehaviour, FailingPlannedCommandIsReportedInTheLog) {
    Desktop desktop(SceneWithMisbehaviour(
        {{"read", {{"AXValue", {{"then", {{{"command", "remove"}, {"element", "/7"}}}}}}}}}));
    const Client client{desktop};
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
    EXPECT_THAT(client.Log(), ElementsAre(json({{"problem", "element: no element \"/7\""}})));
}

TEST(Misbehaviour, ElementThatRemovesItselfWhileItIsReadIsInvalid) {
    Desktop desktop(SceneWithMisbehaviour(
        {{"read", {{"AXRole", {{"then", {{{"command", "remove"}, {"element", "_NS:1"}}}}}}}}}));
    const Client client{desktop};
    const ElementReference box = client.At("/0/0");
    const auto reply =
        client.Ask(Operation::copyAttributes, box, {"AXRole", "AXChildren", "AXIdentifier"});
    EXPECT_EQ(reply->error, -25202);
    EXPECT_EQ(client.Read(box, "AXRole"), Failing(-25202));
}

TEST(Misbehaviour, ChildCanBeItsOwnAncestor) {
    Desktop desktop(
        WindowWith({{{"AXRole", "AXGroup"}, {"AXChildren", {{"array", {{{"element", "/0"}}}}}}}}));
    const Client client{desktop};
    const Value children = client.Read("/0/0", "AXChildren");
    EXPECT_EQ(children, (Value{Array{{client.At("/0")}}}));
    EXPECT_EQ(client.Read("/0", "AXChildren"), (Value{Array{{client.At("/0/0")}}}));
}

TEST(Hook, RunsInsideEveryAttributeReadBeforeTheValueIsTaken) {
    Desktop desktop(SceneWithMisbehaviour(json::object()));
    const Client client{desktop};
    std::vector<std::string> read;
    desktop.onRead = [&](const ElementReference& element, const std::string& attribute) {
        read.push_back(attribute);
        EXPECT_EQ(element, client.At("/0/1"));
        client.Do(
            {{"command", "set"}, {"element", "/0/1"}, {"attribute", "AXTitle"}, {"value", "Stop"}});
    };
    EXPECT_EQ(client.Read("/0/1", "AXTitle"), Text("Stop"));
    client.Ask(Operation::copyAttributes, client.At("/0/1"), {"AXRole", "AXTitle"});
    EXPECT_THAT(read, ElementsAre("AXTitle", "AXRole", "AXTitle"));
    EXPECT_EQ(desktop.AttributesRead(), 3u);
}

TEST(Hook, CanKillTheApplicationThatIsBeingRead) {
    Desktop desktop(SceneWithMisbehaviour(json::object()));
    const Client client{desktop};
    const ElementReference box = client.At("/0/0");
    desktop.onRead = [&](const ElementReference&, const std::string& attribute) {
        if (attribute == "AXChildren") {
            client.Do({{"command", "kill"}, {"application", "com.example.editor"}});
        }
    };
    const auto reply = client.Ask(Operation::copyAttributes, box, {"AXRole", "AXChildren", "AXX"});
    EXPECT_EQ(reply->error, -25202);
    desktop.onRead = nullptr;
    EXPECT_EQ(client.Read(box, "AXRole"), Failing(-25202));
    EXPECT_EQ(client.Read(ElementReference{501, 0}, "AXWindows"), Failing(-25202));
}

TEST(Hook, CanQuitTheApplicationOrLetItHangOrSwitchTheFront) {
    Desktop desktop(SceneWithMisbehaviour(json::object()));
    const Client client{desktop};
    const ElementReference box = client.At("/0/0");
    desktop.onRead = [&](const ElementReference&, const std::string&) {
        client.Run({{"command", "activate"}, {"application", nullptr}});
    };
    EXPECT_EQ(client.Read(box, "AXRole"), Text("AXCheckBox"));
    EXPECT_EQ(client.Do({{"command", "state"}})["front"], nullptr);
    desktop.onRead = [&](const ElementReference&, const std::string&) {
        client.Run({{"command", "hang"}, {"application", "com.example.editor"}});
    };
    EXPECT_FALSE(client.Ask(Operation::copyAttribute, box, {"AXRole"}));
    client.Do({{"command", "unhang"}, {"application", "com.example.editor"}});
    desktop.onRead = [&](const ElementReference&, const std::string&) {
        client.Run({{"command", "quit"}, {"application", "com.example.editor"}});
    };
    EXPECT_EQ(client.Read(box, "AXRole"), Failing(-25202));
    EXPECT_EQ(client.Ask(Operation::isSettable, box, {"AXRole"})->error, -25202);
}

TEST(Applications, HungOneDoesNotAnswerUntilItIsReleased) {
    Desktop desktop(SceneWithMisbehaviour(json::object()));
    const Client client{desktop};
    const ElementReference box = client.At("/0/0");
    client.Do({{"command", "hang"}, {"application", "com.example.editor"}});
    EXPECT_FALSE(client.Ask(Operation::copyAttribute, box, {"AXRole"}));
    EXPECT_FALSE(client.Ask(Operation::performAction, box, {"AXPress"}));
    EXPECT_FALSE(client.Ask(Operation::copyAttribute, {501, 0}, {"AXWindows"}));
    EXPECT_TRUE(client.Ask(Operation::pointerLocation)) << "others answer";
    EXPECT_EQ(desktop.Count(Operation::copyAttribute), 0u) << "only answers count";
    client.Do({{"command", "unhang"}, {"application", "com.example.editor"}});
    EXPECT_EQ(client.Read(box, "AXValue"), Number(0)) << "the press had no effect";
    EXPECT_EQ(desktop.Count(Operation::copyAttribute), 1u);
}

TEST(Applications, HungOneCanBeReleasedByTime) {
    Desktop desktop(SceneWithMisbehaviour(json::object()));
    const Client client{desktop};
    client.Do({{"command", "hang"}, {"application", "com.example.editor"}, {"for", 2}});
    desktop.Advance(1.9);
    EXPECT_FALSE(client.Ask(Operation::copyAttribute, {501, 0}, {"AXWindows"}));
    desktop.Advance(0.2);
    EXPECT_TRUE(client.Ask(Operation::copyAttribute, {501, 0}, {"AXWindows"}));
}

TEST(Applications, DeadOneHasInvalidElements) {
    Desktop desktop(SceneWithMisbehaviour(json::object()));
    const Client client{desktop};
    const ElementReference box = client.At("/0/0");
    client.Do({{"command", "kill"}, {"application", "com.example.editor"}});
    for (const Operation operation :
         {Operation::copyAttribute, Operation::copyAttributes, Operation::isSettable,
          Operation::setAttribute, Operation::performAction, Operation::attributeNames,
          Operation::actionNames}) {
        EXPECT_EQ(client.Ask(operation, box, {"AXValue"})->error, -25202);
        EXPECT_EQ(client.Ask(operation, {501, 0}, {"AXValue"})->error, -25202);
    }
    EXPECT_THAT(client.ProblemOf({{"command", "kill"}, {"application", "com.example.editor"}}),
                HasSubstr("already dead"));
}

TEST(Applications, UntrustedProcessGetsNoAccessibilityAtAll) {
    json scene = SceneWithMisbehaviour(json::object());
    scene["trusted"] = false;
    Desktop desktop(scene);
    const Client client{desktop};
    EXPECT_FALSE(client.Ask(Operation::isTrusted)->flag);
    for (const Operation operation :
         {Operation::copyAttribute, Operation::copyAttributes, Operation::isSettable,
          Operation::setAttribute, Operation::performAction, Operation::attributeNames,
          Operation::actionNames}) {
        EXPECT_EQ(client.Ask(operation, client.At("/0/0"), {"AXValue"})->error, -25211);
    }
    client.Do({{"command", "trust"}, {"trusted", true}});
    EXPECT_TRUE(client.Ask(Operation::isTrusted)->flag);
    EXPECT_EQ(client.Read("/0/0", "AXValue"), Number(0));
}

TEST(Applications, PromptForTrustIsInTheLog) {
    Desktop desktop(R"({"trusted": false})");
    const Client client{desktop};
    client.Ask(Operation::isTrusted);
    client.Ask(Operation::isTrusted, {}, {}, {}, true);
    EXPECT_THAT(client.Log(), ElementsAre(json({{"trustPrompt", true}})));
}

TEST(Requests, AttributeRequestWithoutOneNameIsAnIllegalArgument) {
    Desktop desktop(SceneWithMisbehaviour(json::object()));
    const Client client{desktop};
    for (const Operation operation : {Operation::copyAttribute, Operation::isSettable,
                                      Operation::setAttribute, Operation::performAction}) {
        EXPECT_EQ(client.Ask(operation, client.At("/0/0"), {})->error, -25201);
        EXPECT_EQ(client.Ask(operation, client.At("/0/0"), {"AXRole", "AXRole"})->error, -25201);
    }
    EXPECT_TRUE(client.Ask(Operation::copyAttributes, client.At("/0/0"), {})->values.empty());
}

}  // namespace

}  // namespace desktop
