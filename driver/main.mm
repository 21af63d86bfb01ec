#include <csignal>

#import <AppKit/AppKit.h>

#include "driver/CVEK_UserSpaceDriver.h"
#include "workspace/FrontApplication.h"

int main(int, char**) {
    signal(SIGINT, CVEK_UserSpaceDriver::SignalHandler);
    CVEK_UserSpaceDriver* driver = new CVEK_UserSpaceDriver;
    @autoreleasepool {  // the run loop has not made its own yet
        CFWorkspace_StartObservingFrontApplication();
    }
    [[NSRunLoop currentRunLoop] run];
    delete driver;
    return 0;
}
