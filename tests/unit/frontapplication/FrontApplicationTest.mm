// What the driver knows of the front application, through activations on a desktop.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frontapplication/FrontApplication.h"
#import "frontapplication/VEK_Driver_FrontAppObserver.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/TestClock.h"
#include "platform/Variants/Variants.h"
#include "tests/support/LateActivation.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TemporaryFolder.h"

// An application that a test makes up.
@interface MadeUpApplication : NSRunningApplication {
  @public
    pid_t _process;
    NSString* _identifier;
    NSURL* _url;
    int _askedForURL;
}
@end

@implementation MadeUpApplication

- (pid_t)processIdentifier {
    return _process;
}

- (NSString*)bundleIdentifier {
    return _identifier;
}

- (NSURL*)bundleURL {
    ++_askedForURL;
    return _url;
}

@end

// Records whether frontAppChanged was already set when the information was collected.
@interface OrderOfSteps : VEK_Driver_FrontAppObserver {
  @public
    BOOL _markedBefore[4];
    int _told;
}
@end

@implementation OrderOfSteps

- (void)collectFrontAppInfo:(NSRunningApplication*)app {
    if (_told < 4) {
        _markedBefore[_told++] = self.frontAppChanged;
    }
    [super collectFrontAppInfo:app];
}

@end

// Counts the instances that were deallocated.
@interface MortalObserver : VEK_Driver_FrontAppObserver
@end

static int deaths = 0;

@implementation MortalObserver

- (void)dealloc {
    ++deaths;
    [super dealloc];
}

@end

namespace {

constexpr UInt32 kUnknown = 0x3F3F3F3F;  // "????"

const char* const kScene = R"({
  "front": "com.apple.FinalCut",
  "applications": [
    { "bundleID": "com.apple.FinalCut", "name": "Editor", "pid": 501,
      "info": { "CFBundleShortVersionString": "10.4.6", "CFBundleSignature": "FCPX" } },
    { "bundleID": "com.example.unsigned", "name": "Unsigned", "pid": 502,
      "info": { "CFBundleShortVersionString": "3.1" } },
    { "bundleID": "com.example.unversioned", "name": "Unversioned", "pid": 503,
      "info": { "CFBundleSignature": "abcd" } },
    { "bundleID": "com.example.odd", "name": "Odd", "pid": 504,
      "info": { "CFBundleSignature": "toolong", "CFBundleShortVersionString": "1" } },
    { "bundleID": "com.example.unbundled", "name": "Unbundled", "pid": 505 },
    { "bundleID": "com.example.numbers", "name": "Numbers", "pid": 506,
      "info": { "CFBundleSignature": 7, "CFBundleShortVersionString": 10.4 } },
    { "name": "Tool", "pid": 507 } ] })";

std::string Text(NSString* string) {
    return string != nil ? [string UTF8String] : "(nil)";
}

class FrontApplication : public testing::Test {
  protected:
    // Whichever observer was made last is the shared one: each test starts with a new one.
    FrontApplication() : observer([[VEK_Driver_FrontAppObserver alloc] init]) {}
    ~FrontApplication() override {
        // A new observer becomes the shared one, so that the test's own can be released.
        [[[VEK_Driver_FrontAppObserver alloc] init] release];
        [observer release];
    }

    void Activate(const std::string& application) {
        ActivateUnannounced(application);
        test_support::AwaitActivations();
    }

    // Under the variant of late notifications, none has arrived when this returns.
    void ActivateUnannounced(const std::string& application) {
        desktop.Run(R"({"command": "activate", "application": ")" + application + "\"}");
    }

    // Autoreleased. `folder` is its bundle; none: it has no bundle.
    static MadeUpApplication* Application(NSString* identifier, const std::string& folder = "") {
        MadeUpApplication* application = [[[MadeUpApplication alloc] init] autorelease];
        application->_process = 900;
        application->_identifier = identifier;
        if (!folder.empty()) {
            application->_url =
                [NSURL fileURLWithPath:[NSString stringWithUTF8String:folder.c_str()]
                           isDirectory:YES];
        }
        return application;
    }

    platform_testing::AutoreleasePool pool;
    test_support::SessionFixture session;
    test_support::ScriptedDesktop desktop{kScene};
    VEK_Driver_FrontAppObserver* observer;
};

