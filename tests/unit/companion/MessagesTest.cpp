// Messages of the driver, decoded, and texts between encodings.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VEKCommon/MessageCodes.h"
#include "companion/KRT9Companion.h"
#include "scenes/notation/Hex.h"

namespace krt9 {
namespace {

Message Decoded(Code code, std::string_view body) {
    return DecodeMessage(code, Bytes(body.begin(), body.end()));
}

TEST(Messages, HaveTheirTextWithoutItsTerminator) {
    EXPECT_EQ(Decoded(kJSLg, std::string_view("en\0", 3)).kind, MessageKind::language);
    EXPECT_EQ(Decoded(kJSLg, std::string_view("en\0", 3)).text, "en");
    EXPECT_EQ(Decoded(kJFSC, std::string_view("\x80\0", 2)).kind, MessageKind::clip);
    EXPECT_EQ(Decoded(kJFSC, std::string_view("\x80\0", 2)).text, "\xC3\x84");
    EXPECT_EQ(Decoded(kJFTC, std::string_view("\0", 1)).kind, MessageKind::timecode);
    EXPECT_EQ(Decoded(kJFTC, std::string_view("\0", 1)).text, "");
}

TEST(Messages, ThatAreNotOneTextAreOthersWithTheirBytes) {
    for (const std::string_view body :
         {std::string_view(""), std::string_view("a"), std::string_view("a\0b", 3),
          std::string_view("a\0b\0", 4), std::string_view("\0\0", 2)}) {
        const Message message = Decoded(kJFSC, body);
        EXPECT_EQ(message.kind, MessageKind::other);
        EXPECT_EQ(message.code, kJFSC);
        EXPECT_EQ(message.body, Bytes(body.begin(), body.end()));
        EXPECT_EQ(message.text, "");
    }
    EXPECT_EQ(Decoded(kStus, "x").kind, MessageKind::other);
    EXPECT_EQ(Decoded(kStus, "").kind, MessageKind::statusQuery);
    EXPECT_EQ(Decoded(CodeOf("ABCD"), std::string_view("a\0", 2)).kind, MessageKind::other);
}

TEST(Messages, StatusReplyIsSevenWordsMostSignificantByteFirst) {
    EXPECT_EQ(scene_notation::FormatHex(StatusReply({2, 0x010203})),
              "00000002"
              "00010203"
              "0000000000000000000000000000000000000000");
}

TEST(Texts, ThatAreNotUtf8HaveNoOtherForm) {
    EXPECT_EQ(ToSystemEncoding("\xFF"), std::nullopt);
    EXPECT_TRUE(ToUtf16("\xFF").empty());
}

TEST(Texts, TheSystemEncodingHoldsAreConvertedBothWays) {
    EXPECT_EQ(ToSystemEncoding("\xC3\x84"), "\x80");
    EXPECT_EQ(ToSystemEncoding("\xE6\xB8\xAF"), std::nullopt);
    EXPECT_EQ(ToSystemEncoding(std::string_view("a\0b", 3)), "a");
    EXPECT_EQ(ToSystemEncoding(""), "");
    EXPECT_EQ(FromSystemEncoding(Bytes{0x80, 0x8A}), "\xC3\x84\xC3\xA4");
    EXPECT_EQ(FromSystemEncoding({}), "");
    EXPECT_THAT(ToUtf16("a\xF0\x9D\x84\x9E"), testing::ElementsAre('a', 0xD834, 0xDD1E));
}

TEST(Outcomes, NameEachResultOfTheMessagePort) {
    EXPECT_EQ(OutcomeOf(0), Outcome::delivered);
    EXPECT_EQ(OutcomeOf(kPortMissing), Outcome::noDriver);
    EXPECT_EQ(OutcomeOf(-1), Outcome::notTaken);
    EXPECT_EQ(OutcomeOf(-2), Outcome::notAnswered);
    EXPECT_EQ(OutcomeOf(-3), Outcome::ended);
    EXPECT_EQ(OutcomeOf(-4), Outcome::failed);
    EXPECT_EQ(OutcomeOf(-5), Outcome::ended);
    EXPECT_EQ(OutcomeOf(-99), Outcome::failed);
}

}  // namespace
}  // namespace krt9
