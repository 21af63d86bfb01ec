#include "platform/CoreFoundation/RunLoop/RunLoopClock.h"

#include <CoreFoundation/CFDate.h>

#include <atomic>
#include <cmath>
#include <ctime>

extern "C" {
const CFTimeInterval kCFAbsoluteTimeIntervalSince1970 = 978307200.0;
}

namespace run_loop {
namespace {

constexpr double kNanosecondsPerSecond = 1e9;
constexpr std::int64_t kNoTestClock = -1;

// Nanoseconds since the test clock was installed, and the date it then showed.
std::atomic<std::int64_t> testTime = kNoTestClock;
std::atomic<CFAbsoluteTime> testStart = 0;

double Seconds(std::int64_t nanoseconds) {
    return static_cast<double>(nanoseconds) / kNanosecondsPerSecond;
}

}  // namespace

Instant MonotonicNow() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

Instant Now() {
    const std::int64_t time = testTime;
    return time == kNoTestClock ? MonotonicNow() : time;
}

std::int64_t Nanoseconds(CFTimeInterval seconds) {
    // Half the range leaves room to add such a number to any instant.
    constexpr Instant kHalfRange = kNever / 2;
    constexpr double kLongest = static_cast<double>(kHalfRange);
    const double nanoseconds = seconds * kNanosecondsPerSecond;
    if (std::isnan(nanoseconds)) {
        return 0;
    }
    if (nanoseconds >= kLongest) {
        return kNever;
    }
    return std::llround(std::fmax(nanoseconds, -kLongest));
}

Instant Later(Instant start, std::int64_t interval) {
    return interval >= kNever - start ? kNever : start + interval;
}

Instant InstantOf(CFAbsoluteTime date) {
    return Later(Now(), Nanoseconds(date - CFAbsoluteTimeGetCurrent()));
}

CFAbsoluteTime DateOf(Instant instant) {
    return CFAbsoluteTimeGetCurrent() + Seconds(instant) - Seconds(Now());
}

void InstallTestClock(CFAbsoluteTime start) {
    testStart = start;
    testTime = 0;
}

void RemoveTestClock() {
    testTime = kNoTestClock;
}

bool TestClockInstalled() {
    return testTime != kNoTestClock;
}

void AdvanceTestClockTo(Instant instant) {
    std::int64_t time = testTime;
    while (time < instant && !testTime.compare_exchange_weak(time, instant)) {
    }
}

}  // namespace run_loop

CFAbsoluteTime CFAbsoluteTimeGetCurrent(void) {
    if (run_loop::TestClockInstalled()) {
        return run_loop::testStart + run_loop::Seconds(run_loop::Now());
    }
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    return static_cast<double>(time.tv_sec) - kCFAbsoluteTimeIntervalSince1970 +
           run_loop::Seconds(time.tv_nsec);
}
