#pragma once

#import <Foundation/Foundation.h>

@interface NSEvent : NSObject

// The pointer's position, origin at the bottom left of the main screen.
+ (NSPoint)mouseLocation;

@end
