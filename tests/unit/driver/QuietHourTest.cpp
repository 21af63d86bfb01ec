// An unchanging scene costs the same in every tick, and is not reported again.

#include <set>

#include "tests/support/SentMessages.h"
#include "tests/unit/driver/TickedDriver.h"

namespace {

// Under AddressSanitizer every allocation records its whole stack, which makes the hour last three
// minutes; five minutes of ticks show an error of memory as well.
#if __has_feature(address_sanitizer)
constexpr int kTicks = 3000;
#else
constexpr int kTicks = 36000;
#endif

class QuietHour : public TickedDriver {
  protected:
    QuietHour() : TickedDriver(SceneWithController()) {
        companion_->reply = test_support::Bytes(28);
    }
    ~QuietHour() override {
        driver_->StopTimeoutCounter();
        for (const CFRunLoopTimerRef timer : timers_) {
            CFRunLoopTimerInvalidate(timer);
            CFRelease(timer);
        }
    }

    // Half-way between two ticks, every time.
    void SampleExchanges() {
        CFRunLoopTimerContext context = {0, &samples_, nullptr, nullptr, nullptr};
        CFRunLoopTimerRef timer = CFRunLoopTimerCreate(
            kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + 0.05, 0.1, 0, 0,
            [](CFRunLoopTimerRef, void* samples) {
                static_cast<std::vector<unsigned long>*>(samples)->push_back(
                    desktop_link::ExchangeCount());
            },
            &context);
        CFRunLoopAddTimer(CFRunLoopGetCurrent(), timer, kCFRunLoopDefaultMode);
        timers_.push_back(timer);
    }

    // What each tick between two samples exchanged with the desktop.
    std::multiset<unsigned long> ExchangesPerTick() const {
        std::multiset<unsigned long> exchanges;
        for (std::size_t index = 1; index < samples_.size(); ++index) {
            exchanges.insert(samples_[index] - samples_[index - 1]);
        }
        return exchanges;
    }

    std::vector<CFRunLoopTimerRef> timers_;
    std::vector<unsigned long> samples_;
};

TEST_F(QuietHour, SendsNothingAfterTheFirstAndExchangesTheSameInEveryTick) {
    ObserveBoth();
    driver_->StartTimeoutCounter();
    timers_.push_back(DriverInspector::TimeoutTimer(*driver_));
    RunLoopFor(0.11);  // the first tick finds the controls
    EXPECT_THAT(CodesOf(companion_->received), testing::ElementsAre(kJSLg, kJFSC, kJFTC, kStus));

    RunLoopFor(0.1);
    SampleExchanges();
    const platform_testing::LogCapture log;
    RunLoopFor(0.1 * kTicks + 0.08);
    driver_->StopTimeoutCounter();

    EXPECT_THAT(samples_, testing::SizeIs(kTicks + 1));
    const std::multiset<unsigned long> exchanges = ExchangesPerTick();
    EXPECT_EQ(*exchanges.begin(), *exchanges.rbegin()) << "fewest and most of one tick";
    EXPECT_GT(*exchanges.begin(), 0u) << "the controls are read in every tick";
    EXPECT_THAT(companion_->received, testing::SizeIs(4)) << "nothing more was sent";
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}

}  // namespace
