#pragma once

#include <CoreFoundation/CoreFoundation.h>

// NSLog(@"%@") with UTF-8 text.
void WriteConsoleLine(const char* text);

// NSLog(@"%@") with an object.
void WriteConsoleObject(CFTypeRef object);
