// The periodic work: one timer, ten ticks a second, on the main thread.

#import <AppKit/AppKit.h>

#include "VEKCommon/Names.h"
#include "VEKCommon/Signposts.h"
#include "accessibility/calls/ApplicationCall.h"
#include "driver/CVEK_UserSpaceDriver.h"
#include "frontapplication/FrontApplication.h"

namespace {

constexpr CFTimeInterval kTickInterval = 0.1;

bool IsEditor(NSString* bundleID) {
    return [bundleID compare:@kEditorBundleID options:NSLiteralSearch] == NSOrderedSame;
}

// A step of the tick, from here to the end of the scope.
class StepSignpost {
  public:
    explicit StepSignpost(TickStep step) : step_(step) { SignpostStepBegins(step_); }
    ~StepSignpost() { SignpostStepEnds(step_, CallsMade() - callsBefore_); }
    StepSignpost(const StepSignpost&) = delete;
    StepSignpost& operator=(const StepSignpost&) = delete;

  private:
    TickStep step_;
    unsigned long callsBefore_ = CallsMade();
};

class TickSignpost {
  public:
    TickSignpost() { SignpostTickBegins(); }
    ~TickSignpost() { SignpostTickEnds(CallsMade() - callsBefore_); }
    TickSignpost(const TickSignpost&) = delete;
    TickSignpost& operator=(const TickSignpost&) = delete;

  private:
    unsigned long callsBefore_ = CallsMade();
};

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
    const TickSignpost tick;
    if (!localeSent) {
        const StepSignpost step(TickStep::language);
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
            const StepSignpost step(TickStep::profile);
            fcpxProfile = ProfileForVersion(shortVersion);
        }
        if (IsEditor(bundleID) && (observeClipSelection || observeTimelineTimecode)) {
            const OneWait wait;
            if (observeClipSelection) {
                const StepSignpost step(TickStep::clip);
                ObserveFCPXClipSelectionTask();
            }
            if (observeTimelineTimecode) {
                const StepSignpost step(TickStep::timecode);
                ObserveFCPXTimelineTimecodeTask();
            }
            timelineIndexChanged = false;
        }
    }

    if (connected && !statusValid) {
        const StepSignpost step(TickStep::status);
        RequestKRTStatus();
    }
}
