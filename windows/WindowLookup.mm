#import <AppKit/AppKit.h>

#include "driver/CVEK_UserSpaceDriver.h"
#include "windows/WindowAttributes.h"

// Literal, so that composed and decomposed characters differ; without that option NSString treats
// them as equal. Nil matches nothing: given to NSString, it raises an exception or is undefined
// behaviour.
bool CVEK_UserSpaceDriver::MatchWindowTitle(NSString* title, NSString* name, bool partial) {
    if (title == nil || name == nil) {
        return false;
    }
    if (partial) {
        // The range is empty for a name that is not in the title, and for an empty one.
        return [title rangeOfString:name options:NSLiteralSearch].length != 0;
    }
    return [title compare:name options:NSLiteralSearch] == NSOrderedSame;
}

AXUIElementRef CVEK_UserSpaceDriver::GetWindowElementWithTitle(NSString* title, bool partial) {
    if (title == nil) {
        return nullptr;
    }
    for (id window in CopyApplicationWindowList(false, @"")) {
        NSString* windowTitle = (NSString*)CopyWindowTitle((CFTypeRef)window);
        const bool matches = windowTitle != nil && MatchWindowTitle(windowTitle, title, partial);
        [windowTitle release];
        if (matches) {
            return (AXUIElementRef)window;
        }
    }
    return nullptr;
}

AXUIElementRef CVEK_UserSpaceDriver::GetWindowElementWithTitle(std::string& title, bool partial) {
    return GetWindowElementWithTitle([NSString stringWithUTF8String:title.c_str()], partial);
}
