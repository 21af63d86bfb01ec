// What callers rely on at compile time: the interfaces of the real framework.
#import <AppKit/AppKit.h>

#include <type_traits>

static_assert(std::is_same_v<decltype([NSWorkspace sharedWorkspace]), NSWorkspace*>);
static_assert(
    std::is_same_v<decltype([(NSWorkspace*)nil frontmostApplication]), NSRunningApplication*>);
static_assert(
    std::is_same_v<decltype([(NSWorkspace*)nil notificationCenter]), NSNotificationCenter*>);
static_assert(std::is_same_v<decltype([(NSRunningApplication*)nil processIdentifier]), pid_t>);
static_assert(std::is_same_v<decltype([(NSRunningApplication*)nil bundleIdentifier]), NSString*>);
static_assert(std::is_same_v<decltype([(NSRunningApplication*)nil bundleURL]), NSURL*>);
static_assert(std::is_same_v<decltype([NSEvent mouseLocation]), NSPoint>);
static_assert(std::is_same_v<decltype([NSScreen mainScreen]), NSScreen*>);
static_assert(std::is_same_v<decltype([(NSScreen*)nil frame]), NSRect>);
static_assert(
    std::is_same_v<decltype(NSWorkspaceDidActivateApplicationNotification), NSString* const>);
static_assert(std::is_same_v<decltype(NSWorkspaceApplicationKey), NSString* const>);
