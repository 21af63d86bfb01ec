// The slice of Core Services that the driver calls.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#pragma pack(push, 2)
struct ProcessSerialNumber {
    UInt32 highLongOfPSN;
    UInt32 lowLongOfPSN;
};
#pragma pack(pop)

extern "C" {

// The code of a text of exactly four MacRoman characters, the first in the top byte; 0 for anything
// else, null included.
OSType UTGetOSTypeFromString(CFStringRef inString);

}  // extern "C"
