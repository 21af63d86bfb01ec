// Arguments that Core Foundation does not allow stop the process, and those that may be left out
// may.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include "VEKCommon/OwnedReference.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using testing::ElementsAre;

const CFRange kOutsideOfTwo[] = {CFRangeMake(-1, 1), CFRangeMake(0, -1), CFRangeMake(3, 0),
                                 CFRangeMake(2, 1), CFRangeMake(1, 2)};

TEST(ArgumentsDeathTest, NegativeSizesStopTheProcess) {
    const UInt8 byte = 0;
    const UniChar unit = 'a';
    EXPECT_DEATH(CFArrayCreate(nullptr, nullptr, -1, nullptr), "CFArrayCreate: no values");
    EXPECT_DEATH(CFArrayCreateMutable(nullptr, -1, nullptr), "negative capacity");
    EXPECT_DEATH(CFDataCreate(nullptr, &byte, -1), "CFDataCreate: no bytes");
    EXPECT_DEATH(CFDataCreateMutable(nullptr, -1), "negative capacity");
    EXPECT_DEATH(CFDictionaryCreate(nullptr, nullptr, nullptr, -1, nullptr, nullptr),
                 "no keys or values");
    EXPECT_DEATH(CFDictionaryCreateMutable(nullptr, -1, nullptr, nullptr), "negative capacity");
    EXPECT_DEATH(CFStringCreateWithCharacters(nullptr, &unit, -1), "no characters");
    EXPECT_DEATH(CFStringCreateWithBytes(nullptr, &byte, -1, kCFStringEncodingUTF8, false),
                 "no bytes");
    const OwnedReference<CFMutableDataRef> data(CFDataCreateMutable(nullptr, 0));
    EXPECT_DEATH(CFDataAppendBytes(data.get(), &byte, -1), "negative length");
}

TEST(ArgumentsDeathTest, MissingContentsStopTheProcess) {
    const void* one[] = {kCFNull};
    EXPECT_DEATH(CFArrayCreate(nullptr, nullptr, 1, nullptr), "CFArrayCreate: no values");
    EXPECT_DEATH(CFDictionaryCreate(nullptr, nullptr, one, 1, nullptr, nullptr),
                 "no keys or values");
    EXPECT_DEATH(CFDictionaryCreate(nullptr, one, nullptr, 1, nullptr, nullptr),
                 "no keys or values");
    EXPECT_DEATH(CFStringCreateWithCharacters(nullptr, nullptr, 1), "no characters");
    EXPECT_DEATH(CFStringCreateWithBytes(nullptr, nullptr, 1, kCFStringEncodingUTF8, false),
                 "no bytes");
    EXPECT_DEATH(CFStringCreateWithCString(nullptr, nullptr, kCFStringEncodingUTF8),
                 "null argument");
    EXPECT_DEATH(CFNumberCreate(nullptr, kCFNumberIntType, nullptr), "null argument");
}

TEST(ArgumentsDeathTest, AnUnknownNumberTypeStopsTheProcess) {
    const SInt64 value = 0;
    EXPECT_DEATH(CFNumberCreate(nullptr, static_cast<CFNumberType>(99), &value),
                 "unknown number type");
}

TEST(ArgumentsDeathTest, RangesOutsideStopTheProcess) {
    const UInt8 bytes[] = {1, 2};
    const OwnedReference<CFDataRef> data(CFDataCreate(nullptr, bytes, sizeof bytes));
    UInt8 buffer[8];
    UniChar units[8];
    for (const CFRange& range : kOutsideOfTwo) {
        EXPECT_DEATH(CFDataGetBytes(data.get(), range, buffer), "range outside the data");
        EXPECT_DEATH(CFStringGetCharacters(CFSTR("ab"), range, units), "range outside the string");
        EXPECT_DEATH(CFStringGetBytes(CFSTR("ab"), range, kCFStringEncodingUTF8, 0, false, buffer,
                                      sizeof buffer, nullptr),
                     "range outside the string");
    }
}

TEST(Arguments, NothingMayBeMadeOfNothing) {
    const OwnedReference<CFDictionaryRef> dictionary(
        CFDictionaryCreate(nullptr, nullptr, nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                           &kCFTypeDictionaryValueCallBacks));
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 0);
    const OwnedReference<CFStringRef> text(
        CFStringCreateWithBytes(nullptr, nullptr, 0, kCFStringEncodingUTF8, false));
    EXPECT_EQ(CFStringGetLength(text.get()), 0);
    EXPECT_EQ(CFCopyDescription(nullptr), nullptr);
}

TEST(Arguments, KeysAndValuesMayEachBeLeftOut) {
    for (const bool foundations : {false, true}) {
        const OwnedReference<CFMutableDictionaryRef> dictionary(CFDictionaryCreateMutable(
            nullptr, 0, foundations ? &kCFTypeDictionaryKeyCallBacks : nullptr,
            foundations ? &kCFTypeDictionaryValueCallBacks : nullptr));
        CFDictionarySetValue(dictionary.get(), CFSTR("k"), CFSTR("v"));
        CFDictionaryAddValue(dictionary.get(), CFSTR("k"), CFSTR("w"));
        const void* key = nullptr;
        const void* value = nullptr;
        CFDictionaryGetKeysAndValues(dictionary.get(), nullptr, nullptr);
        CFDictionaryGetKeysAndValues(dictionary.get(), &key, nullptr);
        EXPECT_EQ(key, CFSTR("k"));
        CFDictionaryGetKeysAndValues(dictionary.get(), nullptr, &value);
        EXPECT_EQ(value, CFSTR("v")) << "an addition leaves what is there";
        EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("k"), nullptr));
        EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("x"), nullptr));
    }
}

