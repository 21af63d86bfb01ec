// AppKit as far as code for macOS alone calls it, besides what platform/ has: declarations, by the
// public documentation, for compiling where there is no SDK.
#pragma once

#include_next <AppKit/AppKit.h>

using NSControlStateValue = NSInteger;
enum : NSControlStateValue { NSControlStateValueOff = 0, NSControlStateValueOn = 1 };
enum NSButtonType : NSUInteger {
    NSButtonTypeMomentaryPushIn = 7,
    NSButtonTypeSwitch = 3,
    NSButtonTypeRadio = 4,
};
enum NSWindowStyleMask : NSUInteger { NSWindowStyleMaskTitled = 1 };
enum NSBackingStoreType : NSUInteger { NSBackingStoreBuffered = 2 };
enum NSApplicationActivationPolicy : NSInteger { NSApplicationActivationPolicyRegular = 0 };

extern "C" {
extern NSString* const NSAccessibilityLayoutAreaRole;
extern NSString* const NSAccessibilityRadioGroupRole;
extern NSString* const NSAccessibilityValueIndicatorRole;
}

@interface NSRunningApplication (LookUp)
+ (NSArray*)runningApplicationsWithBundleIdentifier:(NSString*)bundleIdentifier;
+ (instancetype)runningApplicationWithProcessIdentifier:(pid_t)pid;
@end

@interface NSObject (KRTAccessibility)
- (void)setAccessibilityElement:(BOOL)isElement;
- (void)setAccessibilityRole:(NSString*)role;
- (void)setAccessibilityIdentifier:(NSString*)identifier;
- (NSString*)accessibilityIdentifier;
- (void)setAccessibilityLabel:(NSString*)label;
- (void)setAccessibilityValueDescription:(NSString*)description;
@end

@interface NSView : NSObject
- (instancetype)initWithFrame:(NSRect)frame;
- (void)addSubview:(NSView*)view;
@end

@interface NSSplitView : NSView
- (void)setVertical:(BOOL)isVertical;
@end

@interface NSScrollView : NSView
- (void)setDocumentView:(NSView*)view;
@end

@interface NSControl : NSView
- (void)setTarget:(id)target;
- (void)setAction:(SEL)action;
- (NSString*)stringValue;
- (void)setStringValue:(NSString*)text;
@end

@interface NSButton : NSControl
- (void)setButtonType:(NSButtonType)type;
- (void)setTitle:(NSString*)title;
- (void)setState:(NSControlStateValue)state;
@end

@interface NSTextField : NSControl
- (void)setEditable:(BOOL)isEditable;
@end

@interface NSTableColumn : NSObject
- (instancetype)initWithIdentifier:(NSString*)identifier;
- (void)setWidth:(CGFloat)width;
@end

@interface NSTableView : NSControl
- (void)addTableColumn:(NSTableColumn*)column;
- (void)setDataSource:(id)source;
@end

@interface NSWindow : NSObject
- (instancetype)initWithContentRect:(NSRect)frame
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)isDeferred;
- (void)setTitle:(NSString*)title;
- (void)setContentView:(NSView*)view;
- (void)makeKeyAndOrderFront:(id)sender;
@end

@interface NSApplication : NSObject
+ (NSApplication*)sharedApplication;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)setDelegate:(id)delegate;
- (void)activateIgnoringOtherApps:(BOOL)isForced;
- (void)run;
@end

extern "C" NSApplication* NSApp;
