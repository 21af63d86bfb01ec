#include "VEKCommon/ConsoleLog.h"

#import <Foundation/Foundation.h>

#include <cstdarg>

void ConsoleLog(CFStringRef format, ...) {
    va_list arguments;
    va_start(arguments, format);
    @autoreleasepool {
        NSLogv((NSString*)format, arguments);
    }
    va_end(arguments);
}
