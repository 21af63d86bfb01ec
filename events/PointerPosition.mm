#import <AppKit/AppKit.h>

#include "driver/CVEK_UserSpaceDriver.h"

// AppKit counts from the bottom left. Only the main screen's height enters, not its origin, so that
// positions on other screens are relative to the main one; without a main screen its frame is zero.
void CVEK_UserSpaceDriver::GetGlobalMouse(CGPoint* where) {
    *where = [NSEvent mouseLocation];
    NSScreen* mainScreen = [NSScreen mainScreen];
    const CGFloat height = mainScreen != nil ? [mainScreen frame].size.height : 0;
    where->y = height - where->y;
}
