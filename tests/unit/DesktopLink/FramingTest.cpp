#include <gtest/gtest.h>

#include "platform/DesktopLink/Framing.h"

namespace desktop_link {
namespace {

TEST(Framing, PayloadIsKindThenLittleEndianSequenceThenMessage) {
    const std::vector<std::uint8_t> message = {0xAA, 0xBB};
    EXPECT_EQ(MakePayload(FrameKind::reply, 0x01020304, message),
              (std::vector<std::uint8_t>{2, 4, 3, 2, 1, 0xAA, 0xBB}));
}

TEST(Framing, ParsedPayloadHoldsWhatWasPutIn) {
    const std::vector<std::uint8_t> message = {1, 2, 3};
    const auto payload = MakePayload(FrameKind::notification, 0xFEDCBA98, message);
    const auto frame = ParsePayload(payload);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->kind, FrameKind::notification);
    EXPECT_EQ(frame->sequence, 0xFEDCBA98);
    EXPECT_EQ(std::vector<std::uint8_t>(frame->message.begin(), frame->message.end()), message);
}

TEST(Framing, MessageMayBeEmpty) {
    const auto payload = MakePayload(FrameKind::request, 1, {});
    const auto frame = ParsePayload(payload);
    ASSERT_TRUE(frame);
    EXPECT_TRUE(frame->message.empty());
}

TEST(Framing, PayloadShorterThanItsHeaderIsRefused) {
    const auto payload = MakePayload(FrameKind::request, 1, {});
    for (std::size_t length = 0; length < payload.size(); ++length) {
        EXPECT_FALSE(ParsePayload(std::span(payload).first(length))) << length << " bytes";
    }
}

TEST(Framing, UnknownKindIsRefused) {
    for (const int kind : {0, 4, 255}) {
        const std::vector<std::uint8_t> payload = {static_cast<std::uint8_t>(kind), 0, 0, 0, 0};
        EXPECT_FALSE(ParsePayload(payload)) << "kind " << kind;
    }
}

}  // namespace
}  // namespace desktop_link
