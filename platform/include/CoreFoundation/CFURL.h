// File paths as URLs.
#pragma once

#include <CoreFoundation/CFBase.h>

enum CFURLPathStyle : CFIndex {
    kCFURLPOSIXPathStyle = 0,
    kCFURLHFSPathStyle = 1,
    kCFURLWindowsPathStyle = 2,
};

extern "C" {

// Touches no disk and expands no "~". A path that is not absolute is relative to the current
// folder. Only the POSIX style is understood. Null for an empty path and for any other style.
CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef filePath,
                                       CFURLPathStyle pathStyle, Boolean isDirectory);

}  // extern "C"
