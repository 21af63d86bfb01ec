// Structures wrapped as objects, the form in which attributes hold them.
#pragma once

#include <ApplicationServices/AXError.h>
#include <CoreFoundation/CGGeometry.h>
#include <CoreFoundation/CoreFoundation.h>

enum AXValueType : UInt32 {
    kAXValueTypeIllegal = 0,
    kAXValueTypeCGPoint = 1,
    kAXValueTypeCGSize = 2,
    kAXValueTypeCGRect = 3,
    kAXValueTypeCFRange = 4,
    kAXValueTypeAXError = 5,
};

// The older names are integers, not of the enumeration's type.
static const UInt32 kAXValueCGPointType = kAXValueTypeCGPoint;
static const UInt32 kAXValueCGSizeType = kAXValueTypeCGSize;
static const UInt32 kAXValueCGRectType = kAXValueTypeCGRect;
static const UInt32 kAXValueCFRangeType = kAXValueTypeCFRange;
static const UInt32 kAXValueAXErrorType = kAXValueTypeAXError;
static const UInt32 kAXValueIllegalType = kAXValueTypeIllegal;

using AXValueRef = const struct __AXValue*;

extern "C" {

CFTypeID AXValueGetTypeID(void);

// Copies the structure that `valuePtr` points to; null for an unknown type or a null pointer.
AXValueRef AXValueCreate(AXValueType theType, const void* valuePtr);

// Illegal for anything but a wrapped structure, null included.
AXValueType AXValueGetType(AXValueRef value);

// False, and nothing written, when `value` holds another type.
Boolean AXValueGetValue(AXValueRef value, AXValueType theType, void* valuePtr);

}  // extern "C"
