// The value of a number, independent of the class that holds it.
#pragma once

#include <CoreFoundation/CFNumber.h>

#include <cmath>
#include <limits>

@class NSNumber;

namespace core_foundation {

struct NumberValue {
    CFNumberType type = kCFNumberSInt64Type;  // one of the first six
    SInt64 integer = 0;                       // when the type is an integer
    double real = 0;                          // when it is not

    bool isReal() const { return type >= kCFNumberFloat32Type; }
};

NumberValue ValueOf(NSNumber* number);

// Toward zero. A value that does not fit into the integer, or NaN, gives the least integer, as the
// processor's own instruction does.
template <typename Integer>
Integer Truncated(double real) {
    constexpr auto kLeast = static_cast<double>(std::numeric_limits<Integer>::min());
    const double whole = std::trunc(real);
    return whole >= kLeast && whole < -kLeast ? static_cast<Integer>(whole)
                                              : std::numeric_limits<Integer>::min();
}

// Equal means exactly the same number: an integer equals a real only if both are exact, 0 does not
// equal -0, and NaN equals NaN.
bool SameNumber(const NumberValue& first, const NumberValue& second);

}  // namespace core_foundation
