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
    const unsigned long revision = desktop_link::FrontApplicationRevision();
    if (revision != _frontRevision) {
        [_frontmostApplication release];
        const auto& front = desktop_link::FrontApplication();
        _frontmostApplication =
            front ? [[NSRunningApplication alloc] initWithApplication:*front] : nil;
        _frontRevision = revision;
    }
    return [[_frontmostApplication retain] autorelease];
}

// Going to a state with nothing in front is no activation.
- (void)announceFrontApplication {
    NSRunningApplication* front = [self frontmostApplication];
    if (front != nil) {
        [_notificationCenter
            postNotificationName:NSWorkspaceDidActivateApplicationNotification
                          object:self
                        userInfo:[NSDictionary dictionaryWithObject:front
                                                             forKey:NSWorkspaceApplicationKey]];
    }
}

@end

namespace {

void FrontApplicationChanged() {
    @autoreleasepool {
        [[NSWorkspace sharedWorkspace] announceFrontApplication];
    }
}

}  // namespace
