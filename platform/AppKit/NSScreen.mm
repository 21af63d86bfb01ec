#import <AppKit/NSScreen.h>

#include "platform/ApplicationServices/Display.h"

@interface NSScreen (Desktop)
- (instancetype)initWithFrame:(NSRect)frame;
@end

@implementation NSScreen

@synthesize frame = _frame;

+ (NSScreen*)mainScreen {
    NSArray* screens = [self screens];
    return [screens count] > 0 ? [screens objectAtIndex:0] : nil;
}

+ (NSArray*)screens {
    const auto frames = application_services::Screens();
    NSMutableArray* screens = [NSMutableArray arrayWithCapacity:frames.size()];
    for (const auto& frame : frames) {
        const double bottom = frame.origin.y + frame.size.height;
        const NSRect flipped = NSMakeRect(frame.origin.x, frames.front().size.height - bottom,
                                          frame.size.width, frame.size.height);
        NSScreen* screen = [[NSScreen alloc] initWithFrame:flipped];
        [screens addObject:screen];
        [screen release];
    }
    return screens;
}

- (instancetype)initWithFrame:(NSRect)frame {
    self = [super init];
    _frame = frame;
    return self;
}

@end
