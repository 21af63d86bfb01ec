#include "platform/CoreFoundation/Numbers/NumberValue.h"

#import <Foundation/Foundation.h>

#include <bit>
#include <cmath>

#include "platform/CoreFoundation/Numbers/TypedNumber.h"

namespace core_foundation {
namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;

// GNUstep keeps a boolean as an unsigned character and every other integer as an int or wider.
CFNumberType TypeOfEncoding(const char* encoding) {
    switch (*encoding) {
        case 'd':
            return kCFNumberFloat64Type;
        case 'f':
            return kCFNumberFloat32Type;
        case 'C':
            return kCFNumberSInt8Type;
        case 'i':
            return kCFNumberSInt32Type;
        default:
            return kCFNumberSInt64Type;
    }
}

bool IsExactly(double real, SInt64 integer) {
    return real >= -kTwoTo63 && real < kTwoTo63 &&
           static_cast<double>(static_cast<SInt64>(real)) == real &&
           static_cast<SInt64>(real) == integer && !(real == 0 && std::signbit(real));
}

}  // namespace

NumberValue ValueOf(NSNumber* number) {
    if ([number isKindOfClass:[TypedNumber class]]) {
        return [(TypedNumber*)number value];
    }
    NumberValue value{TypeOfEncoding([number objCType])};
    if (value.isReal()) {
        value.real = [number doubleValue];
    } else {
        value.integer = [number longLongValue];
    }
    return value;
}

bool SameNumber(const NumberValue& first, const NumberValue& second) {
    if (!first.isReal() && !second.isReal()) {
        return first.integer == second.integer;
    }
    if (!first.isReal()) {
        return IsExactly(second.real, first.integer);
    }
    if (!second.isReal()) {
        return IsExactly(first.real, second.integer);
    }
    return std::bit_cast<UInt64>(first.real) == std::bit_cast<UInt64>(second.real) ||
           (std::isnan(first.real) && std::isnan(second.real));
}

}  // namespace core_foundation
