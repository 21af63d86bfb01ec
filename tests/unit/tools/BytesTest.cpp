#include <gtest/gtest.h>

#include "tools/Bytes.h"

namespace krt9ctl {
namespace {

TEST(Hex, ReadsDigitsOfEitherCaseAndBlanksBetweenBytes) {
    EXPECT_EQ(ParseHex("3B 00ffFE"), (Bytes{0x3B, 0x00, 0xFF, 0xFE}));
}

TEST(Hex, NoDigitsAreNoBytes) {
    EXPECT_EQ(ParseHex(""), Bytes{});
}

TEST(Hex, RefusesHalfABytePrefixesAndOtherCharacters) {
    for (const char* text : {"3", "3b0", "0x3b", "3 b", "zz", "3b,00", "3b\n", "-1"}) {
        EXPECT_EQ(ParseHex(text), std::nullopt) << text;
    }
}

TEST(Hex, WritesTwoLowerCaseDigitsAByte) {
    EXPECT_EQ(FormatHex(Bytes{0x0A, 0xFF, 0x00}), "0aff00");
}

TEST(Code, FirstCharacterIsTheMostSignificantByte) {
    EXPECT_EQ(ParseCode("JAcF"), 0x4A416346);
}

TEST(Code, NeedsExactlyFourPrintableAsciiCharacters) {
    for (const char* text : {"", "JEl", "JElVx", "JE\xC3\xA4", "JE\n.", "\177abc"}) {
        EXPECT_EQ(ParseCode(text), std::nullopt) << text;
    }
}

TEST(Code, BlanksCount) {
    EXPECT_EQ(ParseCode("a b "), 0x61206220);
}

TEST(Code, WithBytesThatAreNotPrintableIsWrittenAsANumber) {
    EXPECT_EQ(FormatCode(0x4A416346), "JAcF");
    EXPECT_EQ(FormatCode(7), "0x00000007");
    EXPECT_EQ(FormatCode(-1), "0xffffffff");
}

}  // namespace
}  // namespace krt9ctl
