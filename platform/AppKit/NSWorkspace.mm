#import <AppKit/NSWorkspace.h>

#import "platform/AppKit/RunningApplication.h"

#include "platform/DesktopLink/Session.h"

NSString* const NSWorkspaceDidActivateApplicationNotification =
    @"NSWorkspaceDidActivateApplicationNotification";
NSString* const NSWorkspaceApplicationKey = @"NSWorkspaceApplicationKey";

namespace {

void FrontApplicationChanged();

}  // namespace

@interface NSWorkspace (Desktop)
- (void)announceFrontApplication;
- (NSRunningApplication*)currentFrontmostApplication;
@end

@implementation NSWorkspace

+ (NSWorkspace*)sharedWorkspace {
    static NSWorkspace* workspace = nil;
    if (workspace == nil) {
        workspace = [[NSWorkspace alloc] init];
        desktop_link::ObserveFrontApplication(FrontApplicationChanged);
    }
    return workspace;
}

- (instancetype)init {
    self = [super init];
    _notificationCenter = [[NSNotificationCenter alloc] init];
    return self;
}

- (void)dealloc {
    [_frontmostApplication release];
    [_notificationCenter release];
    [super dealloc];
}

- (NSNotificationCenter*)notificationCenter {
    return _notificationCenter;
}

- (NSRunningApplication*)frontmostApplication {
    return [[[self currentFrontmostApplication] retain] autorelease];
}

// Borrowed.
- (NSRunningApplication*)currentFrontmostApplication {
    const unsigned long revision = desktop_link::FrontApplicationRevision();
    if (revision != _frontRevision) {
        [_frontmostApplication release];
        const auto& front = desktop_link::FrontApplication();
        _frontmostApplication =
            front ? [[NSRunningApplication alloc] initWithApplication:*front] : nil;
        _frontRevision = revision;
    }
    return _frontmostApplication;
}

// Going to a state with nothing in front is no activation. Nothing is autoreleased here: nobody may
// drain it.
- (void)announceFrontApplication {
    NSRunningApplication* front = [self currentFrontmostApplication];
    if (front == nil) {
        return;
    }
    NSDictionary* information = [[NSDictionary alloc] initWithObjects:&front
                                                              forKeys:&NSWorkspaceApplicationKey
                                                                count:1];
    [_notificationCenter postNotificationName:NSWorkspaceDidActivateApplicationNotification
                                       object:self
                                     userInfo:information];
    [information release];
}

@end

namespace {

void FrontApplicationChanged() {
    [[NSWorkspace sharedWorkspace] announceFrontApplication];
}

}  // namespace
