// What is in which mode of which loop: additions and removals that change nothing, and what is left
// when a loop is destroyed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "VEKCommon/OwnedReference.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Membership : public testing::Test {
  protected:
    CFRunLoopSourceRef ReportingSource() {
        return scene_.MakeReportingSource(
            [this](const std::string& report) { reports_.push_back(report); });
    }

    std::vector<std::string> reports_;  // outlives the scene, whose sources report to it
    Scene scene_;
    const CFRunLoopRef loop_ = scene_.Loop();
};

TEST_F(Membership, TypesOfWhatBelongsToALoopBearTheirNames) {
    const std::pair<CFTypeID, CFStringRef> kNames[] = {
        {CFRunLoopGetTypeID(), CFSTR("CFRunLoop")},
        {CFRunLoopSourceGetTypeID(), CFSTR("CFRunLoopSource")},
        {CFRunLoopObserverGetTypeID(), CFSTR("CFRunLoopObserver")},
        {CFRunLoopTimerGetTypeID(), CFSTR("CFRunLoopTimer")},
        {CFMessagePortGetTypeID(), CFSTR("CFMessagePort")}};
    for (const auto& [type, expected] : kNames) {
        const OwnedReference<CFStringRef> name(CFCopyTypeIDDescription(type));
        EXPECT_TRUE(CFEqual(name.get(), expected)) << type;
    }
}

TEST_F(Membership, CommonModesAreNamedByTheirTextAlone) {
    const OwnedReference<CFMutableStringRef> same(CFStringCreateMutable(nullptr, 0));
    CFStringReplaceAll(same.get(), kCFRunLoopCommonModes);
    int fires = 0;
    const auto timer = scene_.AddTimer(
        0.1, 0, [&] { ++fires; }, same.get());
    EXPECT_TRUE(CFRunLoopContainsTimer(loop_, timer, kCFRunLoopCommonModes));
    scene_.Run(1);
    EXPECT_EQ(fires, 1);
}

TEST_F(Membership, AdditionThatIsMadeTwiceIsTakenBackAtOnce) {
    int fires = 0;
    const auto timer = scene_.MakeTimer(0.1, 0.1, [&] { ++fires; });
    for (int i = 0; i < 2; ++i) {
        CFRunLoopAddTimer(loop_, timer, kCFRunLoopCommonModes);
    }
    scene_.Run(0.15);
    EXPECT_EQ(fires, 1);
    CFRunLoopRemoveTimer(loop_, timer, kCFRunLoopCommonModes);
    EXPECT_FALSE(CFRunLoopContainsTimer(loop_, timer, kCFRunLoopCommonModes));
    scene_.Run(1);
    EXPECT_EQ(fires, 1);
}

TEST_F(Membership, ModeThatNobodyUsedHoldsNothing) {
    const auto never = CFSTR("a mode that nobody used");
    EXPECT_FALSE(CFRunLoopContainsSource(loop_, scene_.AddIdleSource(), never));
    EXPECT_FALSE(CFRunLoopContainsTimer(loop_, scene_.AddTimer(1, 0, [] {}), never));
}

TEST_F(Membership, RemovalFromAModeThatASourceIsNotInCancelsNothing) {
    const auto source = ReportingSource();
    CFRunLoopAddSource(loop_, source, kCFRunLoopDefaultMode);
    CFRunLoopRemoveSource(loop_, source, scene_.Custom());
    EXPECT_THAT(reports_, ElementsAre("schedule:kCFRunLoopDefaultMode"));
    EXPECT_TRUE(CFRunLoopContainsSource(loop_, source, kCFRunLoopDefaultMode));
}

TEST_F(Membership, RemovalFromAModeThatATimerIsNotInLeavesItWhereItIs) {
    const auto timer = scene_.AddTimer(1, 0, [] {});
    CFRunLoopRemoveTimer(loop_, timer, scene_.Custom());
    EXPECT_TRUE(CFRunLoopContainsTimer(loop_, timer, kCFRunLoopDefaultMode));
    EXPECT_EQ(CFGetRetainCount(timer), 2);
}

