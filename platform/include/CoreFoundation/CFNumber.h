// Numbers and the two booleans. The booleans are Foundation's too, so that boolValue and intValue
// work on them, but they are a type of their own here.
#pragma once

#include <CoreFoundation/CFBase.h>

enum CFNumberType : CFIndex {
    kCFNumberSInt8Type = 1,
    kCFNumberSInt16Type = 2,
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloat32Type = 5,
    kCFNumberFloat64Type = 6,
    kCFNumberCharType = 7,
    kCFNumberShortType = 8,
    kCFNumberIntType = 9,
    kCFNumberLongType = 10,
    kCFNumberLongLongType = 11,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,
    kCFNumberCFIndexType = 14,
    kCFNumberNSIntegerType = 15,
    kCFNumberCGFloatType = 16,
    kCFNumberMaxType = 16,
};

extern "C" {

extern const CFBooleanRef kCFBooleanTrue;   // immortal
extern const CFBooleanRef kCFBooleanFalse;  // immortal

CFTypeID CFBooleanGetTypeID(void);
Boolean CFBooleanGetValue(CFBooleanRef boolean);

CFTypeID CFNumberGetTypeID(void);
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType theType, const void* valuePtr);
// The type it is kept in: one of the first six.
CFNumberType CFNumberGetType(CFNumberRef number);
Boolean CFNumberIsFloatType(CFNumberRef number);
// False when the value does not survive the conversion; the converted value is written all the
// same.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void* valuePtr);

}  // extern "C"
