#include "platform/Testing/TestClock.h"

#include "platform/CoreFoundation/RunLoop/RunLoopClock.h"

namespace platform_testing {

TestClock::TestClock(CFAbsoluteTime start) {
    run_loop::InstallTestClock(start);
}

TestClock::~TestClock() {
    run_loop::RemoveTestClock();
}

void TestClock::Advance(CFTimeInterval seconds) {
    run_loop::AdvanceTestClockTo(run_loop::Later(run_loop::Now(), run_loop::Nanoseconds(seconds)));
}

}  // namespace platform_testing
