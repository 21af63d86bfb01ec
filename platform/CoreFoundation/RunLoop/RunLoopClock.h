// The time by which run loops wait and timers fire.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <cstdint>
#include <limits>

namespace run_loop {

// Nanoseconds of the monotonic clock, or of the test clock while one is installed.
using Instant = std::int64_t;
constexpr Instant kNever = std::numeric_limits<Instant>::max();

Instant Now();

// An interval in seconds as nanoseconds; kNever when it is too long to count, and 0 for NaN.
std::int64_t Nanoseconds(CFTimeInterval seconds);

// start + interval; kNever when that is too late to count. The start is not negative.
Instant Later(Instant start, std::int64_t interval);

// The instant of a date, which must not be NaN. Setting the system's clock later does not move it.
Instant InstantOf(CFAbsoluteTime date);
CFAbsoluteTime DateOf(Instant instant);

// Real nanoseconds, whatever clock is installed.
Instant MonotonicNow();

// See platform/Testing/TestClock.h. While one is installed, time does not pass by itself.
void InstallTestClock(CFAbsoluteTime start);
void RemoveTestClock();
bool TestClockInstalled();
void AdvanceTestClockTo(Instant instant);  // never backwards

}  // namespace run_loop
