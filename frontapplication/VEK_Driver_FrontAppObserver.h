// Records what is known of the front application, from the workspace's activation notifications.
#pragma once

#import <AppKit/AppKit.h>

#include <CoreServices/CoreServices.h>

@interface VEK_Driver_FrontAppObserver : NSObject {
    NSString* _bundleID;
    NSString* _shortVersion;
    OSType _signature;
    void (*_callback)();
    BOOL _frontAppChanged;
    pid_t _processID;
}

// nil when the front application has none.
@property(nonatomic, retain) NSString* bundleID;
@property(nonatomic, retain) NSString* shortVersion;
@property(assign) OSType signature;                 // '????' when unknown
@property(nonatomic, assign) void (*callback)();    // stored and returned, never called
@property(nonatomic, assign) BOOL frontAppChanged;  // set by a change, cleared by its reader
@property(nonatomic, assign) pid_t processID;

// The single instance, made at the first call.
+ (VEK_Driver_FrontAppObserver*)frontAppObserver;

// Records the application in front, and registers for activations.
- (void)observe;

// An activation: records the application that the notification names.
- (void)newFrontApp:(NSNotification*)notification;

// Nil changes nothing.
- (void)collectFrontAppInfo:(NSRunningApplication*)app;

@end
