#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <vector>

#include "platform/CoreFoundation/RunLoop/RunLoopDescriptorSource.h"
#include "platform/LocalSocket/Socket.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

using run_loop::Presence;
using testing::ElementsAre;
using testing::IsEmpty;

class DescriptorSourceTest : public testing::Test {
  protected:
    ~DescriptorSourceTest() override {
        for (const auto source : sources_) {
            CFRunLoopSourceInvalidate(source);
            CFRelease(source);
        }
    }

    // A source that reports under this name and takes the readiness away.
    CFRunLoopSourceRef Add(const std::string& name, int descriptor,
                           Presence presence = Presence::occupiesMode, bool handles = true) {
        const auto source =
            run_loop::CreateDescriptorSource(0, presence, [=, this](int ready, std::uint32_t) {
                calls_.push_back(ready < 0 ? name + " backlog" : name);
                eventfd_t value = 0;
                eventfd_read(ready, &value);
                return handles;
            });
        sources_.push_back(source);
        run_loop::Watch(source, descriptor, EPOLLIN);
        CFRunLoopAddSource(scene_.Loop(), source, kCFRunLoopDefaultMode);
        return source;
    }

    static local_socket::Descriptor Event() {
        return local_socket::Descriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    }

    Scene scene_;
    local_socket::Descriptor first_ = Event();
    local_socket::Descriptor second_ = Event();
    std::vector<std::string> calls_;
    std::vector<CFRunLoopSourceRef> sources_;
};

TEST_F(DescriptorSourceTest, IsPerformedWhenItsDescriptorIsReady) {
    Add("a", first_.get());
    EXPECT_EQ(scene_.Run(0.1, true), kCFRunLoopRunTimedOut);
    eventfd_write(first_.get(), 1);
    EXPECT_EQ(scene_.Run(0.1, true), kCFRunLoopRunHandledSource);
    EXPECT_THAT(calls_, ElementsAre("a"));
}

TEST_F(DescriptorSourceTest, CountsAsHandledOnlyIfItSaysSo) {
    Add("a", first_.get(), Presence::occupiesMode, false);
    eventfd_write(first_.get(), 1);
    EXPECT_EQ(scene_.Run(0.1, true), kCFRunLoopRunTimedOut);
    EXPECT_THAT(calls_, ElementsAre("a"));
}

TEST_F(DescriptorSourceTest, ReadyDescriptorsArePerformedInTheOrderOfTheirReadiness) {
    Add("a", first_.get());
    Add("b", second_.get());
    eventfd_write(second_.get(), 1);
    eventfd_write(first_.get(), 1);
    scene_.Run(0.1);
    EXPECT_THAT(calls_, ElementsAre("b", "a"));
}

TEST_F(DescriptorSourceTest, RunsOnlyInItsModes) {
    Add("a", first_.get());
    scene_.AddIdleSource(scene_.Custom());
    eventfd_write(first_.get(), 1);
    scene_.Run(0.1, false, scene_.Custom());
    EXPECT_THAT(calls_, IsEmpty());
    CFRunLoopAddSource(scene_.Loop(), sources_[0], scene_.Custom());
    scene_.Run(0.1, false, scene_.Custom());
    EXPECT_THAT(calls_, ElementsAre("a"));
}

TEST_F(DescriptorSourceTest, UnwatchedRemovedAndInvalidatedSourcesStayQuiet) {
    const auto unwatched = Add("a", first_.get());
    const auto removed = Add("b", second_.get());
    const auto third = Event();
    const auto invalidated = Add("c", third.get());
    run_loop::Unwatch(unwatched, first_.get());
    CFRunLoopRemoveSource(scene_.Loop(), removed, kCFRunLoopDefaultMode);
    CFRunLoopSourceInvalidate(invalidated);
    for (const int descriptor : {first_.get(), second_.get(), third.get()}) {
        eventfd_write(descriptor, 1);
    }
    scene_.Run(0.1);
    EXPECT_THAT(calls_, IsEmpty());
    CFRunLoopAddSource(scene_.Loop(), removed, kCFRunLoopDefaultMode);
    run_loop::Watch(unwatched, first_.get(), EPOLLIN);
    scene_.Run(0.1);
    EXPECT_THAT(calls_, testing::UnorderedElementsAre("a", "b"));
}

