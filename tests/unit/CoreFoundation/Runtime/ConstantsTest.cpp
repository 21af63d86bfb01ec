#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <climits>

#include "VEKCommon/OwnedReference.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

// Initialised before main, as the driver's own tables are.
const CFStringRef kAtNamespaceScope = CFSTR("at namespace scope");
const CFStringRef kTable[2][2] = {{CFSTR("a"), CFSTR("b")}, {CFSTR("a"), nullptr}};
const CFBooleanRef kTrueAtNamespaceScope = kCFBooleanTrue;
const CFNullRef kNullAtNamespaceScope = kCFNull;
const bool kTrueWasTrueBeforeMain = CFBooleanGetValue(kCFBooleanTrue);
const CFTypeID kTypeBeforeMain = CFGetTypeID(kCFBooleanFalse);
const CFIndex kLengthBeforeMain = CFStringGetLength(kAtNamespaceScope);

CFStringRef SameTextElsewhere() {
    return CFSTR("the same text");
}

TEST(ConstantString, IsTheSameObjectWhereverTheSameTextIsWritten) {
    EXPECT_EQ(CFSTR("the same text"), SameTextElsewhere());
    EXPECT_NE(CFSTR("the same text"), CFSTR("another text"));
}

TEST(ConstantString, InitialisesVariablesAtNamespaceScope) {
    EXPECT_EQ(kAtNamespaceScope, CFSTR("at namespace scope"));
    EXPECT_EQ(kLengthBeforeMain, 18);
    EXPECT_EQ(kTable[0][0], kTable[1][0]);
    EXPECT_EQ(kTable[1][1], nullptr);
}

TEST(ConstantString, OutlivesEveryRelease) {
    CFStringRef text = CFSTR("released too often");
    for (int time = 0; time < 3; ++time) {
        CFRelease(text);
    }
    EXPECT_EQ(CFGetRetainCount(text), LONG_MAX);
    EXPECT_EQ(CFRetain(text), text);
    EXPECT_EQ(CFStringGetLength(text), 18);
}

TEST(ConstantString, HoldsTextThatIsNotAscii) {
    EXPECT_EQ(vectors::Shown(CFSTR("Caf\u00e9 \U0001F3AC")), "\"Caf\\u00e9 \\ud83c\\udfac\"");
}

TEST(ConstantString, EqualsAMadeStringWithTheSameTextAndHashesAlike) {
    for (const char* text : {"", "abc", "Caf\u00e9", "\u65e5\u672c", "\U0001F3AC"}) {
        const OwnedReference<CFStringRef> made(
            CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8));
        CFStringRef constant = __CFStringMakeConstantString(text);
        EXPECT_TRUE(CFEqual(constant, made.get())) << text;
        EXPECT_TRUE(CFEqual(made.get(), constant)) << text;
        EXPECT_EQ(CFHash(constant), CFHash(made.get())) << text;
    }
}

TEST(Booleans, AreThereBeforeMain) {
    EXPECT_NE(kTrueAtNamespaceScope, nullptr);
    EXPECT_EQ(kTrueAtNamespaceScope, kCFBooleanTrue);
    EXPECT_NE(kNullAtNamespaceScope, nullptr);
    EXPECT_TRUE(kTrueWasTrueBeforeMain);
    EXPECT_EQ(kTypeBeforeMain, CFBooleanGetTypeID());
}

TEST(Booleans, AreNotTheNumbersOneAndZero) {
    const int values[] = {0, 1};
    const OwnedReference<CFNumberRef> zero(
        CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &values[0]));
    const OwnedReference<CFNumberRef> one(
        CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &values[1]));
    EXPECT_FALSE(CFEqual(kCFBooleanTrue, one.get()));
    EXPECT_FALSE(CFEqual(one.get(), kCFBooleanTrue));
    EXPECT_FALSE(CFEqual(kCFBooleanFalse, zero.get()));
    EXPECT_NE(CFGetTypeID(kCFBooleanTrue), CFGetTypeID(one.get()));
    EXPECT_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
    EXPECT_EQ(CFGetTypeID(kCFBooleanFalse), CFBooleanGetTypeID());
    EXPECT_NE(kCFBooleanTrue, kCFBooleanFalse);
}

TEST(Booleans, ReadAsNumbersAllTheSame) {
    SInt32 value = 7;
    EXPECT_TRUE(CFNumberGetValue(reinterpret_cast<CFNumberRef>(kCFBooleanTrue), kCFNumberSInt32Type,
                                 &value));
    EXPECT_EQ(value, 1);
    EXPECT_TRUE(CFNumberGetValue(reinterpret_cast<CFNumberRef>(kCFBooleanFalse),
                                 kCFNumberSInt32Type, &value));
    EXPECT_EQ(value, 0);
}

TEST(ConstantObjects, OutliveEveryRelease) {
    for (CFTypeRef object :
         {CFTypeRef{kCFBooleanTrue}, CFTypeRef{kCFBooleanFalse}, CFTypeRef{kCFNull}}) {
        CFRelease(object);
        CFRelease(object);
        EXPECT_EQ(CFGetRetainCount(object), LONG_MAX);
    }
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
    EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
    EXPECT_EQ(CFGetTypeID(kCFNull), CFNullGetTypeID());
}

}  // namespace
