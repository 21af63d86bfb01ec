#pragma once

#import <Foundation/Foundation.h>

// A snapshot of one screen.
@interface NSScreen : NSObject {
    NSRect _frame;
}

+ (NSScreen*)mainScreen;  // nil when there is no screen

// Every screen, the main one first.
+ (NSArray*)screens;

// Origin at the bottom left of the main screen.
@property(readonly) NSRect frame;

@end
