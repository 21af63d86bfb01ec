// Waits with a run loop that runs in the default mode, as the driver's does.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>

namespace test_support {

// Handles what comes until the condition holds; false when it does not within `seconds`. A clock of
// the test's own stands still as long as there is something to handle.
inline bool RunLoopUntil(const std::function<bool()>& condition, CFTimeInterval seconds = 10) {
    constexpr CFTimeInterval kStep = 0.01;  // what no source announces is noticed so soon
    const CFAbsoluteTime deadline = CFAbsoluteTimeGetCurrent() + seconds;
    while (!condition()) {
        if (CFRunLoopRunInMode(kCFRunLoopDefaultMode, kStep, true) == kCFRunLoopRunFinished ||
            CFAbsoluteTimeGetCurrent() > deadline) {
            return condition();
        }
    }
    return true;
}

}  // namespace test_support
