#pragma once

#import <AppKit/NSRunningApplication.h>
#import <Foundation/Foundation.h>

extern "C" {

// Posted to the workspace's own notification center, on the main thread, while its run loop runs.
extern NSString* const NSWorkspaceDidActivateApplicationNotification;

// In the notification's user info: the NSRunningApplication.
extern NSString* const NSWorkspaceApplicationKey;

}  // extern "C"

@interface NSWorkspace : NSObject {
    NSNotificationCenter* _notificationCenter;
    NSRunningApplication* _frontmostApplication;
    unsigned long _frontRevision;
}

+ (NSWorkspace*)sharedWorkspace;

// nil when nothing is in front. Changes only while the main run loop runs.
@property(readonly, retain) NSRunningApplication* frontmostApplication;

// Not the default center.
@property(readonly, retain) NSNotificationCenter* notificationCenter;

@end