std::string CurrentBundleID() {
    UInt32 signature = 0;
    NSString* bundleID = nil;
    CFWorkspace_CurrentFrontApplicationSignatureAndID(&signature, &bundleID);
    return Text(bundleID);
}

std::string CurrentShortVersion() {
    CFStringRef version = nullptr;
    return CFWorkspace_FrontApplicationShortVersion(&version) ? Text((NSString*)version) : "(none)";
}

TEST_F(FrontApplication, BeforeObservingTheInstanceHoldsZerosAndNils) {
    EXPECT_EQ(CFWorkspace_CurrentFrontApplicationPID(), 0);
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), 0u);
    EXPECT_EQ(CurrentBundleID(), "(nil)");
    EXPECT_EQ(CurrentShortVersion(), "(none)");
    UInt32 signature = 1;
    NSString* bundleID = @"untouched";
    EXPECT_FALSE(CFWorkspace_ChangedFrontApplicationSignatureAndID(&signature, &bundleID));
    EXPECT_EQ(signature, 1u);
    EXPECT_EQ(Text(bundleID), "untouched");
}

TEST_F(FrontApplication, ObservingRecordsTheApplicationInFrontAtThatMoment) {
    CFWorkspace_StartObservingFrontApplication();
    EXPECT_EQ(CFWorkspace_CurrentFrontApplicationPID(), 501);
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), 0x46435058u);  // "FCPX"
    EXPECT_EQ(CurrentBundleID(), "com.apple.FinalCut");
    EXPECT_EQ(CurrentShortVersion(), "10.4.6");
}

TEST_F(FrontApplication, FirstConsumerSeesAnInitialChange) {
    CFWorkspace_StartObservingFrontApplication();
    UInt32 signature = 0;
    NSString* bundleID = nil;
    EXPECT_TRUE(CFWorkspace_ChangedFrontApplicationSignatureAndID(&signature, &bundleID));
    EXPECT_EQ(signature, 0x46435058u);
    EXPECT_EQ(Text(bundleID), "com.apple.FinalCut");
}

TEST_F(FrontApplication, CurrentStateIsAlwaysWritten) {
    UInt32 signature = 1;
    NSString* bundleID = @"written over";
    CFWorkspace_CurrentFrontApplicationSignatureAndID(&signature, &bundleID);
    EXPECT_EQ(signature, 0u);
    EXPECT_EQ(bundleID, nil);
    CFWorkspace_StartObservingFrontApplication();
    CFWorkspace_CurrentFrontApplicationSignatureAndID(&signature, &bundleID);
    EXPECT_EQ(signature, 0x46435058u);
    EXPECT_EQ(Text(bundleID), "com.apple.FinalCut");
}

TEST_F(FrontApplication, ChangeIsAnsweredOnceWithoutAnActivationInBetween) {
    CFWorkspace_StartObservingFrontApplication();
    UInt32 signature = 0;
    NSString* bundleID = nil;
    EXPECT_TRUE(CFWorkspace_ChangedFrontApplicationSignatureAndID(&signature, &bundleID));
    EXPECT_FALSE(CFWorkspace_ChangedFrontApplicationSignatureAndID(&signature, &bundleID));
}

