#include <CoreServices/CoreServices.h>
#include <gtest/gtest.h>

#include "tests/support/OwnedObject.h"

namespace {

using OwnedString = test_support::OwnedObject<CFStringRef>;

OwnedString String(std::initializer_list<UniChar> characters) {
    return CFStringCreateWithCharacters(kCFAllocatorDefault, characters.begin(),
                                        static_cast<CFIndex>(characters.size()));
}

TEST(FourCharacterCode, FirstCharacterIsInTheTopByte) {
    EXPECT_EQ(UTGetOSTypeFromString(CFSTR("abcd")), 0x61626364u);
    EXPECT_EQ(UTGetOSTypeFromString(CFSTR("????")), 0x3F3F3F3Fu);
    EXPECT_EQ(UTGetOSTypeFromString(CFSTR("A  z")), 0x4120207Au);
}

TEST(FourCharacterCode, CharactersAreMacRomanBytes) {
    // A with diaeresis, Greek capital omega, the euro sign, o with diaeresis.
    EXPECT_EQ(UTGetOSTypeFromString(String({0x00C4, 0x03A9, 0x20AC, 0x00F6})), 0x80BDDB9Au);
}

TEST(FourCharacterCode, NulIsACharacterLikeAnyOther) {
    EXPECT_EQ(UTGetOSTypeFromString(String({'a', 0, 'c', 0})), 0x61006300u);
}

TEST(FourCharacterCode, TextOfAnotherLengthIsNoCode) {
    EXPECT_EQ(UTGetOSTypeFromString(CFSTR("")), 0u);
    EXPECT_EQ(UTGetOSTypeFromString(CFSTR("abc")), 0u);
    EXPECT_EQ(UTGetOSTypeFromString(CFSTR("abcde")), 0u);
}

TEST(FourCharacterCode, CharacterThatMacRomanLacksIsNoCode) {
    EXPECT_EQ(UTGetOSTypeFromString(String({'a', 'b', 'c', 0x4E2D})), 0u);
    EXPECT_EQ(UTGetOSTypeFromString(String({0xD83D, 0xDE00, 'c', 'd'})), 0u);
}

TEST(FourCharacterCode, NullIsNoCode) {
    EXPECT_EQ(UTGetOSTypeFromString(nullptr), 0u);
}

}  // namespace
