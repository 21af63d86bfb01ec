// Observers of a run loop, beyond the reference scenarios.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

using testing::ElementsAre;

class Observers : public testing::Test {
  protected:
    Scene::ActivityCallback Note(int number) {
        return [this, number](CFRunLoopActivity) { told_.push_back(number); };
    }

    Scene scene_;
    CFRunLoopTimerRef timer_ = scene_.AddTimer(10, 0, [] {});  // something to wait for
    std::vector<int> told_;
};

TEST_F(Observers, AreToldInTheirOrderAndEqualOnesAsTheyWereAdded) {
    scene_.AddObserver(kCFRunLoopEntry, Note(3), 5);
    scene_.AddObserver(kCFRunLoopEntry, Note(1), -1);
    scene_.AddObserver(kCFRunLoopEntry, Note(4), 5);
    scene_.AddObserver(kCFRunLoopEntry, Note(2), 0);
    scene_.Run(0);
    EXPECT_THAT(told_, ElementsAre(1, 2, 3, 4));
}

TEST_F(Observers, AreToldOfWhatTheyAskedForOnly) {
    std::vector<CFRunLoopActivity> activities;
    scene_.AddObserver(kCFRunLoopBeforeWaiting | kCFRunLoopExit,
                       [&](CFRunLoopActivity activity) { activities.push_back(activity); });
    scene_.Run(0.1);
    EXPECT_THAT(activities, ElementsAre(kCFRunLoopBeforeWaiting, kCFRunLoopExit));
}

TEST_F(Observers, AreNotToldOfWaitingByARunThatOnlyLooks) {
    scene_.AddObserver(kCFRunLoopBeforeWaiting | kCFRunLoopAfterWaiting, Note(1));
    scene_.Run(0);
    EXPECT_TRUE(told_.empty());
}

TEST_F(Observers, OneThatDoesNotRepeatIsInvalidAfterItsFirstCall) {
    const auto observer = scene_.AddObserver(kCFRunLoopEntry, Note(1), 0, false);
    EXPECT_TRUE(CFRunLoopObserverIsValid(observer));
    scene_.Run(0);
    scene_.Run(0);
    EXPECT_THAT(told_, ElementsAre(1));
    EXPECT_FALSE(CFRunLoopObserverIsValid(observer));
    EXPECT_FALSE(CFRunLoopContainsObserver(scene_.Loop(), observer, kCFRunLoopDefaultMode));
}

TEST_F(Observers, OneIsNotToldInsideItsOwnCallback) {
    scene_.AddObserver(kCFRunLoopEntry, [this](CFRunLoopActivity) {
        told_.push_back(1);
        scene_.Run(0);
    });
    scene_.Run(0);
    EXPECT_THAT(told_, ElementsAre(1));
}

TEST_F(Observers, OneThatAnotherInvalidatedIsNotTold) {
    CFRunLoopObserverRef second = nullptr;
    scene_.AddObserver(kCFRunLoopEntry,
                       [&](CFRunLoopActivity) { CFRunLoopObserverInvalidate(second); });
    second = scene_.AddObserver(kCFRunLoopEntry, Note(2));
    scene_.Run(0);
    EXPECT_TRUE(told_.empty());
}

TEST_F(Observers, OneAddedBeforeTheWaitIsToldAfterIt) {
    scene_.AddObserver(
        kCFRunLoopBeforeWaiting,
        [this](CFRunLoopActivity) { scene_.AddObserver(kCFRunLoopAfterWaiting, Note(1)); }, 0,
        false);
    scene_.Run(0.1);
    EXPECT_THAT(told_, ElementsAre(1));
}

TEST_F(Observers, TimerAddedBeforeTheWaitEndsIt) {
    double fired = 0;
    scene_.AddObserver(
        kCFRunLoopBeforeWaiting,
        [&](CFRunLoopActivity) { scene_.AddTimer(0.1, 0, [&] { fired = scene_.Time(); }); }, 0,
        false);
    scene_.Run(1);
    EXPECT_NEAR(fired, 0.1, 0.001);
}

TEST_F(Observers, AddedToTheCommonModesAreToldInEveryOneOfThem) {
    const auto observer = scene_.MakeObserver(kCFRunLoopEntry, Note(1));
    CFRunLoopAddObserver(scene_.Loop(), observer, kCFRunLoopCommonModes);
    scene_.MakeCustomCommon();
    scene_.AddIdleSource(scene_.Custom());
    scene_.Run(0);
    scene_.Run(0, false, scene_.Custom());
    EXPECT_THAT(told_, ElementsAre(1, 1));
    EXPECT_TRUE(CFRunLoopContainsObserver(scene_.Loop(), observer, kCFRunLoopCommonModes));
    CFRunLoopRemoveObserver(scene_.Loop(), observer, kCFRunLoopCommonModes);
    scene_.Run(0);
    scene_.Run(0, false, scene_.Custom());
    EXPECT_THAT(told_, ElementsAre(1, 1));
}

TEST_F(Observers, BelongToOneLoop) {
    const auto observer = scene_.AddObserver(kCFRunLoopEntry, Note(1));
    std::thread([observer] {
        CFRunLoopAddObserver(CFRunLoopGetCurrent(), observer, kCFRunLoopDefaultMode);
        EXPECT_FALSE(
            CFRunLoopContainsObserver(CFRunLoopGetCurrent(), observer, kCFRunLoopDefaultMode));
    }).join();
    EXPECT_TRUE(CFRunLoopContainsObserver(scene_.Loop(), observer, kCFRunLoopDefaultMode));
}

TEST_F(Observers, InvalidOneIsNotAdded) {
    const auto observer = scene_.MakeObserver(kCFRunLoopEntry, Note(1));
    CFRunLoopObserverInvalidate(observer);
    CFRunLoopAddObserver(scene_.Loop(), observer, kCFRunLoopDefaultMode);
    EXPECT_FALSE(CFRunLoopContainsObserver(scene_.Loop(), observer, kCFRunLoopDefaultMode));
}

TEST_F(Observers, AreToldOfWaitingInEveryPassOfALoopThatIsNeverIdle) {
    int fires = 0;
    scene_.AddTimer(0.1, 0.1, [&] {
        ++fires;
        scene_.Spend(0.2);  // the next date is over before the callback returns
    });
    scene_.AddObserver(kCFRunLoopBeforeWaiting, Note(1));
    scene_.Run(2);
    EXPECT_GT(fires, 4);
    EXPECT_GE(told_.size(), static_cast<std::size_t>(fires));
}

int retained = 0;

TEST(ObserverContext, InfoIsRetainedOnceAndReleasedWithTheObserver) {
    CFRunLoopObserverContext context{};
    context.retain = [](const void* info) {
        ++retained;
        return info;
    };
    context.release = [](const void*) { --retained; };
    const auto observer = CFRunLoopObserverCreate(
        kCFAllocatorDefault, kCFRunLoopEntry, true, 0,
        [](CFRunLoopObserverRef, CFRunLoopActivity, void*) {}, &context);
    EXPECT_EQ(retained, 1);
    EXPECT_EQ(CFGetTypeID(observer), CFRunLoopObserverGetTypeID());
    CFRelease(observer);
    EXPECT_EQ(retained, 0);
}

}  // namespace
}  // namespace run_loop_test
