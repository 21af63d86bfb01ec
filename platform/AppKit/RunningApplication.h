// How this layer creates running applications.
#pragma once

#import <AppKit/NSRunningApplication.h>

#include "platform/DesktopLink/Messages.h"

@interface NSRunningApplication (Desktop)

- (instancetype)initWithApplication:(const desktop_link::Application&)application;

@end
