#include <gtest/gtest.h>

#include "VEKCommon/ByteBuffers.h"
#include "tests/unit/protocol/Bytes.h"

TEST(ByteBuffers, LongsTravelMostSignificantByteFirst) {
    Bytes bytes(4);
    UToBuffer::StoreLong(0x01020304, bytes.data());
    EXPECT_EQ(bytes, (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(UFromBuffer::GetLong(bytes.data()), 0x01020304u);
}

TEST(ByteBuffers, LongsWithTheHighestBitComeBack) {
    const Bytes bytes{0xFF, 0x00, 0x80, 0x01};
    EXPECT_EQ(UFromBuffer::GetLong(bytes.data()), 0xFF008001u);
}

TEST(ByteBuffers, ShortsAreStoredMostSignificantByteFirst) {
    Bytes bytes(2);
    UToBuffer::StoreShort(0x0102, bytes.data());
    EXPECT_EQ(bytes, (Bytes{1, 2}));
}

TEST(ByteBuffers, GetShortSwapsTheBytesThatStoreShortWrote) {
    const Bytes bytes{0x01, 0x02};
    EXPECT_EQ(UFromBuffer::GetShort(bytes.data()), 0x0201) << "deliberately not the counterpart";
    const Bytes high{0x80, 0xFF};
    EXPECT_EQ(UFromBuffer::GetShort(high.data()), 0xFF80);
}

TEST(ByteBuffers, SingleBytesAreCopied) {
    unsigned char byte = 0;
    UToBuffer::StoreByte(0xFE, &byte);
    EXPECT_EQ(byte, 0xFE);
    EXPECT_EQ(UFromBuffer::GetByte(&byte), 0xFE);
}

TEST(ByteBuffers, LengthPrefixedStringIsStoredZeroTerminated) {
    const unsigned char text[] = {3, 'A', 'b', 'c', 'x'};
    Bytes bytes(5, 0xAA);
    EXPECT_EQ(UToBuffer::StorePStrAsCStr(text, bytes.data()), bytes.data() + 3)
        << "the position of the written 0";
    EXPECT_EQ(bytes, (Bytes{'A', 'b', 'c', 0, 0xAA}));
}

TEST(ByteBuffers, EmptyLengthPrefixedStringIsOneZeroByte) {
    const unsigned char text[] = {0};
    unsigned char byte = 0xAA;
    EXPECT_EQ(UToBuffer::StorePStrAsCStr(text, &byte), &byte);
    EXPECT_EQ(byte, 0);
}

TEST(ByteBuffers, LengthPrefixedStringMayBe255BytesLong) {
    Bytes text(256, 'z');
    text[0] = 255;
    Bytes bytes(257, 0xAA);
    EXPECT_EQ(UToBuffer::StorePStrAsCStr(text.data(), bytes.data()), bytes.data() + 255);
    EXPECT_EQ(bytes[254], 'z');
    EXPECT_EQ(bytes[255], 0);
    EXPECT_EQ(bytes[256], 0xAA);
}

TEST(ByteBuffers, ByteCopiesReturnTheirCount) {
    const Bytes source{1, 2, 3};
    Bytes stored(4, 0xAA);
    Bytes got(4, 0xAA);
    EXPECT_EQ(UToBuffer::StoreBytes(source.data(), 3, stored.data()), 3u);
    EXPECT_EQ(UFromBuffer::GetBytes(source.data(), got.data(), 3), 3u);
    EXPECT_EQ(stored, (Bytes{1, 2, 3, 0xAA}));
    EXPECT_EQ(got, stored);
    EXPECT_EQ(UToBuffer::StoreBytes(source.data(), 0, stored.data()), 0u);
}
