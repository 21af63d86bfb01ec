#include <gtest/gtest.h>

#include <cstring>

#include "protocol/SharedFamilyRecords.h"
#include "tests/unit/protocol/Bytes.h"

namespace {

// Records of 32-bit fields alone: 0 by default, and what is read is written again, field by field.
template <class Record>
void ExpectIntegerRecord(const Bytes& wire) {
    Record record;
    EXPECT_EQ(record.SerialBufferSize(), wire.size());
    EXPECT_EQ(Serialized(record), Bytes(wire.size()));
    record.Deserialize(wire.data());
    EXPECT_EQ(Serialized(record), wire);
}

}  // namespace

TEST(SharedFamilyRecords, ServerPortIsTwoIntegers) {
    ExpectIntegerRecord<SServerPortSpec>(Integers({1, 0x80000002}));
}

TEST(SharedFamilyRecords, ControlIsFourIntegers) {
    ExpectIntegerRecord<SControlSpec>(Integers({1, 2, 3, 0xFFFFFFFF}));
}

TEST(SharedFamilyRecords, CurrentControlInfoIsFourIntegers) {
    ExpectIntegerRecord<SCurrentControlInfoSpec>(Integers({4, 3, 2, 1}));
}

TEST(SharedFamilyRecords, PortConnectDisconnectIsOneInteger) {
    ExpectIntegerRecord<SPortConnectDisconnectSpec>(Integers({0x01020304}));
}

TEST(SharedFamilyRecords, KeysetBankAndLayerIndexAreOneIntegerEach) {
    ExpectIntegerRecord<SKeysetIndexSpec>(Integers({5}));
    ExpectIntegerRecord<SBankIndexSpec>(Integers({6}));
    ExpectIntegerRecord<SLayerIndexSpec>(Integers({7}));
}

TEST(SharedFamilyRecords, TrackerArmIsThreeIntegers) {
    ExpectIntegerRecord<STrackerArmSpec>(Integers({1, 2, 3}));
}

TEST(SharedFamilyRecords, ConnectStatusIsAnIntegerAndOneByte) {
    SConnectStatusSpec record;
    EXPECT_EQ(Serialized(record), Bytes(5));
    const Bytes wire = Integers({0x01020304}) + Bytes({0xFE});
    record.Deserialize(wire.data());
    EXPECT_EQ(record.status, 0x01020304u);
    EXPECT_EQ(record.byte, 0xFE);
    EXPECT_EQ(record.SerialBufferSize(), 5u);
    EXPECT_EQ(Serialized(record), wire);
}

TEST(SharedFamilyRecords, ResetSocketIsReadOnly) {
    SResetSocketSpec record;
    EXPECT_STREQ(record.text, "");
    EXPECT_EQ(record.field, 0u);
    record.Deserialize((Text("socket") + Integers({77})).data());
    EXPECT_STREQ(record.text, "socket");
    EXPECT_EQ(record.field, 77u);
    EXPECT_EQ(record.Serialize(), nullptr);
    EXPECT_EQ(record.SerialBufferSize(), 0u) << "the number of bytes it serializes to";
}

TEST(SharedFamilyRecords, IncomingLongArrayIsReadOnlyAndItsElementsAreInHostOrder) {
    SIncommingLongArraySpec record;
    EXPECT_EQ(record.count, 0u);
    EXPECT_EQ(record.field, 0u);
    EXPECT_EQ(record.elements, nullptr);
    const unsigned int elements[] = {0x01020304, 0xFFFFFFFF};
    Bytes raw(sizeof elements);
    std::memcpy(raw.data(), elements, sizeof elements);
    record.Deserialize((Integers({2, 9}) + raw).data());
    EXPECT_EQ(record.count, 2u);
    EXPECT_EQ(record.field, 9u);
    EXPECT_EQ(record.elements[0], 0x01020304u);
    EXPECT_EQ(record.elements[1], 0xFFFFFFFFu);
    EXPECT_EQ(record.Serialize(), nullptr);
    EXPECT_EQ(record.SerialBufferSize(), 0u) << "the number of bytes it serializes to";
}

TEST(SharedFamilyRecords, IncomingLongArrayMayHoldASingleElement) {
    SIncommingLongArraySpec record;
    record.Deserialize(Integers({1, 0, 7}).data());
    EXPECT_EQ(record.elements[0], 7u);
}

TEST(SharedFamilyRecords, IncomingLongArrayReadTwiceFreesItsFirstElements) {
    SIncommingLongArraySpec record;
    record.Deserialize(Integers({3, 0, 1, 2, 3}).data());
    record.Deserialize(Integers({0, 4}).data());
    EXPECT_EQ(record.count, 0u);
    EXPECT_EQ(record.field, 4u);
}
