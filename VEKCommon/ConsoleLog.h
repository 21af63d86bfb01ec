// The console log for code that is not Objective-C++.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

// As NSLog: `format` takes printf's conversions, and %@ for objects. %@ and %s accept null.
// Not checked: each conversion must have an argument of its type.
void ConsoleLog(CFStringRef format, ...);
