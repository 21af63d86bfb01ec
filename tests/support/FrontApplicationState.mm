#include "tests/support/FrontApplicationState.h"

#import "frontapplication/VEK_Driver_FrontAppObserver.h"

namespace test_support {

namespace {

NSString* Text(const char* text) {
    return text != nullptr ? [NSString stringWithUTF8String:text] : nil;
}

}  // namespace

void SetFrontApplication(const FrontApplicationState& state) {
    @autoreleasepool {
        VEK_Driver_FrontAppObserver* observer = [VEK_Driver_FrontAppObserver frontAppObserver];
        [observer setBundleID:Text(state.bundleIdentifier)];
        [observer setShortVersion:Text(state.shortVersion)];
        [observer setProcessID:state.process];
    }
}

}  // namespace test_support