TEST_F(DescriptorSourceTest, SourceThatATimerEndsInTheSamePassIsNotPerformed) {
    const auto source = Add("a", first_.get());
    eventfd_write(first_.get(), 1);
    run_loop::SetBacklog(source, true);
    scene_.AddTimer(0, 0, [&] { CFRunLoopSourceInvalidate(source); });
    scene_.Run(0.1);
    EXPECT_THAT(calls_, IsEmpty());
}

TEST_F(DescriptorSourceTest, DescriptorThatATimerUnwatchesInTheSamePassIsNotReported) {
    const auto source = Add("a", first_.get());
    eventfd_write(first_.get(), 1);
    scene_.AddTimer(0, 0, [&] { run_loop::Unwatch(source, first_.get()); });
    scene_.Run(0.1);
    EXPECT_THAT(calls_, IsEmpty());
}

TEST_F(DescriptorSourceTest, BacklogThatATimerWorksOffInTheSamePassIsNotPerformed) {
    const auto source = Add("a", first_.get());
    run_loop::SetBacklog(source, true);
    scene_.AddTimer(0, 0, [&] { run_loop::SetBacklog(source, false); });
    scene_.Run(0.1);
    EXPECT_THAT(calls_, IsEmpty());
}

TEST_F(DescriptorSourceTest, WatchingAgainForTheSameAndUnwatchingAStrangerChangeNothing) {
    const auto source = Add("a", first_.get());
    run_loop::Watch(source, first_.get(), EPOLLIN);
    run_loop::Unwatch(source, second_.get());
    eventfd_write(first_.get(), 1);
    scene_.Run(0.1);
    EXPECT_THAT(calls_, ElementsAre("a"));
    run_loop::Unwatch(source, first_.get());
    eventfd_write(first_.get(), 1);
    scene_.Run(0.1);
    EXPECT_THAT(calls_, ElementsAre("a")) << "it was watched twice";
}

TEST_F(DescriptorSourceTest, CannotBeSignalled) {
    const auto source = Add("a", first_.get());
    CFRunLoopSourceSignal(source);
    EXPECT_EQ(scene_.Run(0.1, true), kCFRunLoopRunTimedOut);
    EXPECT_THAT(calls_, IsEmpty());
}

TEST_F(DescriptorSourceTest, UnnoticedSourceLeavesItsModeEmpty) {
    const auto source = run_loop::CreateDescriptorSource(0, Presence::unnoticed,
                                                         [](int, std::uint32_t) { return true; });
    sources_.push_back(source);
    CFRunLoopAddSource(scene_.Loop(), source, scene_.Custom());
    EXPECT_EQ(scene_.Run(1, false, scene_.Custom()), kCFRunLoopRunFinished);
}

TEST_F(DescriptorSourceTest, BacklogAndReadyDescriptorsTakeTurns) {
    int left = 6;
    CFRunLoopSourceRef busy = nullptr;
    busy = run_loop::CreateDescriptorSource(0, Presence::occupiesMode, [&](int, std::uint32_t) {
        calls_.push_back("backlog");
        run_loop::SetBacklog(busy, --left > 0);
        return true;
    });
    sources_.push_back(busy);
    CFRunLoopAddSource(scene_.Loop(), busy, kCFRunLoopDefaultMode);
    run_loop::SetBacklog(busy, true);
    Add("ready", first_.get());
    eventfd_write(first_.get(), 1);
    scene_.Run(0.1);
    EXPECT_THAT(calls_, ElementsAre("backlog", "ready", "backlog", "backlog", "backlog", "backlog",
                                    "backlog"));
}

TEST_F(DescriptorSourceTest, TimersFireInSpiteOfADescriptorThatIsAlwaysReady) {
    const auto always =
        run_loop::CreateDescriptorSource(0, Presence::occupiesMode, [this](int, std::uint32_t) {
            scene_.Spend(0.01);
            return false;
        });
    sources_.push_back(always);
    eventfd_write(first_.get(), 1);
    run_loop::Watch(always, first_.get(), EPOLLIN);
    CFRunLoopAddSource(scene_.Loop(), always, kCFRunLoopDefaultMode);
    int fires = 0;
    scene_.AddTimer(0.1, 0.1, [&] { ++fires; });
    scene_.Run(1.05);
    EXPECT_EQ(fires, 10);
}

}  // namespace
}  // namespace run_loop_test
