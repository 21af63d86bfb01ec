#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "controller/HexText.h"
#include "driver/CVEK_UserSpaceDriver.h"

namespace {

using Driver = CVEK_UserSpaceDriver;

std::string Printed(const unsigned char* data, unsigned length, bool newline) {
    testing::internal::CaptureStdout();
    Driver::PrtHex(data, length, newline);
    return testing::internal::GetCapturedStdout();
}

}  // namespace

TEST(HexText, HasSixteenUpperCaseDigits) {
    EXPECT_EQ(std::string_view(kHex2ASCII, sizeof kHex2ASCII), "0123456789ABCDEF");
}

TEST(HexText, ByteIsTwoDigitsHighNibbleFirst) {
    char text[3];
    Driver::HexByteToCString(0x5F, text);
    EXPECT_STREQ(text, "5F");
    Driver::HexByteToCString(0x00, text);
    EXPECT_STREQ(text, "00");
}

TEST(HexText, BytesAreSeparatedByOneBlankAndNoneFollowsTheLast) {
    const unsigned char data[] = {0x0A, 0xFF};
    char text[7] = {'*', '*', '*', '*', '*', '*', '*'};
    Driver::HexDataToCString(data, 2, text);
    EXPECT_STREQ(text, "0A FF");
    EXPECT_EQ(text[6], '*') << "3 bytes for each byte are enough";
}

TEST(HexText, NoDataIsAnEmptyText) {
    char text = '*';
    Driver::HexDataToCString(nullptr, 0, &text);
    EXPECT_EQ(text, 0);
}

TEST(HexText, PrintsLowerCaseDigitsWithABlankAfterEachByte) {
    const unsigned char data[] = {0x0A, 0xFF};
    EXPECT_EQ(Printed(data, 2, false), "0a ff ");
    EXPECT_EQ(Printed(data, 2, true), "0a ff \n");
    EXPECT_EQ(Printed(data, 0, false), "");
}
