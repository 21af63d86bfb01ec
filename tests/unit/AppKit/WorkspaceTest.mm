#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include "platform/Testing/LiveObjects.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/SessionFixture.h"

using desktop_link::Application;
using desktop_link::Notification;
using desktop_link::Reply;
using desktop_link::Request;
using test_support::ScriptedTransport;

// Collects the activations that the workspace announces.
@interface ActivationRecorder : NSObject {
    NSMutableArray* _processIdentifiers;
}
- (NSArray*)processIdentifiers;
@end

@implementation ActivationRecorder

- (instancetype)init {
    self = [super init];
    if (self != nil) {
        _processIdentifiers = [[NSMutableArray alloc] init];
        [[[NSWorkspace sharedWorkspace] notificationCenter]
            addObserver:self
               selector:@selector(activated:)
                   name:NSWorkspaceDidActivateApplicationNotification
                 object:nil];
    }
    return self;
}

- (void)dealloc {
    [[[NSWorkspace sharedWorkspace] notificationCenter] removeObserver:self];
    [_processIdentifiers release];
    [super dealloc];
}

- (void)activated:(NSNotification*)notification {
    NSRunningApplication* application =
        [[notification userInfo] objectForKey:NSWorkspaceApplicationKey];
    [_processIdentifiers addObject:[NSNumber numberWithInt:[application processIdentifier]]];
}

- (NSArray*)processIdentifiers {
    return _processIdentifiers;
}

@end

