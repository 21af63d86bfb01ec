#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "protocol/MessageSpec.h"
#include "tests/support/VirtualSlot.h"
#include "tests/unit/protocol/Bytes.h"

namespace {

using test_support::VirtualSlot;

// What the base gives to a record that overrides only what it must.
struct PlainRecord : SMessageSpec {
    explicit PlainRecord(unsigned int size) : SMessageSpec(size) {}
    unsigned char* Serialize() override { return nullptr; }
    void Deserialize(const unsigned char*) override {}
};

}  // namespace

TEST(FieldCodec, IntegersTravelLeastSignificantByteFirst) {
    Bytes bytes(4);
    EXPECT_EQ(SMessageSpec::SerializeField(0x4A416346, bytes.data()), 4u);
    EXPECT_EQ(bytes, (Bytes{0x46, 0x63, 0x41, 0x4A}));

    unsigned int value = 0;
    EXPECT_EQ(SMessageSpec::DeserializeField(bytes.data(), &value), 4u);
    EXPECT_EQ(value, 0x4A416346u);
}

TEST(FieldCodec, MinusOneWrittenAsUnsignedIsFourBytesOfOnes) {
    Bytes bytes(4);
    SMessageSpec::SerializeField(static_cast<unsigned int>(-1), bytes.data());
    EXPECT_EQ(bytes, (Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(FieldCodec, EveryByteOfAnIntegerComesBack) {
    for (const unsigned int value : {0u, 1u, 0x80u, 0xFF00u, 0x80000000u, 0xFFFFFFFFu}) {
        unsigned char bytes[4];
        unsigned int back = ~value;
        SMessageSpec::SerializeField(value, bytes);
        SMessageSpec::DeserializeField(bytes, &back);
        EXPECT_EQ(back, value);
    }
}

TEST(FieldCodec, EmptyZeroTerminatedStringWritesOneZeroByte) {
    unsigned char byte = 0xAA;
    EXPECT_EQ(SMessageSpec::SerializeStringField("", &byte), 1u);
    EXPECT_EQ(byte, 0);
}

TEST(FieldCodec, ZeroTerminatedStringTravelsWithItsTerminator) {
    Bytes bytes(4, 0xAA);
    char text[] = "Hue";
    EXPECT_EQ(SMessageSpec::SerializeStringField(text, bytes.data()), 4u);
    EXPECT_EQ(bytes, Text("Hue"));

    char back[8] = "*******";
    EXPECT_EQ(SMessageSpec::DeserializeStringField(bytes.data(), back), 4u);
    EXPECT_STREQ(back, "Hue");
    EXPECT_EQ(back[4], '*') << "nothing beyond the terminator is written";
}

TEST(FieldCodec, StandardStringTravelsWithOneZeroByte) {
    Bytes bytes(6, 0xAA);
    std::string text = "Event";
    EXPECT_EQ(SMessageSpec::SerializeStringField(text, bytes.data()), 6u);
    EXPECT_EQ(bytes, Text("Event"));

    std::string back = "something else";
    EXPECT_EQ(SMessageSpec::DeserializeStringField(bytes.data(), back), 6u);
    EXPECT_EQ(back, "Event");
}

TEST(FieldCodec, StandardStringTravelsWholeEvenWithAZeroByteInside) {
    Bytes bytes(4, 0xAA);
    EXPECT_EQ(SMessageSpec::SerializeStringField(std::string("a\0b", 3), bytes.data()), 4u);
    EXPECT_EQ(bytes, (Bytes{'a', 0, 'b', 0}));
}

TEST(FieldCodec, StandardStringIsReadUpToTheFirstZeroByteOnly) {
    const Bytes bytes{'a', 0, 'b', 0};
    std::string text;
    EXPECT_EQ(SMessageSpec::DeserializeStringField(bytes.data(), text), 2u);
    EXPECT_EQ(text, "a");
}

TEST(FieldCodec, Utf16UnitsTravelLowByteFirstWithoutTerminator) {
    const unsigned short units[] = {'A', 'b'};
    Bytes bytes(5, 0xAA);
    EXPECT_EQ(SMessageSpec::SerializeStringField(units, 2, bytes.data()), 4u);
    EXPECT_EQ(bytes, (Bytes{0x41, 0x00, 0x62, 0x00, 0xAA}));
}

TEST(FieldCodec, Utf16OfCountZeroWritesNothing) {
    const unsigned short units[] = {'A'};
    unsigned char byte = 0xAA;
    EXPECT_EQ(SMessageSpec::SerializeStringField(units, 0, &byte), 0u);
    EXPECT_EQ(byte, 0xAA);
}

TEST(FieldCodec, Utf16UnitsComeBackWithBothBytes) {
    const unsigned short units[] = {0x1234, 0xD83D, 0xFFFF, 0x00FF};
    unsigned char bytes[8];
    unsigned short back[4] = {};
    EXPECT_EQ(SMessageSpec::SerializeStringField(units, 4, bytes), 8u);
    EXPECT_EQ(SMessageSpec::DeserializeStringField(bytes, back, 4), 8u);
    EXPECT_EQ(std::memcmp(units, back, sizeof units), 0);
}

TEST(MessageSpec, BaseAnswersTheStoredSerialSize) {
    PlainRecord record(11);
    EXPECT_EQ(record.SerialBufferSize(), 11u);
}

TEST(MessageSpec, VirtualOperationsKeepTheirSlots) {
    if (!VirtualSlot(&SMessageSpec::Serialize)) {
        GTEST_SKIP() << "slots are read out of member pointers as x86-64 lays them out";
    }
    EXPECT_EQ(VirtualSlot(&SMessageSpec::Serialize), 2) << "after the two destructors";
    EXPECT_EQ(VirtualSlot(&SMessageSpec::Deserialize), 3);
    EXPECT_EQ(VirtualSlot(&SMessageSpec::SerialBufferSize), 4);
}
