#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "protocol/GeometryRecords.h"
#include "protocol/InputRecords.h"
#include "protocol/IntegerRecords.h"
#include "protocol/ServerSpec.h"
#include "protocol/WindowRequestSpec.h"
#include "tests/unit/protocol/Bytes.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNoNumber = std::nan("");

}  // namespace

// So that a record that is sent unfilled discloses nothing of the process's memory.
TEST(Records, MadeByDefaultHoldZeros) {
    SOneIntSpec one;
    EXPECT_EQ(Serialized(one), Integers({0}));
    STwoIntSpec two;
    EXPECT_EQ(Serialized(two), Integers({0, 0}));
    SThreeIntSpec three;
    EXPECT_EQ(Serialized(three), Integers({0, 0, 0}));
    SPointSpec point;
    EXPECT_EQ(Serialized(point), Integers({0, 0}));
    SPointSizeSpec frame;
    EXPECT_EQ(Serialized(frame), Integers({0, 0, 0, 0}));
    STargetPointSizeSpec target;
    EXPECT_EQ(Serialized(target), Integers({0, 0, 0, 0, 0}));
    SSendKeystrokeSpec keystroke;
    EXPECT_EQ(Serialized(keystroke), Integers({0, 0, 0}));
    SSendMouseSpec mouse;
    EXPECT_EQ(Serialized(mouse), Integers({0, 0, 0, 0}));
    SServerSpec envelope;
    EXPECT_EQ(Serialized(envelope), Integers({0, 0}));
}

TEST(OneIntRecord, HoldsItsNumber) {
    SOneIntSpec record(0xFFFFFFFE);
    EXPECT_EQ(Serialized(record), Integers({0xFFFFFFFE}));
    record.Deserialize(Integers({59}).data());
    EXPECT_EQ(record.value, 59u);
}

TEST(TwoIntRecord, HoldsIdentifierThenValue) {
    STwoIntSpec record;
    record.Deserialize(Integers({59, 7}).data());
    EXPECT_EQ(record.identifier, 59u);
    EXPECT_EQ(record.value, 7u);
    EXPECT_EQ(Serialized(record), Integers({59, 7}));
}

TEST(ThreeIntRecord, HoldsItsNumbersInOrder) {
    SThreeIntSpec record;
    record.Deserialize(Integers({1, 0, 0x80000000}).data());
    EXPECT_EQ(record.a, 1u);
    EXPECT_EQ(record.b, 0u);
    EXPECT_EQ(record.c, 0x80000000u);
    EXPECT_EQ(Serialized(record), Integers({1, 0, 0x80000000}));
}

TEST(PointRecord, NegativeCoordinateTravelsAsTwosComplement) {
    SPointSpec record(59, -2);
    EXPECT_EQ(Serialized(record), (Bytes{0x3B, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF}));

    SPointSpec back;
    back.Deserialize(record.Serialize());
    EXPECT_EQ(back.x, 59);
    EXPECT_EQ(back.y, -2);
}

TEST(PointRecord, CoordinatesAreTruncatedTowardZeroNotRounded) {
    const SPointSpec record(CGPointMake(10.9, -10.9));
    EXPECT_EQ(record.x, 10);
    EXPECT_EQ(record.y, -10);
}

TEST(PointRecord, CoordinatesBeyondTheIntegerRangeBecomeItsLimits) {
    const SPointSpec far(CGPointMake(1e300, -1e300));
    EXPECT_EQ(far.x, std::numeric_limits<int>::max());
    EXPECT_EQ(far.y, std::numeric_limits<int>::min());
    const SPointSpec infinite(CGPointMake(kInfinity, -kInfinity));
    EXPECT_EQ(infinite.x, std::numeric_limits<int>::max());
    EXPECT_EQ(infinite.y, std::numeric_limits<int>::min());
    const SPointSpec edge(CGPointMake(2147483647.9, -2147483648.9));
    EXPECT_EQ(edge.x, std::numeric_limits<int>::max());
    EXPECT_EQ(edge.y, std::numeric_limits<int>::min());
}

TEST(PointRecord, CoordinateThatIsNoNumberBecomesZero) {
    const SPointSpec record(CGPointMake(kNoNumber, 5));
    EXPECT_EQ(record.x, 0);
    EXPECT_EQ(record.y, 5);
}

TEST(PointSizeRecord, HoldsPositionThenSize) {
    CGPoint point = CGPointMake(-1.5, 22.5);
    CGSize size = CGSizeMake(1440, 878.99);
    SPointSizeSpec record(point, size);
    EXPECT_EQ(Serialized(record), Integers({0xFFFFFFFF, 22, 1440, 878}));

    SPointSizeSpec back;
    back.Deserialize(record.Serialize());
    EXPECT_EQ(back.x, -1);
    EXPECT_EQ(back.y, 22);
    EXPECT_EQ(back.width, 1440);
    EXPECT_EQ(back.height, 878);
}

