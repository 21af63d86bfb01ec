// An application that the driver treats as the editor. Prints "ready" on standard output when it is
// in front with its window, and ends when standard input does.
#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#import "tests/mac/StandInControls.h"

@interface KRTStandInDelegate : NSObject {
    NSWindow* _window;
    KRTStandInControls* _controls;
}
@end

@implementation KRTStandInDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    (void)notification;
    _controls = [[KRTStandInControls alloc] init];
    _window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 700, 400)
                                          styleMask:NSWindowStyleMaskTitled
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    [_window setTitle:@"Final Cut Pro"];
    NSView* content = [_controls newContentView];
    [_window setContentView:content];
    [content release];
    [_window makeKeyAndOrderFront:nil];
    [NSApp activateIgnoringOtherApps:YES];
}

- (void)applicationDidBecomeActive:(NSNotification*)notification {
    (void)notification;
    std::puts("ready");
    std::fflush(stdout);
}

@end

int main() {
    std::thread([] {
        while (std::getchar() != EOF) {
        }
        std::_Exit(0);
    }).detach();
    @autoreleasepool {
        NSApplication* application = [NSApplication sharedApplication];
        [application setActivationPolicy:NSApplicationActivationPolicyRegular];
        [application setDelegate:(id)[[KRTStandInDelegate alloc] init]];
        [application run];
    }
    return 0;
}
