// Posted events, the modifier keys they hold down, and the pointer.
#include "tests/unit/desktop/Client.h"

namespace desktop {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kCommand = 0x00100000;
constexpr std::uint64_t kShift = 0x00020000;

Event Key(std::int64_t keyCode, bool down, std::uint64_t flags, bool flagsWereSet = true) {
    Event event;
    event.type = down ? 10 : 11;
    event.keyCode = keyCode;
    event.flags = flags;
    event.flagsWereSet = flagsWereSet;
    event.hasSource = true;
    event.sourceState = -1;
    return event;
}

Event Mouse(std::uint32_t type, double x, double y) {
    Event event;
    event.type = type;
    event.position = {x, y};
    return event;
}

const char* const kEmptyScene = R"({"pointer": [100, 200]})";

TEST(EventTap, LogsKeyEventsExactly) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    client.Post(Key(55, true, kCommand));
    EXPECT_THAT(client.Log(), ElementsAre(json({{"event", "keyDown"},
                                                {"type", 10},
                                                {"keyCode", 55},
                                                {"flags", kCommand},
                                                {"flagsSet", true},
                                                {"source", -1},
                                                {"tap", 0}})));
    EXPECT_THAT(desktop.Events(), ElementsAre(Key(55, true, kCommand)));
}

TEST(EventTap, LogsMouseEventsExactly) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    Event event = Mouse(25, 10.5, -3);
    event.button = 2;
    event.tap = 1;
    client.Post(event);
    EXPECT_THAT(client.Log(), ElementsAre(json({{"event", "otherMouseDown"},
                                                {"type", 25},
                                                {"position", {10.5, -3}},
                                                {"button", 2},
                                                {"flags", 0},
                                                {"flagsSet", false},
                                                {"source", nullptr},
                                                {"tap", 1}})));
}

TEST(EventTap, LogsScrollEventsExactly) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    Event event;
    event.type = 22;
    event.wheels = {0, -7};
    client.Post(event);
    EXPECT_THAT(client.Log(), ElementsAre(json({{"event", "scrollWheel"},
                                                {"type", 22},
                                                {"unit", 0},
                                                {"wheels", {0, -7}},
                                                {"flags", 0},
                                                {"flagsSet", false},
                                                {"source", nullptr},
                                                {"tap", 0}})));
}

TEST(EventTap, EntriesAreNumberedInTheirOrder) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    client.Post(Key(1, true, 0));
    client.Post(Key(1, false, 0));
    const auto lines = desktop.Log().LinesSince(0);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_THAT(lines[0], testing::StartsWith(R"({"n":1,"event":"keyDown",)"));
    EXPECT_THAT(lines[1], testing::StartsWith(R"({"n":2,"event":"keyUp",)"));
    EXPECT_THAT(desktop.Log().LinesSince(1), ElementsAre(lines[1]));
}

TEST(EventTap, EventWithoutFlagsInheritsTheModifiersHeldDown) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    client.Post(Key(55, true, kCommand));
    client.Post(Key(56, true, kShift));
    client.Post(Mouse(5, 1, 1));
    EXPECT_EQ(desktop.Events().back().flags, kCommand | kShift);
    client.Post(Key(55, false, 0));
    client.Post(Mouse(1, 1, 1));
    EXPECT_EQ(desktop.Events().back().flags, kShift);
    client.Post(Key(56, false, 0));
    client.Post(Mouse(2, 1, 1));
    EXPECT_EQ(desktop.Events().back().flags, 0u);
}

TEST(EventTap, FlagsThatWereSetStayAsTheyAre) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    client.Post(Key(55, true, kCommand));
    Event dragged = Mouse(6, 1, 1);
    dragged.flagsWereSet = true;
    client.Post(dragged);
    EXPECT_EQ(desktop.Events().back().flags, 0u);
}

TEST(EventTap, EachOfTheFourModifierKeysIsHeldAndReleased) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    for (const std::int64_t key : {55, 56, 58, 59}) {
        client.Post(Key(key, true, 0));
    }
    EXPECT_EQ(client.Do({{"command", "state"}})["modifiers"],
              json({"command", "shift", "option", "control"}));
    for (const std::int64_t key : {55, 56, 58, 59}) {
        client.Post(Key(key, false, 0));
    }
    EXPECT_EQ(client.Do({{"command", "state"}})["modifiers"], json::array());
}

TEST(EventTap, CapsLockAndOrdinaryKeysHoldNothing) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    client.Post(Key(57, true, 0));
    client.Post(Key(0, true, 0));
    client.Post(Mouse(5, 1, 1));
    EXPECT_EQ(desktop.Events().back().flags, 0u);
}

TEST(EventTap, FlagsChangedEventHoldsTheKeyWhoseFlagItCarries) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    Event event = Key(55, true, kCommand);
    event.type = 12;
    client.Post(event);
    EXPECT_EQ(client.Do({{"command", "state"}})["modifiers"], json({"command"}));
    event.flags = 0;
    client.Post(event);
    EXPECT_EQ(client.Do({{"command", "state"}})["modifiers"], json::array());
}

