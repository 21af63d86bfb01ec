#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <string>

#include "platform/DesktopLink/Session.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"

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

// An editor with a bundle, a player without one, and a tool that has no identifier either.
std::string SceneWithFront(const std::string& front) {
    return R"({"front": )" + front + R"(, "applications": [
        {"bundleID": "com.example.editor", "name": "Some Editor", "pid": 501, "info": {}},
        {"bundleID": "com.example.player", "name": "Player", "pid": 502},
        {"name": "tool", "pid": 777}]})";
}

constexpr char kEditor[] = R"("com.example.editor")";
constexpr char kPlayer[] = R"("com.example.player")";
constexpr char kTool[] = R"("pid:777")";

NSRunningApplication* Front() {
    return [[NSWorkspace sharedWorkspace] frontmostApplication];
}

class Workspace : public testing::Test {
  protected:
    void Activate(const std::string& application) {
        desktop_.Run(R"({"command": "activate", "application": )" + application + "}");
    }

    test_support::ScriptedDesktop desktop_{SceneWithFront(kEditor)};

  private:
    platform_testing::AutoreleasePool pool_;
};

TEST_F(Workspace, IsOneObject) {
    EXPECT_NE([NSWorkspace sharedWorkspace], nil);
    EXPECT_EQ([NSWorkspace sharedWorkspace], [NSWorkspace sharedWorkspace]);
}

TEST_F(Workspace, FrontmostApplicationIsTheSessions) {
    EXPECT_EQ([Front() processIdentifier], 501);
    EXPECT_TRUE([[Front() bundleIdentifier] isEqual:@"com.example.editor"]);
    const std::string path = desktop_link::FrontApplication()->bundlePath.value();
    EXPECT_TRUE(path.ends_with("/Some Editor.app")) << path;
    EXPECT_EQ([[[Front() bundleURL] path] UTF8String], path);
    EXPECT_TRUE([[Front() bundleURL] isFileURL]);
    EXPECT_EQ(Front(), Front()) << "the same object until it changes";
}

TEST_F(Workspace, NothingInFrontIsNil) {
    const test_support::ScriptedDesktop desktop(SceneWithFront("null"));
    EXPECT_EQ(Front(), nil);
}

TEST_F(Workspace, WithoutADesktopNothingIsInFront) {
    const test_support::SessionFixture session;
    desktop_link::SetTransport(nullptr);
    EXPECT_EQ(Front(), nil);
    desktop_link::SetTransport(nullptr);
}

TEST_F(Workspace, ProgramWithoutBundleHasNeitherIdentifierNorURL) {
    const test_support::ScriptedDesktop desktop(SceneWithFront(kTool));
    EXPECT_EQ([Front() processIdentifier], 777);
    EXPECT_EQ([Front() bundleIdentifier], nil);
    EXPECT_EQ([Front() bundleURL], nil);
}

TEST_F(Workspace, BundleIdentifierThatIsNoUtf8CountsAsNone) {
    desktop_.onHello = [](desktop_link::Reply& reply) {
        reply.session->frontApplication->bundleIdentifier = "\xFF";
        reply.session->frontApplication->bundlePath = "";
    };
    EXPECT_EQ([Front() bundleIdentifier], nil);
    EXPECT_EQ([Front() bundleURL], nil);
}

TEST_F(Workspace, ActivationsAreAnnouncedOneByOneInOrder) {
    ActivationRecorder* recorder = [[ActivationRecorder alloc] init];
    EXPECT_EQ([Front() processIdentifier], 501);
    Activate(kPlayer);
    Activate(kTool);
    Activate(kEditor);
    NSArray* expected =
        [NSArray arrayWithObjects:[NSNumber numberWithInt:502], [NSNumber numberWithInt:777],
                                  [NSNumber numberWithInt:501], nil];
    EXPECT_TRUE([[recorder processIdentifiers] isEqual:expected])
        << [[[recorder processIdentifiers] description] UTF8String];
    [recorder release];
}

TEST_F(Workspace, FrontmostApplicationHasChangedWhenTheActivationIsAnnounced) {
    EXPECT_EQ([Front() processIdentifier], 501);
    Activate(kPlayer);
    EXPECT_EQ([Front() processIdentifier], 502);
}

TEST_F(Workspace, GoingToNothingInFrontIsNoActivation) {
    ActivationRecorder* recorder = [[ActivationRecorder alloc] init];
    EXPECT_NE(Front(), nil);
    Activate("null");
    EXPECT_EQ(Front(), nil);
    EXPECT_EQ([[recorder processIdentifiers] count], 0u);
    [recorder release];
}

TEST_F(Workspace, ActivationsGoToItsOwnCenterOnly) {
    EXPECT_NE([[NSWorkspace sharedWorkspace] notificationCenter],
              [NSNotificationCenter defaultCenter]);
}

TEST_F(Workspace, RunningApplicationOutlivesTheChangeOfTheFrontApplication) {
    NSRunningApplication* editor = [Front() retain];
    Activate(kPlayer);
    EXPECT_EQ([editor processIdentifier], 501);
    EXPECT_TRUE([[editor bundleIdentifier] isEqual:@"com.example.editor"]);
    [editor release];
}

TEST_F(Workspace, ApplicationsOfOneProcessAreEqual) {
    NSRunningApplication* before = Front();
    Activate(kPlayer);
    EXPECT_FALSE([before isEqual:Front()]);
    Activate(kEditor);
    EXPECT_NE(before, Front());
    EXPECT_TRUE([before isEqual:Front()]);
    EXPECT_EQ([before hash], [Front() hash]);
    EXPECT_FALSE([before isEqual:@"text"]);
}

TEST_F(Workspace, SessionOfAReplacedTransportIsForgotten) {
    { EXPECT_EQ([Front() processIdentifier], 501); }
    test_support::ScriptedDesktop other(SceneWithFront(kPlayer));
    EXPECT_EQ([Front() processIdentifier], 502);
    other.Run(R"({"command": "activate", "application": "pid:777"})");
    EXPECT_EQ([Front() processIdentifier], 777) << "the new transport's notifications arrive";
}

TEST_F(Workspace, LeavesNoObjectBehind) {
    EXPECT_EQ(platform_testing::LeftOverBy([&] {
                  [[Front() bundleURL] path];
                  Activate(kPlayer);
                  [Front() bundleIdentifier];
                  Activate(kEditor);
                  [Front() bundleIdentifier];
              }),
              "");
}

}  // namespace
