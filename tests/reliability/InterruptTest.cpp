// Whatever the driver is doing when it is interrupted, it ends at once with status 0 and leaves
// nothing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <random>

#include "tests/reliability/Load.h"
#include "tests/reliability/RequestMix.h"
#include "tests/support/LongForm.h"
#include "tests/support/ProcessState.h"
#include "tests/support/Stage.h"
#include "tests/support/WaitUntil.h"

namespace {

using test_support::ChildProcess;
using test_support::Load;
using test_support::Stage;
using test_support::WaitUntil;
using Clock = std::chrono::steady_clock;

// At its end a process of the sanitizer build searches its memory for what leaked.
#if __has_feature(address_sanitizer)
constexpr std::chrono::seconds kAtOnce(10);
#else
constexpr std::chrono::seconds kAtOnce(1);
#endif

// Before it, the first thing the driver does, no process can promise anything.
bool WaitForHandler(const ChildProcess& driver) {
    return WaitUntil([&] { return test_support::HandlesSignal(driver.pid(), SIGINT); });
}

// How long a driver of this build takes, on this machine at this time, from being able to be
// interrupted to its first reply. Half of the moments tried lie behind it.
Clock::duration TimeToFirstReply(const Load& load) {
    const auto driver = Stage::LaunchDriver();
    EXPECT_TRUE(WaitForHandler(*driver));
    const auto handled = Clock::now();
    EXPECT_TRUE(WaitUntil([&] { return load.Answered() > 0; }));
    const auto time = Clock::now() - handled;
    driver->Signal(SIGINT);
    EXPECT_EQ(driver->WaitForExit(), 0) << driver->StandardError();
    return time;
}

TEST(Interrupt, AtAnyMomentUnderLoadEndsTheDriverWithStatusZeroWithinASecondAndLeavesNothing) {
    Stage stage;
    stage.StartDesktop(test_support::kMixScene);
    stage.StartCompanion({"--units", "1"});
    const auto filesBefore = stage.Session().Files();
    const Load load;

    const auto seed = std::random_device()();
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::int64_t> moment(
        0, duration_cast<std::chrono::microseconds>(2 * TimeToFirstReply(load)).count());
    // Full pipes that nobody reads would stop the desktop, and with it the driver.
    const auto readPipes = [&] {
        stage.Desktop().ForgetOutput();
        stage.Companion().ForgetOutput();
    };
    const int repetitions = test_support::Repetitions(40, 1000);
    for (int i = 0; i < repetitions; ++i) {
        const auto driver = Stage::LaunchDriver();
        ASSERT_TRUE(WaitForHandler(*driver));
        const std::chrono::microseconds delay(moment(random));
        WaitUntil(
            [&] {
                readPipes();
                return false;
            },
            std::chrono::duration<double>(delay).count());
        const auto interrupted = Clock::now();
        driver->Signal(SIGINT);
        int status = -1;
        WaitUntil(
            [&] {
                readPipes();
                return (status = driver->WaitForExit(0.01)) != -1;
            },
            std::chrono::duration<double>(10 * kAtOnce).count());
        ASSERT_EQ(status, 0) << "after " << delay.count() << " us, seed " << seed << ", repetition "
                             << i << "\n"
                             << driver->StandardError();
        ASSERT_LT(Clock::now() - interrupted, kAtOnce);
        ASSERT_THAT(stage.Session().Files(), testing::UnorderedElementsAreArray(filesBefore))
            << "after " << delay.count() << " us, seed " << seed << ", repetition " << i;
    }
    EXPECT_GT(load.Answered(), static_cast<unsigned long>(repetitions));
}

}  // namespace