TEST_F(FrontApplication, SeveralActivationsBetweenTwoReadsCollapseIntoTheLast) {
    CFWorkspace_StartObservingFrontApplication();
    UInt32 signature = 0;
    NSString* bundleID = nil;
    CFWorkspace_ChangedFrontApplicationSignatureAndID(&signature, &bundleID);
    Activate("com.example.odd");
    Activate("com.example.unsigned");
    EXPECT_TRUE(CFWorkspace_ChangedFrontApplicationSignatureAndID(&signature, &bundleID));
    EXPECT_EQ(Text(bundleID), "com.example.unsigned");
    EXPECT_FALSE(CFWorkspace_ChangedFrontApplicationSignatureAndID(&signature, &bundleID));
}

TEST_F(FrontApplication, ReadingTheCurrentStateDoesNotTouchTheChange) {
    CFWorkspace_StartObservingFrontApplication();
    EXPECT_EQ(CurrentBundleID(), "com.apple.FinalCut");
    UInt32 signature = 0;
    NSString* bundleID = nil;
    EXPECT_TRUE(CFWorkspace_ChangedFrontApplicationSignatureAndID(&signature, &bundleID));
}

TEST_F(FrontApplication, ApplicationWithoutBundleIdentifierKeepsTheShortVersionOnPurpose) {
    CFWorkspace_StartObservingFrontApplication();
    Activate("pid:507");
    EXPECT_EQ(CurrentBundleID(), "(nil)");
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), kUnknown);
    EXPECT_EQ(CFWorkspace_CurrentFrontApplicationPID(), 507);
    EXPECT_EQ(CurrentShortVersion(), "10.4.6");
}

TEST_F(FrontApplication, WithoutBundleSignatureItStaysUnknown) {
    CFWorkspace_StartObservingFrontApplication();
    Activate("com.example.unsigned");
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), kUnknown);
    EXPECT_EQ(CurrentShortVersion(), "3.1");
}

TEST_F(FrontApplication, InformationWithoutShortVersionClearsIt) {
    CFWorkspace_StartObservingFrontApplication();
    Activate("com.example.unversioned");
    EXPECT_EQ(CurrentShortVersion(), "(none)");
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), 0x61626364u);
}

TEST_F(FrontApplication, MalformedSignatureYieldsWhatTheConversionYields) {
    CFWorkspace_StartObservingFrontApplication();
    Activate("com.example.odd");
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), 0u);
}

TEST_F(FrontApplication, WithoutBundleOnDiskTheShortVersionIsNotLookedAt) {
    CFWorkspace_StartObservingFrontApplication();
    Activate("com.example.unbundled");
    EXPECT_EQ(CurrentBundleID(), "com.example.unbundled");
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), kUnknown);
    EXPECT_EQ(CurrentShortVersion(), "10.4.6");
}

TEST_F(FrontApplication, InformationOfAnotherTypeIsNoText) {
    CFWorkspace_StartObservingFrontApplication();
    Activate("com.example.numbers");
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), kUnknown);
    EXPECT_EQ(CurrentShortVersion(), "(none)");
}

// --- what one application tells ------------------------------------------------------------------

TEST_F(FrontApplication, WithoutBundleIdentifierItsBundleIsNotLookedAt) {
    const test_support::TemporaryFolder folder;
    folder.Write("Contents/Info.plist",
                 R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
                    <key>CFBundleSignature</key><string>abcd</string>
                    <key>CFBundleShortVersionString</key><string>9.9</string></dict></plist>)");
    CFWorkspace_StartObservingFrontApplication();
    MadeUpApplication* application = Application(nil, folder.Path());
    [observer collectFrontAppInfo:application];
    EXPECT_EQ(application->_askedForURL, 0);
    EXPECT_EQ(CFWorkspace_CurrentFrontApplicationPID(), 900);
    EXPECT_EQ(CurrentBundleID(), "(nil)");
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), kUnknown);
    EXPECT_EQ(CurrentShortVersion(), "10.4.6");

    application->_identifier = @"com.example.made-up";
    [observer collectFrontAppInfo:application];
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), 0x61626364u) << "the same bundle";
    EXPECT_EQ(CurrentShortVersion(), "9.9");
}

