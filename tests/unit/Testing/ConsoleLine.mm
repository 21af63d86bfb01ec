#include "tests/unit/Testing/ConsoleLine.h"

#import <Foundation/Foundation.h>

void WriteConsoleObject(CFTypeRef object) {
    @autoreleasepool {
        NSLog(@"%@", (id)object);
    }
}

void WriteConsoleLine(const char* text) {
    @autoreleasepool {
        NSLog(@"%@", [NSString stringWithUTF8String:text]);
    }
}