bool IsDown(const Client& client, Operation operation, std::int64_t number) {
    Request request;
    request.operation = operation;
    request.number = number;
    return client.desktop.Handle(1, request)->flag;
}

TEST(EventTap, KeyIsDownFromItsKeyDownToItsKeyUp) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    for (const std::int64_t key : {0, 11, 55, 60, 127}) {
        client.Post(Key(key, true, 0));
        EXPECT_TRUE(IsDown(client, Operation::keyState, key)) << key;
        EXPECT_FALSE(IsDown(client, Operation::keyState, key == 0 ? 1 : key - 1)) << key;
        client.Post(Key(key, false, 0));
        EXPECT_FALSE(IsDown(client, Operation::keyState, key)) << key;
    }
}

TEST(EventTap, ButtonIsDownFromItsPressToItsRelease) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    constexpr struct {
        std::uint32_t down, up;
        std::int64_t button;
    } kButtons[] = {{1, 2, 0}, {3, 4, 1}, {25, 26, 2}, {25, 26, 31}};
    for (const auto& [down, up, button] : kButtons) {
        Event event = Mouse(down, 1, 1);
        event.button = button;
        client.Post(event);
        event.type = 6;
        client.Post(event);
        EXPECT_TRUE(IsDown(client, Operation::buttonState, button)) << button;
        EXPECT_FALSE(IsDown(client, Operation::buttonState, button + 1)) << button;
        event.type = up;
        client.Post(event);
        EXPECT_FALSE(IsDown(client, Operation::buttonState, button)) << button;
    }
}

TEST(EventTap, KeysAndButtonsOfOtherNumbersAreNeverDown) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    for (const std::int64_t number :
         {std::int64_t{-1}, std::int64_t{128}, std::numeric_limits<std::int64_t>::max()}) {
        client.Post(Key(number, true, 0));
        Event event = Mouse(25, 1, 1);
        event.button = number;
        client.Post(event);
        EXPECT_FALSE(IsDown(client, Operation::keyState, number)) << number;
        EXPECT_FALSE(IsDown(client, Operation::buttonState, number)) << number;
    }
}

Value Pointer(const Client& client) {
    return client.Ask(Operation::pointerLocation)->values.at(0);
}

TEST(EventTap, MouseEventsMoveThePointerAndOthersDoNot) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    EXPECT_EQ(Pointer(client), (Value{desktop_link::Point{100, 200}}));
    for (const std::uint32_t type : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 25u, 26u, 27u}) {
        client.Post(Mouse(type, type, 7));
        EXPECT_EQ(Pointer(client), (Value{desktop_link::Point{double(type), 7}})) << type;
    }
    for (const std::uint32_t type : {0u, 10u, 11u, 12u, 22u}) {
        client.Post(Mouse(type, 555, 555));
        EXPECT_EQ(Pointer(client), (Value{desktop_link::Point{27, 7}})) << type;
    }
}

TEST(EventTap, PositionThatIsNoNumberDoesNotMoveThePointer) {
    Desktop desktop(kEmptyScene);
    const Client client{desktop};
    client.Post(Mouse(5, std::nan(""), 3));
    EXPECT_EQ(Pointer(client), (Value{desktop_link::Point{100, 200}}));
    EXPECT_EQ(client.Log().at(0)["position"], json({{{"double", "nan"}}, 3}));
}

TEST(EventTap, EventsOfUntrustedProcessesAreDropped) {
    Desktop desktop(R"({"trusted": false, "pointer": [1, 2]})");
    const Client client{desktop};
    client.Post(Key(55, true, kCommand));
    client.Post(Mouse(5, 30, 40));
    EXPECT_THAT(desktop.Events(), IsEmpty());
    EXPECT_THAT(client.Log(), IsEmpty());
    EXPECT_EQ(Pointer(client), (Value{desktop_link::Point{1, 2}}));
    client.Do({{"command", "trust"}, {"trusted", true}});
    client.Post(Mouse(5, 30, 40));
    EXPECT_EQ(desktop.Events().size(), 1u);
    EXPECT_EQ(desktop.Events()[0].flags, 0u) << "the dropped key is not held";
}

TEST(EventTap, ScreensAreReportedMainScreenFirst) {
    Desktop desktop(
        R"({"screens": [{"frame": [0, 0, 1440, 900]}, {"frame": [1440, -100, 800, 600]}]})");
    const Client client{desktop};
    EXPECT_THAT(client.Ask(Operation::screens)->values,
                ElementsAre(Value{desktop_link::Rect{{0, 0}, {1440, 900}}},
                            Value{desktop_link::Rect{{1440, -100}, {800, 600}}}));
    Desktop headless(R"({"screens": []})");
    EXPECT_TRUE(Client{headless}.Ask(Operation::screens)->values.empty());
}

}  // namespace

}  // namespace desktop