TEST_F(FrontApplication, WhatIsNoBundleLeavesTheShortVersionAndTheSignatureUnknown) {
    CFWorkspace_StartObservingFrontApplication();
    const test_support::TemporaryFolder folder;
    for (const std::string& place : {std::string(), (folder.Path() / "missing").string()}) {
        [observer collectFrontAppInfo:Application(@"com.example.made-up", place)];
        EXPECT_EQ(CurrentBundleID(), "com.example.made-up");
        EXPECT_EQ(CFWorkspace_CurrentFrontApplicationPID(), 900);
        EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), kUnknown);
        EXPECT_EQ(CurrentShortVersion(), "10.4.6");
    }
}

TEST_F(FrontApplication, NoApplicationChangesNothing) {
    CFWorkspace_StartObservingFrontApplication();
    observer.frontAppChanged = NO;
    [observer collectFrontAppInfo:nil];
    EXPECT_FALSE(observer.frontAppChanged);
    EXPECT_EQ(CFWorkspace_CurrentFrontApplicationPID(), 501);
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), 0x46435058u);
    EXPECT_EQ(CurrentBundleID(), "com.apple.FinalCut");
}

// --- ownership -----------------------------------------------------------------------------------

// In a pool of its own, so that what was autoreleased is released before the count is read.
TEST_F(FrontApplication, IdentifierThatWasHandedOutOutlivesAnActivation) {
    NSMutableString* identifier = [[NSMutableString alloc] initWithString:@"com.example.kept"];
    observer.bundleID = identifier;
    @autoreleasepool {
        UInt32 signature = 0;
        NSString* handedOut = nil;
        CFWorkspace_CurrentFrontApplicationSignatureAndID(&signature, &handedOut);
        observer.bundleID = @"com.example.next";
        ASSERT_EQ(handedOut, identifier);
        EXPECT_EQ([identifier retainCount], 2u) << "the test's and the pool's";
    }
    EXPECT_EQ([identifier retainCount], 1u);
    observer.bundleID = identifier;
    observer.frontAppChanged = YES;
    @autoreleasepool {
        UInt32 signature = 0;
        NSString* handedOut = nil;
        ASSERT_TRUE(CFWorkspace_ChangedFrontApplicationSignatureAndID(&signature, &handedOut));
        observer.bundleID = nil;
        EXPECT_EQ([identifier retainCount], 2u);
    }
    EXPECT_EQ([identifier retainCount], 1u);
    [identifier release];
}

TEST_F(FrontApplication, IdentifierAndVersionOfTheOtherFunctionsAreBorrowed) {
    NSMutableString* text = [[NSMutableString alloc] initWithString:@"text"];
    observer.bundleID = text;
    observer.shortVersion = text;
    CFStringRef identifier = nullptr;
    CFStringRef version = nullptr;
    @autoreleasepool {
        ASSERT_TRUE(CFWorkspace_FrontApplicationBundleID(&identifier));
        ASSERT_TRUE(CFWorkspace_FrontApplicationShortVersion(&version));
    }
    EXPECT_EQ((NSString*)identifier, text) << "the very object, not a copy";
    EXPECT_EQ((NSString*)version, text);
    EXPECT_EQ([text retainCount], 3u) << "the test's and the two properties'";
    [text release];
}

TEST_F(FrontApplication, DeadObserverLetsGoOfItsTexts) {
    NSMutableString* text = [[NSMutableString alloc] initWithString:@"text"];
    VEK_Driver_FrontAppObserver* shortLived = [[VEK_Driver_FrontAppObserver alloc] init];
    shortLived.bundleID = text;
    shortLived.shortVersion = text;
    observer = [observer init];  // shared again: the other one is no longer retained
    EXPECT_EQ([text retainCount], 3u);
    [shortLived release];
    EXPECT_EQ([text retainCount], 1u);
    [text release];
}

// --- notifications -------------------------------------------------------------------------------

