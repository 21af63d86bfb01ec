// Numbers of either framework, seen from the other.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

class BridgedNumbers : public testing::Test {
  protected:
    BridgedNumbers() : pool_([[NSAutoreleasePool alloc] init]) {}
    ~BridgedNumbers() override { [pool_ drain]; }

    template <typename Value>
    static NSNumber* Made(CFNumberType type, Value value) {
        return [(NSNumber*)CFNumberCreate(kCFAllocatorDefault, type, &value) autorelease];
    }

  private:
    NSAutoreleasePool* pool_;
};

TEST_F(BridgedNumbers, CoreFoundationsNameTheirCTypes) {
    EXPECT_STREQ([Made(kCFNumberSInt8Type, SInt8{-100}) objCType], @encode(SInt8));
    EXPECT_STREQ([Made(kCFNumberSInt16Type, SInt16{-100}) objCType], @encode(SInt16));
    EXPECT_STREQ([Made(kCFNumberSInt32Type, SInt32{-100}) objCType], @encode(SInt32));
    EXPECT_STREQ([Made(kCFNumberSInt64Type, SInt64{-100}) objCType], @encode(long long));
    EXPECT_STREQ([Made(kCFNumberFloat32Type, 0.5F) objCType], @encode(float));
    EXPECT_STREQ([Made(kCFNumberFloat64Type, 0.5) objCType], @encode(double));
}

TEST_F(BridgedNumbers, FoundationsHaveTheTypesOfTheirCTypes) {
    const std::pair<NSNumber*, CFNumberType> cases[] = {
        {[NSNumber numberWithInt:-100000], kCFNumberSInt32Type},
        {[NSNumber numberWithLongLong:-10000000000], kCFNumberSInt64Type},
        {[NSNumber numberWithFloat:0.5F], kCFNumberFloat32Type},
        {[NSNumber numberWithDouble:0.5], kCFNumberFloat64Type},
        {(NSNumber*)kCFBooleanTrue, kCFNumberSInt8Type},
    };
    for (const auto& [number, type] : cases) {
        EXPECT_EQ(CFNumberGetType((CFNumberRef)number), type) << [number objCType];
    }
}

TEST_F(BridgedNumbers, CoreFoundationsCompareByValue) {
    NSNumber* half = Made(kCFNumberFloat32Type, 0.5F);
    NSNumber* two = Made(kCFNumberSInt64Type, SInt64{2});
    EXPECT_EQ([half compare:two], NSOrderedAscending);
    EXPECT_EQ([two compare:half], NSOrderedDescending);
    EXPECT_EQ([two compare:@(2)], NSOrderedSame);
    EXPECT_TRUE([two isEqual:@(2.0)]);
    EXPECT_FALSE([two isEqual:@(3)]);
    EXPECT_FALSE([two isEqual:@"2"]);
}

TEST_F(BridgedNumbers, OnlyNothingIsFalse) {
    EXPECT_TRUE([Made(kCFNumberFloat64Type, 0.5) boolValue]);
    EXPECT_FALSE([Made(kCFNumberFloat64Type, 0.0) boolValue]);
    EXPECT_TRUE([Made(kCFNumberSInt64Type, SInt64{256}) boolValue]);
    EXPECT_FALSE([Made(kCFNumberSInt64Type, SInt64{0}) boolValue]);
}

TEST_F(BridgedNumbers, SinglePrecisionIsDescribedWithSevenDigits) {
    EXPECT_STREQ([[Made(kCFNumberFloat32Type, 0.1F) description] UTF8String], "0.1");
    EXPECT_STREQ([[Made(kCFNumberFloat64Type, 0.1) description] UTF8String], "0.1");
    EXPECT_STREQ([[Made(kCFNumberFloat64Type, 1.0 / 3) description] UTF8String],
                 "0.3333333333333333");
    EXPECT_STREQ([[Made(kCFNumberFloat32Type, 1.0F / 3) description] UTF8String], "0.3333333");
}

TEST_F(BridgedNumbers, NotANumberEqualsOnlyItself) {
    NSNumber* quiet = Made(kCFNumberFloat64Type, std::numeric_limits<double>::quiet_NaN());
    NSNumber* negative = Made(kCFNumberFloat64Type, -std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(CFEqual(quiet, negative));
    EXPECT_FALSE(CFEqual(quiet, Made(kCFNumberFloat64Type, 1.0)));
    EXPECT_FALSE(CFEqual(Made(kCFNumberFloat64Type, 1.0), quiet));
}

TEST_F(BridgedNumbers, AnIntegerEqualsARealOfExactlyItsValue) {
    NSNumber* zero = Made(kCFNumberSInt64Type, SInt64{0});
    EXPECT_TRUE(CFEqual(zero, Made(kCFNumberFloat64Type, 0.0)));
    EXPECT_FALSE(CFEqual(zero, Made(kCFNumberFloat64Type, -0.0)));
    EXPECT_FALSE(CFEqual(zero, Made(kCFNumberFloat64Type, -1e300)));
    EXPECT_FALSE(CFEqual(zero, Made(kCFNumberFloat64Type, 1e300)));
    EXPECT_FALSE(CFEqual(zero, Made(kCFNumberFloat64Type, 0.5)));
}

}  // namespace
