#include <CoreFoundation/CFNumber.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "platform/CoreFoundation/Numbers/NumberValue.h"
#include "platform/CoreFoundation/Numbers/TypedNumber.h"
#include "platform/CoreFoundation/Runtime/CFRuntime.h"

using core_foundation::NumberValue;
using core_foundation::Require;
using core_foundation::Stop;

@implementation NSNumber (CFRuntime)
- (CFTypeID)cfTypeID {
    return (CFBooleanRef)self == kCFBooleanTrue || (CFBooleanRef)self == kCFBooleanFalse
               ? CFBooleanGetTypeID()
               : CFNumberGetTypeID();
}
@end

namespace {

// The small integers that Core Foundation keeps as 32 bits, whatever they were made from.
constexpr SInt64 kLeastCommon = -1;
constexpr SInt64 kGreatestCommon = 12;

// The fixed-width type of the same size and kind as a C type.
CFNumberType Canonical(CFNumberType type, const char* function) {
    switch (type) {
        case kCFNumberSInt8Type:
        case kCFNumberSInt16Type:
        case kCFNumberSInt32Type:
        case kCFNumberSInt64Type:
        case kCFNumberFloat32Type:
        case kCFNumberFloat64Type:
            return type;
        case kCFNumberCharType:
            return kCFNumberSInt8Type;
        case kCFNumberShortType:
            return kCFNumberSInt16Type;
        case kCFNumberIntType:
            return kCFNumberSInt32Type;
        case kCFNumberLongType:
        case kCFNumberLongLongType:
        case kCFNumberCFIndexType:
        case kCFNumberNSIntegerType:
            return kCFNumberSInt64Type;
        case kCFNumberFloatType:
            return kCFNumberFloat32Type;
        case kCFNumberDoubleType:
        case kCFNumberCGFloatType:
            return kCFNumberFloat64Type;
    }
    Stop(function, "unknown number type");
}

template <typename Type>
Type Read(const void* pointer) {
    Type value;
    std::memcpy(&value, pointer, sizeof value);
    return value;
}

template <typename Type>
void Write(void* pointer, Type value) {
    std::memcpy(pointer, &value, sizeof value);
}

NumberValue Read(CFNumberType type, const void* pointer) {
    switch (type) {
        case kCFNumberSInt8Type:
            return {type, Read<SInt8>(pointer)};
        case kCFNumberSInt16Type:
            return {type, Read<SInt16>(pointer)};
        case kCFNumberSInt32Type:
            return {type, Read<SInt32>(pointer)};
        case kCFNumberFloat32Type:
            return {type, 0, Read<float>(pointer)};
        case kCFNumberFloat64Type:
            return {type, 0, Read<double>(pointer)};
        default:
            return {type, Read<SInt64>(pointer)};
    }
}

SInt64 IntegerFor(const NumberValue& value, CFNumberType type) {
    if (!value.isReal()) {
        return value.integer;
    }
    return type == kCFNumberSInt64Type ? core_foundation::Truncated<SInt64>(value.real)
                                       : core_foundation::Truncated<SInt32>(value.real);
}

// Whether an integer fits the type without loss. For 8 and 16 bits one that fits the unsigned type
// counts as well, although it is read as a negative number, as in Core Foundation.
template <typename Integer>
bool FitsWithoutLoss(SInt64 integer) {
    using Widest = std::conditional_t<(sizeof(Integer) < sizeof(SInt32)),
                                      std::make_unsigned_t<Integer>, Integer>;
    return static_cast<Integer>(integer) == integer || static_cast<Widest>(integer) == integer;
}

template <typename Integer>
bool WriteInteger(const NumberValue& value, CFNumberType type, void* pointer) {
    const auto converted = static_cast<Integer>(IntegerFor(value, type));
    Write(pointer, converted);
    return value.isReal() ? static_cast<double>(converted) == value.real
                          : FitsWithoutLoss<Integer>(value.integer);
}

bool IsExactly(float converted, double real) {
    return static_cast<double>(converted) == real;
}

// A double loses nothing, and NaN, which equals nothing, does not either.
bool IsExactly(double, double) {
    return true;
}

template <typename Real>
bool WriteReal(const NumberValue& value, void* pointer) {
    const auto converted =
        value.isReal() ? static_cast<Real>(value.real) : static_cast<Real>(value.integer);
    Write(pointer, converted);
    if (value.isReal()) {
        return IsExactly(converted, value.real);
    }
    constexpr Real kTwoTo63 = 9223372036854775808.0;
    return converted < kTwoTo63 && static_cast<SInt64>(converted) == value.integer;
}

}  // namespace

CFTypeID CFNumberGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFNumber");
    return type;
}

CFTypeID CFBooleanGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFBoolean");
    return type;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    return [Require<NSNumber>(boolean, __func__) boolValue];
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType theType, const void* valuePtr) {
    if (valuePtr == nullptr) {
        Stop(__func__, "null argument");
    }
    NumberValue value = Read(Canonical(theType, __func__), valuePtr);
    if (!value.isReal() && value.integer >= kLeastCommon && value.integer <= kGreatestCommon) {
        value.type = kCFNumberSInt32Type;
    }
    return (CFNumberRef)[[TypedNumber alloc] initWithNumberValue:value];
}

CFNumberType CFNumberGetType(CFNumberRef number) {
    return core_foundation::ValueOf(Require<NSNumber>(number, __func__)).type;
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
    return core_foundation::ValueOf(Require<NSNumber>(number, __func__)).isReal();
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void* valuePtr) {
    const NumberValue value = core_foundation::ValueOf(Require<NSNumber>(number, __func__));
    const CFNumberType type = Canonical(theType, __func__);
    switch (type) {
        case kCFNumberSInt8Type:
            return WriteInteger<SInt8>(value, type, valuePtr);
        case kCFNumberSInt16Type:
            return WriteInteger<SInt16>(value, type, valuePtr);
        case kCFNumberSInt32Type:
            return WriteInteger<SInt32>(value, type, valuePtr);
        case kCFNumberFloat32Type:
            return WriteReal<float>(value, valuePtr);
        case kCFNumberFloat64Type:
            return WriteReal<double>(value, valuePtr);
        default:
            return WriteInteger<SInt64>(value, type, valuePtr);
    }
}