TEST_F(FrontApplication, OnlyActivationsAreListenedToWhoeverPostsThem) {
    CFWorkspace_StartObservingFrontApplication();
    observer.frontAppChanged = NO;
    NSNotificationCenter* center = [[NSWorkspace sharedWorkspace] notificationCenter];
    NSDictionary* information =
        [NSDictionary dictionaryWithObject:Application(@"com.example.made-up")
                                    forKey:NSWorkspaceApplicationKey];
    for (NSString *name in
         [NSArray arrayWithObjects:@"NSWorkspaceDidDeactivateApplicationNotification",
                                   @"NSWorkspaceDidLaunchApplicationNotification",
                                   @"NSWorkspaceDidTerminateApplicationNotification", nil]) {
        [center postNotificationName:name
                              object:[NSWorkspace sharedWorkspace]
                            userInfo:information];
        EXPECT_FALSE(observer.frontAppChanged) << Text(name);
    }
    [[NSNotificationCenter defaultCenter]
        postNotificationName:NSWorkspaceDidActivateApplicationNotification
                      object:[NSWorkspace sharedWorkspace]
                    userInfo:information];
    EXPECT_FALSE(observer.frontAppChanged) << "of another center";
    EXPECT_EQ(CurrentBundleID(), "com.apple.FinalCut");

    [center postNotificationName:@"NSWorkspaceDidActivateApplicationNotification"
                          object:@"anybody"
                        userInfo:information];
    EXPECT_TRUE(observer.frontAppChanged);
    EXPECT_EQ(CurrentBundleID(), "com.example.made-up");
}

TEST_F(FrontApplication, ChangeIsMarkedBeforeAnActivationIsLookedAtAndAfterTheFirstApplicationIs) {
    OrderOfSteps* steps = [[OrderOfSteps alloc] init];
    [steps observe];
    EXPECT_TRUE(steps.frontAppChanged);
    steps.frontAppChanged = NO;
    Activate("com.example.odd");
    ASSERT_EQ(steps->_told, 2);
    EXPECT_FALSE(steps->_markedBefore[0]);
    EXPECT_TRUE(steps->_markedBefore[1]);
    observer = [observer init];
    [steps release];
}

TEST_F(FrontApplication, BundleIDFunctionWithNilIdentifierDoesNotWriteItsArgument) {
    CFWorkspace_StartObservingFrontApplication();
    CFStringRef out = CFSTR("untouched");
    EXPECT_TRUE(CFWorkspace_FrontApplicationBundleID(&out));
    EXPECT_EQ(Text((NSString*)out), "com.apple.FinalCut");
    Activate("pid:507");
    out = CFSTR("untouched");
    EXPECT_FALSE(CFWorkspace_FrontApplicationBundleID(&out));
    EXPECT_EQ(Text((NSString*)out), "untouched");
}

TEST_F(FrontApplication, NothingInFrontAtTheStartLeavesProcessZero) {
    test_support::ScriptedDesktop empty(R"({"front": null, "applications": []})");
    CFWorkspace_StartObservingFrontApplication();
    EXPECT_EQ(CFWorkspace_CurrentFrontApplicationPID(), 0);
    EXPECT_TRUE(observer.frontAppChanged);
}

TEST_F(FrontApplication, NotificationWithoutApplicationCountsAsChangeAndChangesNothing) {
    CFWorkspace_StartObservingFrontApplication();
    observer.frontAppChanged = NO;
    [observer newFrontApp:[NSNotification notificationWithName:@"any" object:nil]];
    EXPECT_TRUE(observer.frontAppChanged);
    EXPECT_EQ(CurrentBundleID(), "com.apple.FinalCut");
}

TEST_F(FrontApplication, SharedInstanceIsTheOneMadeLast) {
    EXPECT_EQ([VEK_Driver_FrontAppObserver frontAppObserver], observer);
    VEK_Driver_FrontAppObserver* another = [[VEK_Driver_FrontAppObserver alloc] init];
    EXPECT_EQ([VEK_Driver_FrontAppObserver frontAppObserver], another);
    [another release];
}

