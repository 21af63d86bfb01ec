// What the driver knows of the front application, through activations on a desktop.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Testing/LiveObjects.h"
#include "tests/support/InProcessDesktop.h"
#include "workspace/FrontApplication.h"
#import "workspace/VEK_Driver_FrontAppObserver.h"

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
        // Another one becomes the shared one, so that nobody is left with this test's.
        [[[VEK_Driver_FrontAppObserver alloc] init] release];
        [observer release];
    }

    void Activate(const std::string& application) {
        desktop.Run(R"({"command": "activate", "application": ")" + application + "\"}");
    }

    platform_testing::AutoreleasePool pool;
    test_support::InProcessDesktop desktop{kScene};
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
    test_support::InProcessDesktop empty(R"({"front": null, "applications": []})");
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

TEST_F(FrontApplication, CallbackIsKeptAndNeverCalled) {
    static int calls = 0;
    observer.callback = [] { ++calls; };
    CFWorkspace_StartObservingFrontApplication();
    Activate("com.example.odd");
    EXPECT_NE(observer.callback, nullptr);
    EXPECT_EQ(calls, 0);
}

TEST_F(FrontApplication, DeadObserverIsNoLongerNotified) {
    VEK_Driver_FrontAppObserver* shortLived = [[VEK_Driver_FrontAppObserver alloc] init];
    [shortLived observe];
    observer = [observer init];  // shared again, so that nobody holds the short-lived one
    [shortLived release];
    Activate("com.example.odd");
    EXPECT_EQ(CurrentBundleID(), "(nil)") << "the shared observer was never told to observe";
}

TEST_F(FrontApplication, ActivationsLeaveNoObjectBehind) {
    CFWorkspace_StartObservingFrontApplication();
    EXPECT_EQ(platform_testing::LeftOverBy([this] {
                  Activate("com.example.odd");
                  Activate("pid:507");
                  Activate("com.apple.FinalCut");
                  CurrentBundleID();
              }),
              "");
}

}  // namespace
