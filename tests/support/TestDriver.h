// A driver for one test, without its timer: the test decides when a tick is.
//
// The process of a real driver ends right after its destructor, which therefore leaves objects and
// its static pointer behind; here they are cleaned up.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "driver/CVEK_UserSpaceDriver.h"
#include "tests/support/DriverInspector.h"

namespace test_support {

class TestDriver {
  public:
    TestDriver() {
        if (const CFRunLoopTimerRef timer = DriverInspector::TimeoutTimer(driver_)) {
            driver_.StopTimeoutCounter();
            CFRelease(timer);
        }
    }
    TestDriver(const TestDriver&) = delete;
    TestDriver& operator=(const TestDriver&) = delete;
    ~TestDriver() {
        CFRelease(DriverInspector::LastTimecode(driver_));
        CVEK_UserSpaceDriver::sSelf = nullptr;
    }

    CVEK_UserSpaceDriver& operator*() { return driver_; }
    CVEK_UserSpaceDriver* operator->() { return &driver_; }

  private:
    CVEK_UserSpaceDriver driver_;
};

}  // namespace test_support
