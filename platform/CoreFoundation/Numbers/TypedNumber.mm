#include "platform/CoreFoundation/Numbers/TypedNumber.h"

#include <cstring>

using core_foundation::NumberValue;

// NOLINTBEGIN(bugprone-macro-parentheses): these are whole methods.
#define KRT9_INTEGER_ACCESSOR(Type, name)                                                          \
    -(Type)name {                                                                                  \
        return static_cast<Type>(_value.isReal() ? core_foundation::Truncated<SInt64>(_value.real) \
                                                 : _value.integer);                                \
    }
#define KRT9_REAL_ACCESSOR(Type, name)                                                   \
    -(Type)name {                                                                        \
        return static_cast<Type>(_value.isReal() ? _value.real                           \
                                                 : static_cast<double>(_value.integer)); \
    }
// NOLINTEND(bugprone-macro-parentheses)

@implementation TypedNumber

- (id)initWithNumberValue:(NumberValue)value {
    self = [super init];
    _value = value;
    return self;
}

- (NumberValue)value {
    return _value;
}

- (const char*)objCType {
    switch (_value.type) {
        case kCFNumberSInt8Type:
            return @encode(SInt8);
        case kCFNumberSInt16Type:
            return @encode(SInt16);
        case kCFNumberSInt32Type:
            return @encode(SInt32);
        case kCFNumberFloat32Type:
            return @encode(float);
        case kCFNumberFloat64Type:
            return @encode(double);
        default:
            return @encode(long long);
    }
}

- (void)getValue:(void*)buffer {
    CFNumberGetValue((CFNumberRef)self, _value.type, buffer);
}

KRT9_INTEGER_ACCESSOR(signed char, charValue)
KRT9_INTEGER_ACCESSOR(unsigned char, unsignedCharValue)
KRT9_INTEGER_ACCESSOR(short, shortValue)
KRT9_INTEGER_ACCESSOR(unsigned short, unsignedShortValue)
KRT9_INTEGER_ACCESSOR(int, intValue)
KRT9_INTEGER_ACCESSOR(unsigned int, unsignedIntValue)
KRT9_INTEGER_ACCESSOR(long, longValue)
KRT9_INTEGER_ACCESSOR(unsigned long, unsignedLongValue)
KRT9_INTEGER_ACCESSOR(long long, longLongValue)
KRT9_INTEGER_ACCESSOR(unsigned long long, unsignedLongLongValue)
KRT9_INTEGER_ACCESSOR(NSInteger, integerValue)
KRT9_INTEGER_ACCESSOR(NSUInteger, unsignedIntegerValue)
KRT9_REAL_ACCESSOR(float, floatValue)
KRT9_REAL_ACCESSOR(double, doubleValue)

- (BOOL)boolValue {
    return _value.isReal() ? _value.real != 0 : _value.integer != 0;
}

- (NSComparisonResult)compare:(NSNumber*)other {
    // A long double holds every 64-bit integer and every double exactly.
    const auto wide = [](const NumberValue& value) {
        return value.isReal() ? static_cast<long double>(value.real)
                              : static_cast<long double>(value.integer);
    };
    const long double own = wide(_value);
    const long double others = wide(core_foundation::ValueOf(other));
    return own < others ? NSOrderedAscending : own > others ? NSOrderedDescending : NSOrderedSame;
}

- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[NSNumber class]] && [self isEqualToNumber:other];
}

- (BOOL)isEqualToNumber:(NSNumber*)other {
    return core_foundation::SameNumber(_value, core_foundation::ValueOf(other));
}

- (NSString*)descriptionWithLocale:(id)locale {
    (void)locale;
    if (!_value.isReal()) {
        return [NSString stringWithFormat:@"%lld", static_cast<long long>(_value.integer)];
    }
    constexpr int kFloatDigits = 7;
    constexpr int kDoubleDigits = 16;
    const int digits = _value.type == kCFNumberFloat32Type ? kFloatDigits : kDoubleDigits;
    return [NSString stringWithFormat:@"%.*g", digits, _value.real];
}

- (id)copyWithZone:(NSZone*)zone {
    (void)zone;
    return [self retain];
}

@end