TEST(TargetPointSizeRecord, HoldsIndexThenFrame) {
    CGPoint point = CGPointMake(10, 20);
    CGSize size = CGSizeMake(30.9, kInfinity);
    STargetPointSizeSpec record(3, point, size);
    EXPECT_EQ(Serialized(record), Integers({3, 10, 20, 30, 0x7FFFFFFF}));

    STargetPointSizeSpec back;
    back.Deserialize(record.Serialize());
    EXPECT_EQ(back.targetIndex, 3u);
    EXPECT_EQ(back.x, 10);
    EXPECT_EQ(back.y, 20);
    EXPECT_EQ(back.width, 30);
    EXPECT_EQ(back.height, std::numeric_limits<int>::max());
}

TEST(PointSizeRecord, EachFieldIsTruncatedTowardZero) {
    const SPointSizeSpec positive(CGPointMake(1.9, 2.9), CGSizeMake(3.9, 4.9));
    EXPECT_EQ(positive.x, 1);
    EXPECT_EQ(positive.y, 2);
    EXPECT_EQ(positive.width, 3);
    EXPECT_EQ(positive.height, 4);
    const SPointSizeSpec negative(CGPointMake(-1.9, -2.9), CGSizeMake(-3.9, -4.9));
    EXPECT_EQ(negative.x, -1);
    EXPECT_EQ(negative.y, -2);
    EXPECT_EQ(negative.width, -3);
    EXPECT_EQ(negative.height, -4);
}

TEST(TargetPointSizeRecord, EachFieldOfTheFrameIsTruncatedTowardZero) {
    const STargetPointSizeSpec positive(0xFFFFFFFF, CGPointMake(1.9, 2.9), CGSizeMake(3.9, 4.9));
    EXPECT_EQ(positive.targetIndex, 0xFFFFFFFFu);
    EXPECT_EQ(positive.x, 1);
    EXPECT_EQ(positive.y, 2);
    EXPECT_EQ(positive.width, 3);
    EXPECT_EQ(positive.height, 4);
    const STargetPointSizeSpec negative(0, CGPointMake(-1.9, -2.9), CGSizeMake(-3.9, -4.9));
    EXPECT_EQ(negative.x, -1);
    EXPECT_EQ(negative.y, -2);
    EXPECT_EQ(negative.width, -3);
    EXPECT_EQ(negative.height, -4);
}

TEST(KeystrokeRecord, HoldsKeyModifiersAndFlag) {
    SSendKeystrokeSpec record;
    record.Deserialize(Integers({0x12345, 0x1100, 1}).data());
    EXPECT_EQ(record.keyCode, 0x12345u) << "all 32 bits: only their use is narrower";
    EXPECT_EQ(record.modifiers, 0x1100u);
    EXPECT_EQ(record.flag, 1u);
    EXPECT_EQ(Serialized(record), Integers({0x12345, 0x1100, 1}));
}

TEST(MouseRecord, CoordinatesAreRoundedHalfUpAndTheFlagIsNormalized) {
    SSendMouseSpec record(CGPointMake(10.5, 3.49), 1, 7);
    EXPECT_EQ(record.x, 11u);
    EXPECT_EQ(record.y, 3u);
    EXPECT_EQ(record.button, 1u);
    EXPECT_EQ(record.flag, 1u);
    EXPECT_EQ(Serialized(record), Integers({11, 3, 1, 1}));
}

TEST(MouseRecord, EachCoordinateIsRoundedByItself) {
    SSendMouseSpec record(CGPointMake(3.49, 10.5), 0x12345, 0);
    EXPECT_EQ(record.x, 3u);
    EXPECT_EQ(record.y, 11u);
    EXPECT_EQ(record.button, 0x12345u) << "all 32 bits: only their use is narrower";
    EXPECT_EQ(record.flag, 0u);
}

TEST(MouseRecord, NegativeCoordinateIsTruncatedTowardZeroAfterAddingAHalf) {
    SSendMouseSpec record(CGPointMake(-10.3, -0.6), 0, 0);
    EXPECT_EQ(Serialized(record), Integers({static_cast<unsigned int>(-9), 0, 0, 0}));
}

TEST(MouseRecord, CoordinatesAreReadBackAsUnsigned) {
    SSendMouseSpec record;
    record.Deserialize(Integers({0xFFFFFFF7, 5, 0x10100, 0}).data());
    EXPECT_EQ(record.x, 4294967287u);
    EXPECT_EQ(record.y, 5u);
    EXPECT_EQ(record.button, 0x10100u);
    EXPECT_EQ(record.flag, 0u);
}

