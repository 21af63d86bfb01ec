#include <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>

#include <cstring>

#include "platform/Testing/LiveObjects.h"
#include "tests/support/OwnedObject.h"

namespace {

using OwnedValue = test_support::OwnedObject<AXValueRef>;

TEST(AXValue, GivesBackThePointItWasMadeOf) {
    const CGPoint point{1.5, -2};
    const OwnedValue value = AXValueCreate(kAXValueTypeCGPoint, &point);
    ASSERT_NE(value.get(), nullptr);
    CGPoint read{};
    EXPECT_TRUE(AXValueGetValue(value, kAXValueTypeCGPoint, &read));
    EXPECT_EQ(read.x, 1.5);
    EXPECT_EQ(read.y, -2);
}

TEST(AXValue, WrapsEachOfTheFiveTypesInItsOwnSize) {
    const std::pair<AXValueType, std::size_t> types[] = {
        {kAXValueTypeCGPoint, sizeof(CGPoint)}, {kAXValueTypeCGSize, sizeof(CGSize)},
        {kAXValueTypeCGRect, sizeof(CGRect)},   {kAXValueTypeCFRange, sizeof(CFRange)},
        {kAXValueTypeAXError, sizeof(AXError)},
    };
    for (const auto& [type, size] : types) {
        unsigned char given[64];
        unsigned char read[64];
        for (std::size_t i = 0; i < sizeof given; ++i) {
            given[i] = static_cast<unsigned char>(i + 1);
            read[i] = 0xEE;
        }
        const OwnedValue value = AXValueCreate(type, given);
        ASSERT_NE(value.get(), nullptr);
        EXPECT_EQ(AXValueGetType(value), type);
        EXPECT_TRUE(AXValueGetValue(value, type, read));
        EXPECT_EQ(std::memcmp(read, given, size), 0) << "type " << type;
        EXPECT_EQ(read[size], 0xEE) << "type " << type << ": written beyond its size";
    }
}

TEST(AXValue, AskedForAnotherTypeAnswersFalseAndWritesNothing) {
    const CGPoint point{1, 2};
    const OwnedValue value = AXValueCreate(kAXValueTypeCGPoint, &point);
    CGSize size{-7, -8};
    EXPECT_FALSE(AXValueGetValue(value, kAXValueTypeCGSize, &size));
    EXPECT_FALSE(AXValueGetValue(value, kAXValueTypeIllegal, &size));
    EXPECT_FALSE(AXValueGetValue(value, static_cast<AXValueType>(99), &size));
    EXPECT_EQ(size.width, -7);
    EXPECT_EQ(size.height, -8);
}

TEST(AXValue, OfAnUnknownTypeOrOfNothingIsNull) {
    const CGPoint point{};
    EXPECT_EQ(AXValueCreate(kAXValueTypeIllegal, &point), nullptr);
    EXPECT_EQ(AXValueCreate(static_cast<AXValueType>(6), &point), nullptr);
    EXPECT_EQ(AXValueCreate(kAXValueTypeCGPoint, nullptr), nullptr);
}

TEST(AXValue, WhatIsNoneIsOfTheIllegalTypeAndHoldsNothing) {
    CGPoint point{3, 4};
    const auto text = reinterpret_cast<AXValueRef>(CFSTR("no value"));
    EXPECT_EQ(AXValueGetType(text), kAXValueTypeIllegal);
    EXPECT_EQ(AXValueGetType(nullptr), kAXValueTypeIllegal);
    EXPECT_FALSE(AXValueGetValue(text, kAXValueTypeCGPoint, &point));
    EXPECT_FALSE(AXValueGetValue(nullptr, kAXValueTypeCGPoint, &point));
    EXPECT_EQ(point.x, 3);
}

TEST(AXValue, WithoutAPlaceForItGivesNothing) {
    const CGPoint point{3, 4};
    const OwnedValue value = AXValueCreate(kAXValueTypeCGPoint, &point);
    EXPECT_FALSE(AXValueGetValue(value, kAXValueTypeCGPoint, nullptr));
}

TEST(AXValue, IsATypeOfItsOwn) {
    const AXError error = kAXErrorNoValue;
    const OwnedValue value = AXValueCreate(kAXValueTypeAXError, &error);
    EXPECT_EQ(CFGetTypeID(value.get()), AXValueGetTypeID());
    EXPECT_NE(AXValueGetTypeID(), CFNumberGetTypeID());
    EXPECT_NE(AXValueGetTypeID(), AXUIElementGetTypeID());
}

TEST(TypeIDs, OfApplicationServicesBearTheNamesOfTheirTypes) {
    const std::pair<CFTypeID, CFStringRef> kNames[] = {
        {AXValueGetTypeID(), CFSTR("AXValue")},
        {AXUIElementGetTypeID(), CFSTR("AXUIElement")},
        {CGEventGetTypeID(), CFSTR("CGEvent")},
        {CGEventSourceGetTypeID(), CFSTR("CGEventSource")}};
    for (const auto& [type, expected] : kNames) {
        const test_support::OwnedObject<CFStringRef> name = CFCopyTypeIDDescription(type);
        EXPECT_TRUE(CFEqual(name.get(), expected)) << type;
    }
}

TEST(AXValue, ValuesAreEqualWhenTypeAndContentAre) {
    const CGPoint point{1, 2};
    const CGPoint other{1, 3};
    const OwnedValue value = AXValueCreate(kAXValueTypeCGPoint, &point);
    const OwnedValue same = AXValueCreate(kAXValueTypeCGPoint, &point);
    const OwnedValue different = AXValueCreate(kAXValueTypeCGPoint, &other);
    const OwnedValue size = AXValueCreate(kAXValueTypeCGSize, &point);
    EXPECT_TRUE(CFEqual(value.get(), same.get()));
    EXPECT_EQ(CFHash(value.get()), CFHash(same.get()));
    EXPECT_FALSE(CFEqual(value.get(), different.get()));
    EXPECT_FALSE(CFEqual(value.get(), size.get()));
    EXPECT_FALSE(CFEqual(value.get(), CFSTR("text")));
}

TEST(AXValue, LeavesNoObjectBehind) {
    EXPECT_EQ(platform_testing::LeftOverBy([] {
                  const CGPoint point{1, 2};
                  CGPoint read{};
                  const OwnedValue value = AXValueCreate(kAXValueTypeCGPoint, &point);
                  AXValueGetValue(value, kAXValueTypeCGPoint, &read);
              }),
              "");
}

}  // namespace