TEST_F(FrontApplication, SharedInstanceLivesOnWhenItsMakerLetsGoOfIt) {
    VEK_Driver_FrontAppObserver* another = [[VEK_Driver_FrontAppObserver alloc] init];
    ASSERT_EQ([another retainCount], 2u) << "its maker and the process hold it";
    [another release];
    CFWorkspace_StartObservingFrontApplication();
    Activate("com.example.odd");
    EXPECT_EQ([VEK_Driver_FrontAppObserver frontAppObserver], another);
    EXPECT_EQ(CurrentBundleID(), "com.example.odd");
}

TEST_F(FrontApplication, SharedInstanceSurvivesBeingInitializedAgain) {
    deaths = 0;
    MortalObserver* shared = [[MortalObserver alloc] init];
    [shared release];
    ASSERT_EQ([shared retainCount], 1u) << "only the process holds it";
    shared = [shared init];
    EXPECT_EQ(deaths, 0);
    [[[VEK_Driver_FrontAppObserver alloc] init] release];
    EXPECT_EQ(deaths, 1);
}

TEST_F(FrontApplication, CallbackIsKeptAndNeverCalled) {
    static int calls = 0;
    void (*const callback)() = [] { ++calls; };
    observer.callback = callback;
    CFWorkspace_StartObservingFrontApplication();
    Activate("com.example.odd");
    EXPECT_EQ(observer.callback, callback);
    EXPECT_EQ(calls, 0);
}

TEST_F(FrontApplication, DeadObserverIsNoLongerNotified) {
    VEK_Driver_FrontAppObserver* shortLived = [[VEK_Driver_FrontAppObserver alloc] init];
    [shortLived observe];
    observer = [observer init];  // shared again: the other one is no longer retained
    [shortLived release];
    Activate("com.example.odd");
    EXPECT_EQ(CurrentBundleID(), "(nil)") << "the shared observer was never told to observe";
}

TEST_F(FrontApplication, ActivationsLeaveNoObjectBehind) {
    const platform_testing::TestClock clock;
    CFWorkspace_StartObservingFrontApplication();
    EXPECT_EQ(platform_testing::LeftOverBy([this] {
                  Activate("com.example.odd");
                  Activate("pid:507");
                  Activate("com.apple.FinalCut");
                  CurrentBundleID();
              }),
              "");
}

// The front application is that of the last notification, whatever the workspace reports by then.
TEST_F(FrontApplication, IsFollowedWhenTheNotificationsComeLate) {
    CFWorkspace_StartObservingFrontApplication();
    const platform_testing::UnderVariant late(platform_testing::Variant::lateActivation);
    const platform_testing::TestClock clock;
    ActivateUnannounced("com.example.unsigned");
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.1, false);
    ActivateUnannounced("com.example.odd");
    EXPECT_EQ(Text([[[NSWorkspace sharedWorkspace] frontmostApplication] bundleIdentifier]),
              "com.example.odd");
    EXPECT_EQ(CurrentBundleID(), "com.apple.FinalCut");
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.2, false);
    EXPECT_EQ(CurrentBundleID(), "com.example.unsigned");
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.1, false);
    EXPECT_EQ(CurrentBundleID(), "com.example.odd");
    EXPECT_EQ(CFWorkspace_CurrentFrontApplicationPID(), 504);
}

// Nor does it matter whether the bundle's information is remembered.
TEST_F(FrontApplication, IsFollowedWithInformationReadAnew) {
    const platform_testing::UnderVariant fresh(platform_testing::Variant::freshBundleInfo);
    CFWorkspace_StartObservingFrontApplication();
    Activate("com.example.unsigned");
    CFStringRef version = nullptr;
    EXPECT_TRUE(CFWorkspace_FrontApplicationShortVersion(&version));
    EXPECT_EQ(Text((NSString*)version), "3.1");
}

}  // namespace
