// Byte sequences.
#pragma once

#include <CoreFoundation/CFBase.h>

extern "C" {

CFTypeID CFDataGetTypeID(void);
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);  // copies
CFMutableDataRef CFDataCreateMutable(CFAllocatorRef allocator, CFIndex capacity);  // 0: no limit
void CFDataAppendBytes(CFMutableDataRef theData, const UInt8* bytes, CFIndex length);
CFIndex CFDataGetLength(CFDataRef theData);
const UInt8* CFDataGetBytePtr(CFDataRef theData);  // valid while the data lives unchanged
void CFDataGetBytes(CFDataRef theData, CFRange range, UInt8* buffer);  // stops outside the data

}  // extern "C"
