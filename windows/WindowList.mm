#import <AppKit/AppKit.h>

#include "accessibility/calls/ApplicationCall.h"
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
    AXUIElementRef application = AXUIElementCreateApplication(frontProcess);
    if (application == nullptr) {
        return nil;
    }
    if (debug) {
        NSLog(@"CopyApplicationWindowList %@ retain count = %ld", label,
              CFGetRetainCount(application));
    }
    CFTypeRef windows = nullptr;
    const AXError error = CallApplication(application, [&] {
        return AXUIElementCopyAttributeValue(application, kAXWindowsAttribute, &windows);
    });
    CFRelease(application);
    if (error != kAXErrorSuccess) {
        if (debug) {
            NSLog(@"CopyApplicationWindowList %@ AXUIElementCopyAttributeValue err = %.8x\n", label,
                  static_cast<unsigned>(error));
        }
        return nil;
    }
    // What an application calls its window list need not be one.
    id list = [(id)windows autorelease];
    return [list isKindOfClass:[NSArray class]] ? list : nil;
}

// Signatures are taken from the front-application observer, so this answers 0 whatever it is given.
OSType CVEK_UserSpaceDriver::GetSigFromPSN(ProcessSerialNumber*) {
    return 0;
}
