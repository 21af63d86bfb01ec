// A driver for one test, without its timer: the test decides when a tick is.
//
// The process of a real driver ends right after its destructor, which therefore leaves objects and
// its static pointer behind; here they are cleaned up.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "driver/CVEK_UserSpaceDriver.h"
#include "tests/support/DriverInspector.h"

namespace test_support {

template <class Driver>
class TestDriverOf {
  public:
    TestDriverOf() {
        if (const CFRunLoopTimerRef timer = DriverInspector::TimeoutTimer(driver_)) {
            driver_.StopTimeoutCounter();
            CFRelease(timer);
        }
    }
    TestDriverOf(const TestDriverOf&) = delete;
    TestDriverOf& operator=(const TestDriverOf&) = delete;
    ~TestDriverOf() {
        CFRelease(DriverInspector::LastTimecode(driver_));
        CVEK_UserSpaceDriver::sSelf = nullptr;
    }

    Driver& operator*() { return driver_; }
    Driver* operator->() { return &driver_; }

  private:
    Driver driver_;
};

using TestDriver = TestDriverOf<CVEK_UserSpaceDriver>;

}  // namespace test_support
