// The verb panic: what is pressed is let go, with the driver or without.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/ScriptedDesktop.h"
#include "tests/support/Stage.h"
#include "tests/unit/tools/Carried.h"

namespace krt9ctl {
namespace {

using test_support::ScriptedDesktop;
using testing::HasSubstr;

TEST(Panic, PostsTheReleaseOfEachButtonAndThenOfEachModifierKey) {
    ScriptedDesktop session(R"({"pointer": [30, 40.5]})");
    const Outcome outcome = Carried({"panic"});
    EXPECT_EQ(outcome.code, ExitCode::ok);
    EXPECT_EQ(outcome.out, "mouse buttons released at 30,40.5, and the modifier keys\n");
    std::vector<std::int64_t> buttons, keys;
    for (const desktop_link::Event& event : session->Events()) {
        EXPECT_EQ(event.flags, 0U);
        EXPECT_TRUE(event.flagsWereSet) << "or those held would be added";
        if (event.type == 11) {
            keys.push_back(event.keyCode);
            continue;
        }
        EXPECT_TRUE(keys.empty()) << "a drop with a modifier key means something else";
        EXPECT_TRUE(event.type == 2 || event.type == 4 || event.type == 26) << event.type;
        EXPECT_EQ(event.position, (desktop_link::Point{30, 40.5}));
        buttons.push_back(event.button);
    }
    EXPECT_THAT(buttons, testing::ElementsAre(0, 1, 2));
    EXPECT_THAT(keys, testing::ElementsAre(55, 56, 58, 59, 54, 60, 61, 62));
}

TEST(Panic, TellsProgramsWhatItReleased) {
    const ScriptedDesktop session(R"({"pointer": [30, 40]})");
    const Json object = Json::parse(Carried({"panic"}, true).out);
    EXPECT_EQ(object["buttons"], Json({"left", "right", "center"}));
    EXPECT_EQ(object["keys"][0], "command");
    EXPECT_EQ(object["x"], 30);
    EXPECT_EQ(object["y"], 40);
}

TEST(Panic, SaysThatItsEventsWouldBeDropped) {
    ScriptedDesktop session(R"({"trusted": false})");
    const Outcome outcome = Carried({"panic"});
    EXPECT_EQ(outcome.code, ExitCode::accessibility);
    EXPECT_THAT(outcome.err, HasSubstr("not trusted"));
    EXPECT_EQ(session->Count(desktop_link::Operation::postEvent), 0U);
}

TEST(Panic, EndsAGestureThatADriverBeganAndNobodyEnded) {
    test_support::Stage stage;
    stage.StartDesktop("{}");
    stage.StartDriver();
    stage.Control({"mouse", "start", "100,200", "--option", "--command"});
    const auto held = [&] {
        return Json::parse(
            stage.Control({"desktop", "state", "--json"}).standardOutput)["modifiers"];
    };
    EXPECT_EQ(held(), Json({"command", "option"}));
    stage.Kill(test_support::Role::driver);
    EXPECT_EQ(stage.Control({"panic"}).status, 0);
    EXPECT_EQ(held(), Json::array());
}

}  // namespace
}  // namespace krt9ctl
