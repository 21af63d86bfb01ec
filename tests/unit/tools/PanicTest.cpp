// The verb panic: what is pressed is let go, with the driver or without.
#include <ApplicationServices/ApplicationServices.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VEKCommon/OwnedReference.h"
#include "platform/Variants/Variants.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
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
    EXPECT_EQ(outcome.out, "no mouse button and no key was pressed\n");
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

// An event of another program, as it arrives at the desktop.
void Press(ScriptedDesktop& session, std::uint32_t type, std::int64_t number) {
    desktop_link::Request request;
    request.operation = desktop_link::Operation::postEvent;
    request.event.type = type;
    request.event.button = type == kCGEventKeyDown ? 0 : number;
    request.event.keyCode = type == kCGEventKeyDown ? number : 0;
    request.event.position = {30, 40};
    session->Handle(1, request);
}

void PressSome(ScriptedDesktop& session) {
    Press(session, kCGEventLeftMouseDown, 0);
    Press(session, kCGEventOtherMouseDown, 2);
    Press(session, kCGEventKeyDown, 58);
    Press(session, kCGEventKeyDown, 60);
}

TEST(Panic, TellsWhatWasPressed) {
    ScriptedDesktop session(R"({"pointer": [30, 40]})");
    PressSome(session);
    EXPECT_EQ(Carried({"panic"}).out,
              "released at 30,40: left button, center button, option, right shift\n");
    EXPECT_EQ(Carried({"panic"}).out, "no mouse button and no key was pressed\n");
}

TEST(Panic, TellsProgramsWhatWasPressed) {
    ScriptedDesktop session(R"({"pointer": [30, 40.5]})");
    PressSome(session);
    EXPECT_EQ(Carried({"panic"}, true).out,
              R"({"buttons":["left","center"],"keys":["option","right shift"],"x":30,"y":40})"
              "\n");
}

TEST(Panic, ReleasesAKeyThatNoModifierIsOnlyWhenItIsDown) {
    ScriptedDesktop session("{}");
    Press(session, kCGEventKeyDown, 11);
    EXPECT_EQ(Carried({"panic"}).out, "released at 0,0: b\n");
    EXPECT_EQ(session->Events().back().keyCode, 11);
    EXPECT_EQ(session->Events().back().type, 11U);
    EXPECT_EQ(session->Events().size(), 1 + 3 + 8 + 1U);
}

// What a keyboard or mouse holds down, a posted event need not release.
TEST(Panic, FailsWhenSomethingStaysPressed) {
    ScriptedDesktop session(R"({"pointer": [30, 40]})");
    PressSome(session);
    session.replyInstead = [&](const desktop_link::Request& request) {
        const bool isLost = request.operation == desktop_link::Operation::postEvent &&
                            (request.event.keyCode == 60 || request.event.type == 26);
        return isLost ? desktop_link::Reply{} : session->Handle(1, request);
    };
    const Outcome outcome = Carried({"panic"}, true);
    EXPECT_EQ(outcome.code, ExitCode::unmet);
    EXPECT_EQ(outcome.err,
              "krt9ctl: still pressed: center button, right shift; released: left button, "
              "option\n");
    const Json object = Json::parse(outcome.out);
    EXPECT_EQ(object["held"], Json({{"buttons", {"center"}}, {"keys", {"right shift"}}}));
    EXPECT_EQ(object["keys"], Json({"option"}));
    EXPECT_EQ(object["error"], "unmet");
}

TEST(Panic, WaitsForASystemThatHandlesEventsLater) {
    ScriptedDesktop session(R"({"pointer": [30, 40]})");
    Press(session, kCGEventKeyDown, 58);
    std::vector<desktop_link::Request> later;
    int reads = 0;
    session.replyInstead = [&](const desktop_link::Request& request) {
        if (request.operation == desktop_link::Operation::postEvent) {
            later.push_back(request);
            return std::optional(desktop_link::Reply{});
        }
        reads += request.operation == desktop_link::Operation::keyState ? 1 : 0;
        if (reads == 250) {
            for (const desktop_link::Request& event : later) {
                session->Handle(1, event);
            }
        }
        return session->Handle(1, request);
    };
    EXPECT_EQ(Carried({"panic"}).out, "released at 30,40: option\n");
}

// It is not documented whether the system counts keys of a private source, as the driver's are.
TEST(Panic, ReleasesEvenWhatTheSystemDoesNotTell) {
    const platform_testing::UnderVariant variant(platform_testing::Variant::privateModifiers);
    ScriptedDesktop session("{}");
    const OwnedReference<CGEventSourceRef> source(CGEventSourceCreate(kCGEventSourceStatePrivate));
    const OwnedReference<CGEventRef> down(CGEventCreateKeyboardEvent(source.get(), 58, true));
    CGEventPost(kCGHIDEventTap, down.get());
    EXPECT_EQ(Carried({"panic"}).out, "no mouse button and no key was pressed\n");
    EXPECT_EQ(session->Events().size(), 1 + 3 + 8U);
}

TEST(Panic, SaysThatItsEventsWouldBeDropped) {
    ScriptedDesktop session(R"({"trusted": false})");
    const Outcome outcome = Carried({"panic"});
    EXPECT_EQ(outcome.code, ExitCode::accessibility);
    EXPECT_THAT(outcome.err, HasSubstr("not trusted"));
    EXPECT_EQ(session->Count(desktop_link::Operation::postEvent), 0U);
}

TEST(Panic, SaysThatThereIsNoDesktop) {
    const test_support::SessionFixture session;
    const Outcome outcome = Carried({"panic"});
    EXPECT_EQ(outcome.code, ExitCode::accessibility);
    EXPECT_THAT(outcome.err, HasSubstr("no simulated desktop runs in the session "));
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
