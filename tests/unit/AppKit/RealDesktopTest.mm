// The frameworks against krt9-desktop as a separate process, over the session's socket.
#import <AppKit/AppKit.h>

#include <CoreMIDI/CoreMIDI.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/DesktopLink/Transport.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/Stage.h"

namespace {

using test_support::Role;
using OwnedElement = test_support::OwnedObject<AXUIElementRef>;
using OwnedEvent = test_support::OwnedObject<CGEventRef>;
using Owned = test_support::OwnedObject<CFTypeRef>;

constexpr char kScene[] = R"({
  "trusted": true, "messagingTimeout": 0.3,
  "screens": [{"frame": [0, 0, 1440, 900]}], "pointer": [100, 200],
  "front": "com.example.editor",
  "applications": [
    {"bundleID": "com.example.editor", "name": "Editor", "pid": 501, "info": {}, "windows": []},
    {"bundleID": "com.example.player", "name": "Player", "pid": 502, "windows": []}]
})";

class RealDesktop : public testing::Test {
  protected:
    RealDesktop() { desktop_link::SetTransport(nullptr); }
    ~RealDesktop() override { desktop_link::SetTransport(nullptr); }

    void Start() { stage_.StartDesktop(kScene); }

    static void Command(const std::string& json) {
        desktop_link::Request request;
        request.operation = desktop_link::Operation::script;
        request.text = json;
        const auto reply = desktop_link::CurrentTransport().Exchange(request, 5);
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->error, 0) << reply->text;
    }

    static AXError ReadWindows() {
        const OwnedElement application = AXUIElementCreateApplication(501);
        Owned windows;
        return AXUIElementCopyAttributeValue(application, kAXWindowsAttribute, windows.Out());
    }

    static pid_t FrontPid() {
        return [[[NSWorkspace sharedWorkspace] frontmostApplication] processIdentifier];
    }

    static void RunForOneDelivery() {
        EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, true), kCFRunLoopRunHandledSource);
    }

    platform_testing::AutoreleasePool pool_;
    test_support::Stage stage_;
};

TEST_F(RealDesktop, AnswersEveryFramework) {
    Start();
    EXPECT_EQ(FrontPid(), 501);
    EXPECT_TRUE(AXIsProcessTrustedWithOptions(nullptr));
    EXPECT_EQ(ReadWindows(), kAXErrorSuccess);
    EXPECT_EQ([NSEvent mouseLocation].y, 700);
    EXPECT_EQ([[NSScreen mainScreen] frame].size.width, 1440);
    const OwnedEvent move =
        CGEventCreateMouseEvent(nullptr, kCGEventMouseMoved, {3, 4}, kCGMouseButtonLeft);
    CGEventPost(kCGHIDEventTap, move);
    EXPECT_EQ([NSEvent mouseLocation].x, 3);
    EXPECT_EQ(MIDIGetNumberOfDevices(), 0u);
}

TEST_F(RealDesktop, BundleOfTheFrontApplicationLiesOnDisk) {
    Start();
    NSURL* url = [[[NSWorkspace sharedWorkspace] frontmostApplication] bundleURL];
    ASSERT_NE(url, nil);
    NSString* information = [[url path] stringByAppendingPathComponent:@"Contents/Info.plist"];
    EXPECT_TRUE([[NSFileManager defaultManager] fileExistsAtPath:information])
        << [information UTF8String];
}

TEST_F(RealDesktop, ActivationChangesTheFrontApplicationWhenTheRunLoopRuns) {
    Start();
    EXPECT_EQ(FrontPid(), 501);
    Command(R"({"command": "activate", "application": "com.example.player"})");
    EXPECT_EQ(FrontPid(), 501) << "the run loop has not run";
    RunForOneDelivery();
    EXPECT_EQ(FrontPid(), 502);
}

TEST_F(RealDesktop, HungApplicationCostsOneTimeoutACallAndAnswersAgainAfterwards) {
    Start();
    Command(R"({"command": "hang", "application": "com.example.editor"})");
    EXPECT_EQ(ReadWindows(), kAXErrorCannotComplete);
    EXPECT_EQ(ReadWindows(), kAXErrorCannotComplete);
    Command(R"({"command": "unhang", "application": "com.example.editor"})");
    EXPECT_EQ(ReadWindows(), kAXErrorSuccess) << "late replies are not taken for this one's";
}

TEST_F(RealDesktop, StoppedDesktopCostsOneTimeoutACall) {
    Start();
    EXPECT_EQ(ReadWindows(), kAXErrorSuccess);
    stage_.Stop(Role::desktop);
    EXPECT_EQ(ReadWindows(), kAXErrorCannotComplete);
    stage_.Continue(Role::desktop);
    AXUIElementSetMessagingTimeout(OwnedElement(AXUIElementCreateSystemWide()), 5);
    EXPECT_EQ(ReadWindows(), kAXErrorSuccess);
    AXUIElementSetMessagingTimeout(OwnedElement(AXUIElementCreateSystemWide()), 0);
}

TEST_F(RealDesktop, KilledDesktopLeavesAnEmptySessionAndTheNextOneIsFound) {
    Start();
    EXPECT_EQ(FrontPid(), 501);
    stage_.Kill(Role::desktop);
    EXPECT_EQ(ReadWindows(), kAXErrorAPIDisabled);
    EXPECT_FALSE(AXIsProcessTrustedWithOptions(nullptr));
    RunForOneDelivery();
    EXPECT_EQ([[NSWorkspace sharedWorkspace] frontmostApplication], nil);
    Start();
    RunForOneDelivery();
    EXPECT_EQ(FrontPid(), 501);
    EXPECT_EQ(ReadWindows(), kAXErrorSuccess);
}

}  // namespace
