#include <csignal>

#import <AppKit/AppKit.h>

#include "driver/CVEK_UserSpaceDriver.h"
#include "driver/Interrupts.h"
#include "frontapplication/FrontApplication.h"

int main(int, char**) {
    signal(SIGINT, CVEK_UserSpaceDriver::SignalHandler);
    AllowInterruptsOnlyWhileWaiting();
    CVEK_UserSpaceDriver* driver = new CVEK_UserSpaceDriver;
    @autoreleasepool {
        CFWorkspace_StartObservingFrontApplication();
    }
    [[NSRunLoop currentRunLoop] run];
    delete driver;
    return 0;
}
