// For tests under the variant in which activations are announced late.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "platform/Variants/Variants.h"

namespace test_support {

// Under that variant: returns when the process has been told of every activation so far. In a
// common mode of its own, so that nothing of the default mode, such as a tick, comes meanwhile.
inline void AwaitActivations() {
    if (!platform_testing::IsOn(platform_testing::Variant::lateActivation)) {
        return;
    }
    static const CFStringRef mode = [] {
        CFRunLoopAddCommonMode(CFRunLoopGetMain(), CFSTR("awaiting activations"));
        return CFSTR("awaiting activations");
    }();
    CFRunLoopRunInMode(mode, 0.26, false);
}

}  // namespace test_support