namespace {

Application Editor() {
    return {501, "com.example.editor", "/Applications/Some Editor.app", "Editor"};
}
Application Player() {
    return {502, "com.example.player", std::nullopt, "Player"};
}
Application Tool() {
    return {777, std::nullopt, std::nullopt, "tool"};
}

std::optional<Reply> NoAnswer(const Request&) {
    return std::nullopt;
}

desktop_link::Session With(const Application& front) {
    return {front, 6.0};
}

NSRunningApplication* Front() {
    return [[NSWorkspace sharedWorkspace] frontmostApplication];
}

class Workspace : public testing::Test {
    platform_testing::AutoreleasePool pool_;
};

TEST_F(Workspace, IsOneObject) {
    EXPECT_NE([NSWorkspace sharedWorkspace], nil);
    EXPECT_EQ([NSWorkspace sharedWorkspace], [NSWorkspace sharedWorkspace]);
}

TEST_F(Workspace, FrontmostApplicationIsTheSessions) {
    ScriptedTransport desktop(NoAnswer, With(Editor()));
    EXPECT_EQ([Front() processIdentifier], 501);
    EXPECT_TRUE([[Front() bundleIdentifier] isEqual:@"com.example.editor"]);
    EXPECT_TRUE([[[Front() bundleURL] path] isEqual:@"/Applications/Some Editor.app"]);
    EXPECT_TRUE([[Front() bundleURL] isFileURL]);
    EXPECT_EQ(Front(), Front()) << "the same object until it changes";
}

TEST_F(Workspace, NothingInFrontIsNil) {
    ScriptedTransport desktop(NoAnswer);
    EXPECT_EQ(Front(), nil);
}

TEST_F(Workspace, WithoutADesktopNothingIsInFront) {
    const test_support::SessionFixture session;
    desktop_link::SetTransport(nullptr);
    EXPECT_EQ(Front(), nil);
    desktop_link::SetTransport(nullptr);
}

TEST_F(Workspace, ProgramWithoutBundleHasNeitherIdentifierNorURL) {
    ScriptedTransport desktop(NoAnswer, With(Tool()));
    EXPECT_EQ([Front() processIdentifier], 777);
    EXPECT_EQ([Front() bundleIdentifier], nil);
    EXPECT_EQ([Front() bundleURL], nil);
}

TEST_F(Workspace, BundleIdentifierThatIsNoUtf8CountsAsNone) {
    Application broken = Editor();
    broken.bundleIdentifier = "\xFF";
    broken.bundlePath = "";
    ScriptedTransport desktop(NoAnswer, With(broken));
    EXPECT_EQ([Front() bundleIdentifier], nil);
    EXPECT_EQ([Front() bundleURL], nil);
}

TEST_F(Workspace, ActivationsAreAnnouncedOneByOneInOrder) {
    ScriptedTransport desktop(NoAnswer, With(Editor()));
    ActivationRecorder* recorder = [[ActivationRecorder alloc] init];
    EXPECT_EQ([Front() processIdentifier], 501);
    desktop.Deliver(Notification{Player()});
    desktop.Deliver(Notification{Tool()});
    desktop.Deliver(Notification{Editor()});
    NSArray* expected =
        [NSArray arrayWithObjects:[NSNumber numberWithInt:502], [NSNumber numberWithInt:777],
                                  [NSNumber numberWithInt:501], nil];
    EXPECT_TRUE([[recorder processIdentifiers] isEqual:expected])
        << [[[recorder processIdentifiers] description] UTF8String];
    [recorder release];
}

TEST_F(Workspace, FrontmostApplicationHasChangedWhenTheActivationIsAnnounced) {
    ScriptedTransport desktop(NoAnswer, With(Editor()));
    EXPECT_EQ([Front() processIdentifier], 501);
    desktop.Deliver(Notification{Player()});
    EXPECT_EQ([Front() processIdentifier], 502);
}

TEST_F(Workspace, GoingToNothingInFrontIsNoActivation) {
    ScriptedTransport desktop(NoAnswer, With(Editor()));
    ActivationRecorder* recorder = [[ActivationRecorder alloc] init];
    EXPECT_NE(Front(), nil);
    desktop.Deliver(Notification{});
    EXPECT_EQ(Front(), nil);
    EXPECT_EQ([[recorder processIdentifiers] count], 0u);
    [recorder release];
}

TEST_F(Workspace, ActivationsGoToItsOwnCenterOnly) {
    EXPECT_NE([[NSWorkspace sharedWorkspace] notificationCenter],
              [NSNotificationCenter defaultCenter]);
}

TEST_F(Workspace, RunningApplicationOutlivesTheChangeOfTheFrontApplication) {
    ScriptedTransport desktop(NoAnswer, With(Editor()));
    NSRunningApplication* editor = [Front() retain];
    desktop.Deliver(Notification{Player()});
    EXPECT_EQ([editor processIdentifier], 501);
    EXPECT_TRUE([[editor bundleIdentifier] isEqual:@"com.example.editor"]);
    [editor release];
}

TEST_F(Workspace, ApplicationsOfOneProcessAreEqual) {
    ScriptedTransport desktop(NoAnswer, With(Editor()));
    NSRunningApplication* before = Front();
    desktop.Deliver(Notification{Player()});
    EXPECT_FALSE([before isEqual:Front()]);
    desktop.Deliver(Notification{Editor()});
    EXPECT_NE(before, Front());
    EXPECT_TRUE([before isEqual:Front()]);
    EXPECT_EQ([before hash], [Front() hash]);
    EXPECT_FALSE([before isEqual:@"text"]);
}

TEST_F(Workspace, SessionOfAReplacedTransportIsForgotten) {
    {
        ScriptedTransport desktop(NoAnswer, With(Editor()));
        EXPECT_EQ([Front() processIdentifier], 501);
    }
    ScriptedTransport desktop(NoAnswer, With(Player()));
    EXPECT_EQ([Front() processIdentifier], 502);
    desktop.Deliver(Notification{Tool()});
    EXPECT_EQ([Front() processIdentifier], 777) << "the new transport's notifications arrive";
}

TEST_F(Workspace, LeavesNoObjectBehind) {
    ScriptedTransport desktop(NoAnswer, With(Editor()));
    EXPECT_EQ(platform_testing::LeftOverBy([&] {
                  [[Front() bundleURL] path];
                  desktop.Deliver(Notification{Player()});
                  [Front() bundleIdentifier];
                  desktop.Deliver(Notification{Editor()});
                  [Front() bundleIdentifier];
              }),
              "");
}

}  // namespace