TEST_F(Membership, InvalidSourceIsNotAdded) {
    const auto source = ReportingSource();
    CFRunLoopSourceInvalidate(source);
    CFRunLoopAddSource(loop_, source, kCFRunLoopDefaultMode);
    EXPECT_FALSE(CFRunLoopContainsSource(loop_, source, kCFRunLoopDefaultMode));
    EXPECT_THAT(reports_, IsEmpty());
}

TEST_F(Membership, OfCommonModesEndsForATimerAndAnObserverThatAreInvalidated) {
    const auto timer = scene_.MakeTimer(1, 1, [] {});
    const auto observer = scene_.MakeObserver(kCFRunLoopEntry, [](CFRunLoopActivity) {});
    CFRunLoopAddTimer(loop_, timer, kCFRunLoopCommonModes);
    CFRunLoopAddObserver(loop_, observer, kCFRunLoopCommonModes);
    CFRunLoopTimerInvalidate(timer);
    CFRunLoopObserverInvalidate(observer);
    EXPECT_FALSE(CFRunLoopContainsTimer(loop_, timer, kCFRunLoopCommonModes));
    EXPECT_FALSE(CFRunLoopContainsObserver(loop_, observer, kCFRunLoopCommonModes));
    EXPECT_EQ(CFGetRetainCount(timer), 1);
    EXPECT_EQ(CFGetRetainCount(observer), 1);
}

TEST_F(Membership, ModeThatIsMadeCommonAgainStaysAsItIs) {
    const auto source = ReportingSource();
    CFRunLoopAddSource(loop_, source, kCFRunLoopCommonModes);
    reports_.clear();
    scene_.MakeCustomCommon();
    CFRunLoopRemoveSource(loop_, source, scene_.Custom());
    scene_.MakeCustomCommon();
    EXPECT_THAT(reports_, ElementsAre("schedule:custom", "cancel:custom"));
    EXPECT_FALSE(CFRunLoopContainsSource(loop_, source, scene_.Custom()));
}

TEST_F(Membership, ModeThatHoldsACommonSourceAlreadyIsNotToldAgain) {
    const auto source = ReportingSource();
    CFRunLoopAddSource(loop_, source, kCFRunLoopCommonModes);
    CFRunLoopAddSource(loop_, source, scene_.Custom());
    reports_.clear();
    scene_.MakeCustomCommon();
    EXPECT_THAT(reports_, IsEmpty());
}

TEST_F(Membership, EndsWithALoopForItsTimersAndObservers) {
    int fires = 0;
    const auto timer = scene_.MakeTimer(0.1, 0, [&] { ++fires; });
    const auto observer = scene_.MakeObserver(kCFRunLoopEntry, [](CFRunLoopActivity) {});
    std::thread([&] {
        CFRunLoopAddTimer(CFRunLoopGetCurrent(), timer, kCFRunLoopDefaultMode);
        CFRunLoopAddTimer(CFRunLoopGetCurrent(), timer, scene_.Custom());
        CFRunLoopAddObserver(CFRunLoopGetCurrent(), observer, kCFRunLoopDefaultMode);
        EXPECT_EQ(CFGetRetainCount(timer), 3);
        EXPECT_EQ(CFGetRetainCount(observer), 2);
    }).join();
    EXPECT_EQ(CFGetRetainCount(timer), 1);
    EXPECT_EQ(CFGetRetainCount(observer), 1);
    CFRunLoopAddTimer(loop_, timer, kCFRunLoopDefaultMode);
    scene_.Run(1);
    EXPECT_EQ(fires, 1) << "it belonged to no loop any more";
}

// The loop cannot be referred to while it is destroyed, so the second mode is not notified.
TEST(MembershipOfAGoingLoop, MayBeEndedByTheSourceThatIsCancelled) {
    static CFRunLoopSourceRef source = nullptr;
    static int cancelled = 0;
    CFRunLoopSourceContext context{};
    context.cancel = [](void*, CFRunLoopRef, CFRunLoopMode) {
        ++cancelled;
        CFRunLoopSourceInvalidate(source);
    };
    source = CFRunLoopSourceCreate(nullptr, 0, &context);
    std::thread([] {
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source, CFSTR("another mode"));
    }).join();
    EXPECT_EQ(cancelled, 1);
    EXPECT_FALSE(CFRunLoopSourceIsValid(source));
    EXPECT_EQ(CFGetRetainCount(source), 1);
    CFRelease(source);
}

}  // namespace
}  // namespace run_loop_test