TEST(MouseRecord, FlagReadFromTheWireIsZeroOrOne) {
    SSendMouseSpec record;
    record.Deserialize(Integers({1, 0xFFFFFFFE, 3, 0x80000000}).data());
    EXPECT_EQ(record.y, 4294967294u);
    record.y = 2;
    EXPECT_EQ(Serialized(record), Integers({1, 2, 3, 1}));
}

TEST(MouseRecord, CoordinatesOutOfRangeBecomeTheNearestLimitAndNoNumberBecomesZero) {
    SSendMouseSpec record(CGPointMake(kInfinity, -kInfinity), 0, 0);
    EXPECT_EQ(record.x, 0xFFFFFFFFu);
    EXPECT_EQ(record.y, 0x80000000u);
    EXPECT_EQ(SSendMouseSpec(CGPointMake(kNoNumber, 0), 0, 0).x, 0u);
    EXPECT_EQ(SSendMouseSpec(CGPointMake(3e9, 0), 0, 0).x, 3000000000u)
        << "what is read back as unsigned keeps its value above the signed range";
}

TEST(WindowRequestRecord, FlagThenNameThenTerminator) {
    std::string name = "Viewer";
    SWindowRequestSpec record(name, true);
    EXPECT_EQ(record.SerialBufferSize(), 11u);
    EXPECT_EQ(Serialized(record), Integers({1}) + Text("Viewer"));
}

TEST(WindowRequestRecord, MadeByDefaultHasNoBuffer) {
    SWindowRequestSpec record;
    EXPECT_EQ(record.Serialize(), nullptr);
    EXPECT_EQ(record.name, "");
    EXPECT_FALSE(record.flag);
    EXPECT_EQ(record.SerialBufferSize(), 5u);
}

TEST(WindowRequestRecord, IsReadBack) {
    SWindowRequestSpec record;
    record.Deserialize((Integers({7}) + Text("Événement")).data());
    EXPECT_TRUE(record.flag) << "any number but 0";
    EXPECT_EQ(record.name, "Événement");
    EXPECT_EQ(record.SerialBufferSize(), record.name.length() + 5) << "computed anew";
    EXPECT_EQ(record.Serialize(), nullptr) << "reading gives the record no buffer";
}

TEST(WindowRequestRecord, EmptyNameIsOneZeroByte) {
    SWindowRequestSpec record("", false);
    EXPECT_EQ(Serialized(record), Integers({0}) + Text(""));
}

TEST(WindowRequestRecord, NameChangedAfterwardsStillFits) {
    SWindowRequestSpec record("a", false);
    record.name = std::string(5000, 'b');
    EXPECT_EQ(Serialized(record), Integers({0}) + Text(std::string(5000, 'b')));
}

TEST(ServerRecord, OddDataIsPaddedToAnEvenLength) {
    unsigned char data[] = {0x61, 0x62, 0x63};
    SServerSpec record(7, 3, data);
    EXPECT_EQ(record.SerialBufferSize(), 12u);
    EXPECT_EQ(Serialized(record), Integers({7, 3}) + Bytes({0x61, 0x62, 0x63, 0}))
        << "the pad byte's value is free; ours is 0";
}

TEST(ServerRecord, EvenDataHasNoPadByte) {
    const unsigned char data[] = {1, 2};
    SServerSpec record(1, 2, data);
    EXPECT_EQ(Serialized(record), Integers({1, 2}) + Bytes({1, 2}));
}

TEST(ServerRecord, BufferHoldsTheSerialSizeEvenAfterItsDataWasShortened) {
    const unsigned char data[] = {1, 2, 3, 4};
    SServerSpec record(1, 4, data);
    record.data.resize(2);
    record.length = 2;
    EXPECT_EQ(Serialized(record), Integers({1, 2}) + Bytes({1, 2, 0, 0}));
}

TEST(ServerRecord, MadeByDefaultIsEmptyAndEightBytesLong) {
    SServerSpec record;
    EXPECT_EQ(record.length, 0u);
    EXPECT_EQ(record.SerialBufferSize(), 8u);
}

TEST(ServerRecord, IsReadBackAgainAndAgain) {
    SServerSpec record;
    record.Deserialize((Integers({9, 5}) + Bytes({1, 2, 3, 4, 5, 0xEE})).data());
    EXPECT_EQ(record.kind, 9u);
    EXPECT_EQ(record.length, 5u);
    EXPECT_EQ(record.SerialBufferSize(), 14u);
    record.Deserialize((Integers({2, 1}) + Bytes({8, 0xEE})).data());
    EXPECT_EQ(Serialized(record), Integers({2, 1}) + Bytes({8, 0}));
}
