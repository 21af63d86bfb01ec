#import <AppKit/NSWorkspace.h>

#import "platform/AppKit/RunningApplication.h"

#include "platform/DesktopLink/Session.h"

NSString* const NSWorkspaceDidActivateApplicationNotification =
    @"NSWorkspaceDidActivateApplicationNotification";
NSString* const NSWorkspaceApplicationKey = @"NSWorkspaceApplicationKey";

namespace {

void FrontApplicationChanged(const std::optional<desktop_link::Application>& activated);

}  // namespace

@interface NSWorkspace (Desktop)
- (void)announceActivationOf:(const desktop_link::Application&)application;
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

// Nothing is autoreleased here: there may be no pool to drain.
- (void)announceActivationOf:(const desktop_link::Application&)application {
    NSRunningApplication* activated =
        desktop_link::FrontApplication() == application
            ? [[self currentFrontmostApplication] retain]
            : [[NSRunningApplication alloc] initWithApplication:application];
    NSDictionary* information = [[NSDictionary alloc] initWithObjects:&activated
                                                              forKeys:&NSWorkspaceApplicationKey
                                                                count:1];
    [_notificationCenter postNotificationName:NSWorkspaceDidActivateApplicationNotification
                                       object:self
                                     userInfo:information];
    [information release];
    [activated release];
}

@end

namespace {

// A change to a state with nothing in front is not an activation.
void FrontApplicationChanged(const std::optional<desktop_link::Application>& activated) {
    if (activated) {
        [[NSWorkspace sharedWorkspace] announceActivationOf:*activated];
    }
}

}  // namespace
