// Signalled sources beyond the reference scenarios.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

using testing::ElementsAre;

std::vector<std::string> events;

TEST(SourceContext, InfoIsRetainedOnceAndReleasedWhenTheSourceEnds) {
    events.clear();
    CFRunLoopSourceContext context{};
    context.retain = [](const void* info) {
        events.push_back("retain");
        return info;
    };
    context.release = [](const void*) { events.push_back("release"); };
    const auto source = CFRunLoopSourceCreate(nullptr, 0, &context);
    EXPECT_THAT(events, ElementsAre("retain"));
    CFRunLoopSourceInvalidate(source);
    EXPECT_THAT(events, ElementsAre("retain", "release"));
    CFRelease(source);
    EXPECT_THAT(events, ElementsAre("retain", "release"));
}

TEST(SourceContext, NeedsNothingToPerform) {
    Scene scene;
    CFRunLoopSourceContext context{};
    const auto source = CFRunLoopSourceCreate(nullptr, 0, &context);
    CFRunLoopAddSource(scene.Loop(), source, kCFRunLoopDefaultMode);
    CFRunLoopSourceSignal(source);
    EXPECT_EQ(scene.Run(1, true), kCFRunLoopRunHandledSource);
    EXPECT_EQ(scene.Run(1, true), kCFRunLoopRunTimedOut);
    CFRunLoopSourceInvalidate(source);
    CFRelease(source);
}

class SignalledSources : public testing::Test {
  protected:
    // Both are signalled; what the first does is done before the second's turn.
    void RunBoth(Scene::Callback first) {
        const auto earlier = scene_.AddSource(std::move(first), kCFRunLoopDefaultMode, 1);
        second_ = scene_.AddSource([this] { ++performed_; }, kCFRunLoopDefaultMode, 2);
        CFRunLoopSourceSignal(earlier);
        CFRunLoopSourceSignal(second_);
        scene_.Run(0);
    }

    Scene scene_;
    CFRunLoopSourceRef second_ = nullptr;
    int performed_ = 0;
};

TEST_F(SignalledSources, OneThatAnEarlierOneInvalidatedIsNotPerformed) {
    RunBoth([this] { CFRunLoopSourceInvalidate(second_); });
    EXPECT_EQ(performed_, 0);
}

TEST_F(SignalledSources, OneThatWasPerformedInsideAnEarlierOneIsNotPerformedAgain) {
    int performedInside = -1;
    RunBoth([&] {
        scene_.Run(0);
        performedInside = performed_;
    });
    EXPECT_EQ(performedInside, 1);
    EXPECT_EQ(performed_, 1);
}

TEST(RunLoopArgumentsDeathTest, OfNoneOrAnotherTypeStopTheProcess) {
    Scene scene;
    const auto timer = scene.AddTimer(1, 0, [] {});
    EXPECT_DEATH(CFRunLoopSourceCreate(nullptr, 0, nullptr), "CFRunLoopSourceCreate: null context");
    EXPECT_DEATH(CFRunLoopSourceInvalidate(nullptr), "CFRunLoopSourceInvalidate: null argument");
    EXPECT_DEATH(CFRunLoopSourceInvalidate((CFRunLoopSourceRef)timer),
                 "CFRunLoopSourceInvalidate: argument of another type");
    EXPECT_DEATH(CFRunLoopSourceInvalidate((CFRunLoopSourceRef)CFSTR("text")),
                 "CFRunLoopSourceInvalidate: argument of another type");
}

}  // namespace
}  // namespace run_loop_test
