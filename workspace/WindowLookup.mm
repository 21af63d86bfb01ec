#import <AppKit/AppKit.h>

#include "driver/CVEK_UserSpaceDriver.h"
#include "workspace/WindowAttributes.h"

bool CVEK_UserSpaceDriver::MatchWindowTitle(NSString* title, NSString* name, bool partial) {
    // Literal: by default composed and decomposed characters would be the same.
    if (partial) {
        // An empty name is found nowhere.
        const NSRange found = [title rangeOfString:name options:NSLiteralSearch];
        return found.location != NSNotFound && found.length != 0;
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
