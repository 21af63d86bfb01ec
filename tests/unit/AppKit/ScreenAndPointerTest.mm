#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include "platform/Testing/LiveObjects.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/SessionFixture.h"

namespace {

using desktop_link::Operation;
using desktop_link::Point;
using desktop_link::Rect;
using desktop_link::Reply;
using desktop_link::Request;
using desktop_link::Value;
using test_support::ScriptedTransport;

// A session with these screens, the main one first, and the pointer there.
ScriptedTransport::Script Session(std::vector<Rect> screens, Point pointer) {
    return [screens, pointer](const Request& request) {
        Reply reply;
        if (request.operation == Operation::screens) {
            for (const Rect& screen : screens) {
                reply.values.push_back(Value{screen});
            }
        } else if (request.operation == Operation::pointerLocation) {
            reply.values.push_back(Value{pointer});
            if (!screens.empty()) {
                reply.values.push_back(Value{screens.front()});
            }
        }
        return reply;
    };
}

class ScreenAndPointer : public testing::Test {
    platform_testing::AutoreleasePool pool_;
};

TEST_F(ScreenAndPointer, PointerIsCountedFromTheBottomOfTheMainScreenInOneExchange) {
    ScriptedTransport desktop(Session({{{0, 0}, {1440, 900}}}, {100, 0}));
    const NSPoint location = [NSEvent mouseLocation];
    EXPECT_EQ(location.x, 100);
    EXPECT_EQ(location.y, 900);
    EXPECT_EQ(desktop.Requests().size(), 1u);
}

TEST_F(ScreenAndPointer, PointerOnAScreenBelowTheMainOneIsNegative) {
    ScriptedTransport desktop(
        Session({{{0, 0}, {1440, 900}}, {{0, 900}, {1440, 900}}}, {10.5, 1000}));
    EXPECT_EQ([NSEvent mouseLocation].x, 10.5);
    EXPECT_EQ([NSEvent mouseLocation].y, -100);
}

// The desktop says which one that is, after the screens.
TEST_F(ScreenAndPointer, MainScreenIsTheOneWithTheKeyWindow) {
    for (const std::int64_t index : {1, 2, -1}) {
        ScriptedTransport desktop([index](const Request&) {
            Reply reply;
            reply.values = {Value{Rect{{0, 0}, {1440, 900}}}, Value{Rect{{1440, 0}, {800, 600}}},
                            Value{index}};
            return reply;
        });
        const NSRect frame = [[NSScreen mainScreen] frame];
        EXPECT_TRUE(NSEqualRects(
            frame, index == 1 ? NSMakeRect(1440, 300, 800, 600) : NSMakeRect(0, 0, 1440, 900)))
            << index << ": " << [NSStringFromRect(frame) UTF8String];
    }
}

TEST_F(ScreenAndPointer, MainScreenIsTheFirstOneInOneExchange) {
    ScriptedTransport desktop(Session({{{0, 0}, {1440, 900}}, {{1440, 0}, {800, 600}}}, {}));
    const NSRect frame = [[NSScreen mainScreen] frame];
    EXPECT_TRUE(NSEqualRects(frame, NSMakeRect(0, 0, 1440, 900)))
        << [NSStringFromRect(frame) UTF8String];
    EXPECT_EQ(desktop.Requests().size(), 1u);
}

TEST_F(ScreenAndPointer, FurtherScreensLieInCoordinatesFromTheBottomLeftOfTheMainOne) {
    ScriptedTransport desktop(Session(
        {{{0, 0}, {1440, 900}}, {{1440, -100}, {800, 600}}, {{-640, 420}, {640, 480}}}, {}));
    NSArray* screens = [NSScreen screens];
    ASSERT_EQ([screens count], 3u);
    const NSRect right = [(NSScreen*)[screens objectAtIndex:1] frame];
    const NSRect left = [(NSScreen*)[screens objectAtIndex:2] frame];
    EXPECT_TRUE(NSEqualRects(right, NSMakeRect(1440, 400, 800, 600)))
        << [NSStringFromRect(right) UTF8String];
    EXPECT_TRUE(NSEqualRects(left, NSMakeRect(-640, 0, 640, 480)))
        << [NSStringFromRect(left) UTF8String];
}

TEST_F(ScreenAndPointer, WithoutScreenThereIsNoMainOneAndItsFrameIsZero) {
    ScriptedTransport desktop(Session({}, {5, 7}));
    EXPECT_EQ([NSScreen mainScreen], nil);
    EXPECT_TRUE(NSEqualRects([[NSScreen mainScreen] frame], NSZeroRect));
    EXPECT_EQ([[NSScreen screens] count], 0u);
    EXPECT_EQ([NSEvent mouseLocation].y, -7);
}

TEST_F(ScreenAndPointer, WithoutADesktopThePointerIsAtZeroAndThereIsNoScreen) {
    const test_support::SessionFixture session;
    desktop_link::SetTransport(nullptr);
    EXPECT_TRUE(NSEqualPoints([NSEvent mouseLocation], NSZeroPoint));
    EXPECT_EQ([NSScreen mainScreen], nil);
    desktop_link::SetTransport(nullptr);
}

TEST_F(ScreenAndPointer, ReplyWithOtherValuesCountsAsNone) {
    ScriptedTransport desktop([](const Request&) {
        Reply reply;
        reply.values = {Value{std::string("no screen")}, Value{true}};
        return reply;
    });
    EXPECT_EQ([NSScreen mainScreen], nil);
    EXPECT_TRUE(NSEqualPoints([NSEvent mouseLocation], NSZeroPoint));
}

TEST_F(ScreenAndPointer, LeaveNoObjectBehind) {
    ScriptedTransport desktop(Session({{{0, 0}, {1440, 900}}}, {}));
    EXPECT_EQ(platform_testing::LeftOverBy([] {
                  [NSEvent mouseLocation];
                  [[NSScreen mainScreen] frame];
              }),
              "");
}

}  // namespace
