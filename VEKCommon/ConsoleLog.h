// The console log for code that is not Objective-C++.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

// NSLog: `format` takes printf's conversions and %@ for objects; every conversion has its argument.
// Null is a legal argument of %@ and %s.
void ConsoleLog(CFStringRef format, ...);
