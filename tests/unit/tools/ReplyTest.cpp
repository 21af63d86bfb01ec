#include <gtest/gtest.h>

#include "VEKCommon/MessageCodes.h"
#include "tools/Reply.h"

namespace krt9ctl {
namespace {

std::string Describe(MessageCode code, const Bytes& bytes) {
    const RequestRow& row = *FindRequest(code);
    const auto values = DecodeReply(row, bytes);
    return values ? DescribeReply(row, *values) : "undecodable";
}

std::string Object(MessageCode code, const Bytes& bytes) {
    const RequestRow& row = *FindRequest(code);
    const auto values = DecodeReply(row, bytes);
    return values ? OneLine(ReplyObject(row, *values)) : "undecodable";
}

const Bytes kFrameBytes{0x00, 0, 0, 0, 0xF6, 0xFF, 0xFF, 0xFF, 0xA0, 0x05, 0, 0, 0x6E, 0x03, 0, 0};

TEST(Reply, NumbersAreSigned) {
    EXPECT_EQ(Describe(kJElV, {0x01, 0, 0, 0}), "1");
    EXPECT_EQ(Describe(kJElV, {0xFE, 0xFF, 0xFF, 0xFF}), "-2");
    EXPECT_EQ(Object(kJESI, {0xFE, 0xFF, 0xFF, 0xFF}), R"({"code":"JESI","value":-2})");
}

TEST(Reply, IndexesAreUnsigned) {
    EXPECT_EQ(Object(kJGRV, {0xFF, 0xFF, 0xFF, 0xFF}), R"({"code":"JGRV","index":4294967295})");
}

TEST(Reply, PointsReadLikeTheCoordinatesOfADrag) {
    EXPECT_EQ(Describe(kJElP, {0x3B, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF}), "59,-2");
    EXPECT_EQ(Object(kJGlM, {0x3B, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF}),
              R"({"code":"JGlM","x":59,"y":-2})");
    EXPECT_EQ(Object(kJEPp, Bytes(8)), R"({"code":"JEPp","x":0,"y":0})");
}

TEST(Reply, FramesHavePositionAndSize) {
    EXPECT_EQ(Describe(kJWiP, kFrameBytes), "at 0,-10 size 1440x878");
    EXPECT_EQ(Object(kJWiP, kFrameBytes),
              R"({"code":"JWiP","x":0,"y":-10,"width":1440,"height":878})");
}

TEST(Reply, TargetFramesSayWhichCandidateItWas) {
    Bytes bytes{2, 0, 0, 0};
    bytes.insert(bytes.end(), kFrameBytes.begin(), kFrameBytes.end());
    EXPECT_EQ(Describe(kJTWP, bytes), "target 2 at 0,-10 size 1440x878");
    EXPECT_EQ(Object(kJTWP, bytes),
              R"({"code":"JTWP","target":2,"x":0,"y":-10,"width":1440,"height":878})");
}

TEST(Reply, OfAnotherLengthIsNotDecoded) {
    for (const std::size_t length : {0U, 1U, 3U, 5U, 8U}) {
        EXPECT_EQ(Describe(kJElV, Bytes(length)), "undecodable") << length;
    }
}

TEST(RequestTable, FindsEachRequestByItsCode) {
    for (const RequestRow& row : RequestTable()) {
        EXPECT_EQ(FindRequest(row.code), &row) << FormatCode(row.code);
    }
    EXPECT_EQ(FindRequest(*ParseCode("ABCD")), nullptr);
}

}  // namespace
}  // namespace krt9ctl
