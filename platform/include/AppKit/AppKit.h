// The part of AppKit that the driver calls. Objective-C only, as on macOS.
#pragma once

#import <AppKit/NSEvent.h>
#import <AppKit/NSRunningApplication.h>
#import <AppKit/NSScreen.h>
#import <AppKit/NSWorkspace.h>
#include <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>
