// The periodic work: one timer, ten ticks a second, on the main thread.

#import <AppKit/AppKit.h>

#include "VEKCommon/Names.h"
#include "accessibility/calls/ApplicationCall.h"
#include "driver/CVEK_UserSpaceDriver.h"
#include "frontapplication/FrontApplication.h"

namespace {

constexpr CFTimeInterval kTickInterval = 0.1;

bool IsEditor(NSString* bundleID) {
    return [bundleID compare:@kEditorBundleID options:NSLiteralSearch] == NSOrderedSame;
}

}  // namespace

// In the default mode only, unlike the message port's source: no tick while the loop runs in
// another mode.
void CVEK_UserSpaceDriver::StartTimeoutCounter() {
    timeoutTimer =
        CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + kTickInterval,
                             kTickInterval, 0, 0, TimeoutCounterEntry, nullptr);
    CFRunLoopAddTimer(CFRunLoopGetCurrent(), timeoutTimer, kCFRunLoopDefaultMode);
}

// The timer is neither invalidated nor released: the process ends right afterwards.
void CVEK_UserSpaceDriver::StopTimeoutCounter() {
    if (timeoutTimer != nullptr) {
        CFRunLoopRemoveTimer(CFRunLoopGetCurrent(), timeoutTimer, kCFRunLoopDefaultMode);
        timeoutTimer = nullptr;
    }
}

void CVEK_UserSpaceDriver::TimeoutCounterEntry(CFRunLoopTimerRef, void*) {
    if (sSelf != nullptr) {
        @autoreleasepool {
            sSelf->TimeoutCounter();
        }
    }
}

void CVEK_UserSpaceDriver::TimeoutCounter() {
    if (!localeSent) {
        localeSent = GetLocale();
    }

    UInt32 signature = 0;
    NSString* bundleID = nil;
    CFWorkspace_CurrentFrontApplicationSignatureAndID(&signature, &bundleID);
    if (bundleID != nil) {
        // The profile follows any application in front, not only the editor: the version of another
        // application normally selects the default row.
        CFStringRef shortVersion = nullptr;
        if (CFWorkspace_FrontApplicationShortVersion(&shortVersion)) {
            fcpxProfile = ProfileForVersion(shortVersion);
        }
        if (IsEditor(bundleID) && (observeClipSelection || observeTimelineTimecode)) {
            const OneWait wait;
            if (observeClipSelection) {
                ObserveFCPXClipSelectionTask();
            }
            if (observeTimelineTimecode) {
                ObserveFCPXTimelineTimecodeTask();
            }
            timelineIndexChanged = false;
        }
    }

    if (connected && !statusValid) {
        RequestKRTStatus();
    }
}
