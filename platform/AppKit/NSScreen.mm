#import <AppKit/NSScreen.h>

#include "platform/ApplicationServices/Display.h"
#include "platform/Variants/Variants.h"

using platform_testing::IsOn;
using platform_testing::Variant;

@interface NSScreen (Desktop)
+ (NSScreen*)screenOf:(const application_services::Arrangement&)arrangement at:(std::size_t)index;
+ (NSScreen*)screenWithFrame:(NSRect)frame;
- (instancetype)initWithFrame:(NSRect)frame;
@end

@implementation NSScreen

@synthesize frame = _frame;

// The screen of the key window, wherever it lies; nil is possible.
+ (NSScreen*)mainScreen {
    const auto arrangement = application_services::Screens();
    if (arrangement.screens.empty() || IsOn(Variant::noMainScreen)) {
        return nil;
    }
    if (IsOn(Variant::mainScreenElsewhere)) {
        return [self screenWithFrame:NSMakeRect(-1280, 240, 1280, 720)];
    }
    return [self screenOf:arrangement at:arrangement.keyScreen];
}

+ (NSArray*)screens {
    const auto arrangement = application_services::Screens();
    const std::size_t count = arrangement.screens.size();
    NSMutableArray* screens = [NSMutableArray arrayWithCapacity:count];
    for (std::size_t index = 0; index < count; ++index) {
        [screens addObject:[self screenOf:arrangement at:index]];
    }
    return screens;
}

// AppKit counts from the bottom left of the first screen.
+ (NSScreen*)screenOf:(const application_services::Arrangement&)arrangement at:(std::size_t)index {
    const auto& frame = arrangement.screens[index];
    const double bottom = frame.origin.y + frame.size.height;
    return [self
        screenWithFrame:NSMakeRect(frame.origin.x, arrangement.screens.front().size.height - bottom,
                                   frame.size.width, frame.size.height)];
}

+ (NSScreen*)screenWithFrame:(NSRect)frame {
    return [[[NSScreen alloc] initWithFrame:frame] autorelease];
}

- (instancetype)initWithFrame:(NSRect)frame {
    self = [super init];
    _frame = frame;
    return self;
}

@end
