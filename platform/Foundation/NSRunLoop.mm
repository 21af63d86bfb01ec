#import <Foundation/NSRunLoop.h>

#include <CoreFoundation/CFRunLoop.h>

// Replacing the method is the purpose of this category.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

// Foundation's run loop and Core Foundation's are the same. GNUstep's own would neither support
// the common modes nor return after a timer, and its timers are not those of CFRunLoopAddTimer.
@implementation NSRunLoop (CoreFoundation)

// Stopping the loop ends one of the runs of which this consists, and the next begins.
- (void)run {
    while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1e10, false) != kCFRunLoopRunFinished) {
    }
}

@end