TEST(GetBytes, GivesNothingInAnEncodingThatIsNotProvided) {
    UInt8 buffer[8];
    CFIndex used = 99;
    EXPECT_EQ(CFStringGetBytes(CFSTR("ab"), CFRangeMake(0, 2), kCFStringEncodingUTF32, '?', true,
                               buffer, sizeof buffer, &used),
              0);
    EXPECT_EQ(used, 0);
}

TEST(GetBytes, WritesNoMarkBeforeNothing) {
    UInt8 buffer[8];
    CFIndex used = 99;
    CFStringGetBytes(CFSTR("ab"), CFRangeMake(1, 0), kCFStringEncodingUTF16, 0, true, buffer,
                     sizeof buffer, &used);
    EXPECT_EQ(used, 0);
    CFStringGetBytes(CFSTR("ab"), CFRangeMake(1, 1), kCFStringEncodingUTF16, 0, true, buffer,
                     sizeof buffer, &used);
    EXPECT_EQ(used, 4);
}

TEST(MaximumSize, CountsTwoBytesForAUnitOfUTF16AndThreeInUTF8) {
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(5, kCFStringEncodingUTF8), 15);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(5, kCFStringEncodingMacRoman), 5);
    for (const CFStringEncoding encoding :
         {kCFStringEncodingUTF16, kCFStringEncodingUTF16BE, kCFStringEncodingUTF16LE}) {
        EXPECT_EQ(CFStringGetMaximumSizeForEncoding(5, encoding), 10);
    }
}

TEST(WindowsLatin1, HasCharactersOfItsOwnBelowA0) {
    const UInt8 bytes[] = {'a', 0x80, 0x9F, 0xA0, 0xFF};
    const OwnedReference<CFStringRef> text(CFStringCreateWithBytes(
        nullptr, bytes, sizeof bytes, kCFStringEncodingWindowsLatin1, false));
    EXPECT_THAT(vectors::UnitsOf(text.get()), ElementsAre('a', 0x20AC, 0x0178, 0xA0, 0xFF));
    char back[8];
    ASSERT_TRUE(CFStringGetCString(text.get(), back, sizeof back, kCFStringEncodingWindowsLatin1));
    EXPECT_STREQ(back, "a\x80\x9F\xA0\xFF");

    const UInt8 open[] = {0x81};
    EXPECT_EQ(CFStringCreateWithBytes(nullptr, open, 1, kCFStringEncodingWindowsLatin1, false),
              nullptr);
    const UniChar control = 0x81;
    const OwnedReference<CFStringRef> unit(CFStringCreateWithCharacters(nullptr, &control, 1));
    EXPECT_FALSE(CFStringGetCString(unit.get(), back, sizeof back, kCFStringEncodingWindowsLatin1));
}

TEST(EightBitText, TakesALetterWithoutItsMarkWhenItLacksTheComposedLetter) {
    const UniChar units[] = {'s', 0x301};  // MacRoman has no s with an acute accent
    const OwnedReference<CFStringRef> text(CFStringCreateWithCharacters(nullptr, units, 2));
    UInt8 buffer[8];
    CFIndex used = 0;
    EXPECT_EQ(CFStringGetBytes(text.get(), CFRangeMake(0, 2), kCFStringEncodingMacRoman, '?', false,
                               buffer, sizeof buffer, &used),
              2);
    EXPECT_EQ(std::string(buffer, buffer + used), "s?");
}

TEST(CreateWithBytes, TakesExternalBytesOfOtherEncodingsAsTheyAre) {
    const UInt8 bytes[] = {0xEF, 0xBB, 0xBF};
    const OwnedReference<CFStringRef> text(
        CFStringCreateWithBytes(nullptr, bytes, sizeof bytes, kCFStringEncodingISOLatin1, true));
    EXPECT_THAT(vectors::UnitsOf(text.get()), ElementsAre(0xEF, 0xBB, 0xBF));
    EXPECT_EQ(CFStringCreateWithBytes(nullptr, bytes, sizeof bytes, kCFStringEncodingUTF32, true),
              nullptr);
    const OwnedReference<CFStringRef> nothing(
        CFStringCreateWithBytes(nullptr, bytes, 0, kCFStringEncodingUTF16, true));
    EXPECT_EQ(CFStringGetLength(nothing.get()), 0);
}

TEST(FileSystemRepresentation, DecomposesOnlyWhatHasADecomposition) {
    char buffer[16];
    const OwnedReference<CFStringRef> text(
        CFStringCreateWithCString(nullptr, "\U0002FB00\U000E0100\u00e9", kCFStringEncodingUTF8));
    ASSERT_TRUE(CFStringGetFileSystemRepresentation(text.get(), buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "\U0002FB00\U000E0100e\u0301");
}

TEST(FileSystemPath, IsNoneForTextThatIsNotUnicode) {
    const UniChar unit = 0xD800;
    const OwnedReference<CFStringRef> text(CFStringCreateWithCharacters(nullptr, &unit, 1));
    EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, text.get(), kCFURLPOSIXPathStyle, false),
              nullptr);
    EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, CFSTR(""), kCFURLPOSIXPathStyle, false),
              nullptr);
}

}  // namespace
