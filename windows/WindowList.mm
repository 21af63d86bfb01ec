#import <AppKit/AppKit.h>

#include <utility>

#include "VEKCommon/Autoreleased.h"
#include "accessibility/calls/AccessibilityCalls.h"
#include "driver/CVEK_UserSpaceDriver.h"
#include "frontapplication/FrontApplication.h"

// The front application's windows. Callers within the driver pass `debug` false and an empty label:
// the log lines are for diagnosis.
NSArray* CVEK_UserSpaceDriver::CopyApplicationWindowList(bool debug, NSString* label) {
    if (debug) {
        NSLog(@"CopyApplicationWindowList");
    }
    const pid_t frontProcess = CFWorkspace_CurrentFrontApplicationPID();
    if (frontProcess == -1) {
        return nil;
    }
    const OwnedReference<AXUIElementRef> application = CreateApplicationElement(frontProcess);
    if (!application) {
        return nil;
    }
    if (debug) {
        NSLog(@"CopyApplicationWindowList %@ retain count = %ld", label,
              CFGetRetainCount(application.get()));
    }
    CallResult<OwnedReference<CFArrayRef>> windows = ReadWindows(application.get());
    if (!windows && windows.Failure().error != kAXErrorSuccess && debug) {
        NSLog(@"CopyApplicationWindowList %@ AXUIElementCopyAttributeValue err = %.8x\n", label,
              static_cast<unsigned>(windows.Failure().error));
    }
    return (NSArray*)Autoreleased<CFArrayRef>(std::move(windows).ValueOrEmpty());
}

OSType CVEK_UserSpaceDriver::GetSigFromPSN(ProcessSerialNumber*) {
    return 0;
}
