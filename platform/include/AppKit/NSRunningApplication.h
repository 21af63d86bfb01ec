#pragma once

#import <Foundation/Foundation.h>

#include <sys/types.h>

// A snapshot of one application of the session; it outlives the application.
@interface NSRunningApplication : NSObject {
    pid_t _processIdentifier;
    NSString* _bundleIdentifier;
    NSURL* _bundleURL;
}

@property(readonly) pid_t processIdentifier;
@property(readonly, copy) NSString* bundleIdentifier;  // nil for a program without bundle
@property(readonly, copy) NSURL* bundleURL;            // nil for a program without bundle

@end
