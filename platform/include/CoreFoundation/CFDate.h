// Points in time.
#pragma once

#include <CoreFoundation/CFBase.h>

extern "C" {

extern const CFTimeInterval kCFAbsoluteTimeIntervalSince1970;  // 978307200 seconds

CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);

}  // extern "C"
