#import <AppKit/NSEvent.h>

#include "platform/ApplicationServices/Display.h"

@implementation NSEvent

// Without a screen the height is 0, as it is for callers that ask NSScreen.
+ (NSPoint)mouseLocation {
    const application_services::Pointer pointer = application_services::CurrentPointer();
    const double height = pointer.firstScreen ? pointer.firstScreen->size.height : 0;
    return NSMakePoint(pointer.location.x, height - pointer.location.y);
}

@end
