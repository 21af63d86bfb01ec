#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include "platform/Testing/LiveObjects.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"

namespace {

using desktop_link::Rect;
using desktop_link::Reply;
using desktop_link::Request;
using desktop_link::Value;
using test_support::ScriptedDesktop;

constexpr char kOneScreen[] = R"({"screens": [{"frame": [0, 0, 1440, 900]}], "pointer": [100, 0]})";

class ScreenAndPointer : public testing::Test {
    platform_testing::AutoreleasePool pool_;
};

TEST_F(ScreenAndPointer, PointerIsCountedFromTheBottomOfTheMainScreenInOneExchange) {
    ScriptedDesktop desktop(kOneScreen);
    desktop.Restart();
    const NSPoint location = [NSEvent mouseLocation];
    EXPECT_EQ(location.x, 100);
    EXPECT_EQ(location.y, 900);
    EXPECT_EQ(desktop.Exchanges().size(), 1u);
}

TEST_F(ScreenAndPointer, PointerOnAScreenBelowTheMainOneIsNegative) {
    ScriptedDesktop desktop(R"({"screens": [{"frame": [0, 0, 1440, 900]},
        {"frame": [0, 900, 1440, 900]}], "pointer": [10.5, 1000]})");
    EXPECT_EQ([NSEvent mouseLocation].x, 10.5);
    EXPECT_EQ([NSEvent mouseLocation].y, -100);
}

// The desktop says which one that is, after the screens.
TEST_F(ScreenAndPointer, MainScreenIsTheOneWithTheKeyWindow) {
    for (const std::int64_t index : {1, 2, -1}) {
        ScriptedDesktop desktop([index](const Request&) {
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
    ScriptedDesktop desktop(
        R"({"screens": [{"frame": [0, 0, 1440, 900]}, {"frame": [1440, 0, 800, 600]}]})");
    desktop.Restart();
    const NSRect frame = [[NSScreen mainScreen] frame];
    EXPECT_TRUE(NSEqualRects(frame, NSMakeRect(0, 0, 1440, 900)))
        << [NSStringFromRect(frame) UTF8String];
    EXPECT_EQ(desktop.Exchanges().size(), 1u);
}

TEST_F(ScreenAndPointer, FurtherScreensLieInCoordinatesFromTheBottomLeftOfTheMainOne) {
    ScriptedDesktop desktop(R"({"screens": [{"frame": [0, 0, 1440, 900]},
        {"frame": [1440, -100, 800, 600]}, {"frame": [-640, 420, 640, 480]}]})");
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
    ScriptedDesktop desktop(R"({"screens": [], "pointer": [5, 7]})");
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
    ScriptedDesktop desktop([](const Request&) {
        Reply reply;
        reply.values = {Value{std::string("no screen")}, Value{true}};
        return reply;
    });
    EXPECT_EQ([NSScreen mainScreen], nil);
    EXPECT_TRUE(NSEqualPoints([NSEvent mouseLocation], NSZeroPoint));
}

TEST_F(ScreenAndPointer, LeaveNoObjectBehind) {
    ScriptedDesktop desktop(kOneScreen);
    EXPECT_EQ(platform_testing::LeftOverBy([] {
                  [NSEvent mouseLocation];
                  [[NSScreen mainScreen] frame];
              }),
              "");
}

}  // namespace
