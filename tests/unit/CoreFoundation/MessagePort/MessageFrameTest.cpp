#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "platform/CoreFoundation/MessagePort/MessageFrame.h"

namespace message_port {
namespace {

using testing::ElementsAre;

TEST(MessageFrame, HeaderIsLittleEndian) {
    EXPECT_THAT(EncodeHeader({MessageHeader::Kind::request, true, 0x01020304, 0xA0B0C0D0}),
                ElementsAre(1, 1, 0, 0, 4, 3, 2, 1, 0xD0, 0xC0, 0xB0, 0xA0));
    EXPECT_THAT(EncodeHeader({MessageHeader::Kind::reply, false, -2, 5}),
                ElementsAre(2, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 5, 0, 0, 0));
}

TEST(MessageFrame, DecodesWhatItEncodes) {
    const MessageHeader header{MessageHeader::Kind::reply, true, -2147483647 - 1, 4294967295U};
    const HeaderBytes bytes = EncodeHeader(header);
    std::vector<std::uint8_t> payload(bytes.begin(), bytes.end());
    payload.push_back(42);
    const auto message = DecodeMessage(payload);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->header.kind, header.kind);
    EXPECT_EQ(message->header.wantsReply, header.wantsReply);
    EXPECT_EQ(message->header.msgid, header.msgid);
    EXPECT_EQ(message->header.sequence, header.sequence);
    EXPECT_THAT(message->data, ElementsAre(42));
}

TEST(MessageFrame, EveryCutHeaderIsNoMessage) {
    const HeaderBytes bytes = EncodeHeader({});
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(DecodeMessage(std::span(bytes).first(length))) << length << " bytes";
    }
    EXPECT_TRUE(DecodeMessage(bytes));
}

TEST(MessageFrame, EveryUnknownKindFlagOrPaddingIsNoMessage) {
    for (const std::size_t offset : {0U, 1U, 2U, 3U}) {
        for (int value = 0; value < 256; ++value) {
            HeaderBytes bytes = EncodeHeader({});
            bytes[offset] = static_cast<std::uint8_t>(value);
            const bool known = offset == 0   ? value == 1 || value == 2
                               : offset == 1 ? value <= 1
                                             : value == 0;
            EXPECT_EQ(DecodeMessage(bytes).has_value(), known)
                << "byte " << offset << " is " << value;
        }
    }
}

}  // namespace
}  // namespace message_port
