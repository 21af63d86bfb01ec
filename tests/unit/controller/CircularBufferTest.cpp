#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <numeric>
#include <vector>

#include "controller/CCircularBuffer.h"

// Opens the busy flag and the marks, so that a test can be in the middle of another call.
struct CircularBufferInspector {
    static void SetBusy(CCircularBuffer& buffer, bool busy) { buffer.busy_ = busy; }
    static bool Busy(const CCircularBuffer& buffer) { return buffer.busy_; }
    static unsigned long InMark(const CCircularBuffer& buffer) { return buffer.inMark_; }
    static unsigned long OutMark(const CCircularBuffer& buffer) { return buffer.outMark_; }
};

namespace {

using Inspector = CircularBufferInspector;
using Bytes = std::vector<unsigned char>;

constexpr unsigned long kCapacity = CCircularBuffer::kCapacity;

Bytes Counting(std::size_t count, unsigned char first = 0) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

class CircularBuffer : public testing::Test {
  protected:
    void Add(const Bytes& bytes) { buffer.AddBytes(bytes.data(), bytes.size()); }

    Bytes Get(unsigned long n) {
        Bytes bytes(n);
        bytes.resize(buffer.GetBytes(bytes.data(), n));
        return bytes;
    }

    std::unique_ptr<CCircularBuffer> owner = std::make_unique<CCircularBuffer>();
    CCircularBuffer& buffer = *owner;
};

}  // namespace

TEST_F(CircularBuffer, HoldsThirtyTwoKilobytes) {
    EXPECT_EQ(kCapacity, 32768u);
}

TEST_F(CircularBuffer, IsEmptyWhenMade) {
    EXPECT_TRUE(buffer.IsEmpty());
    EXPECT_EQ(buffer.BytesRemaining(), 0u);
    EXPECT_FALSE(Inspector::Busy(buffer));
    unsigned char byte = 0xAA;
    EXPECT_FALSE(buffer.GetByte(&byte));
    EXPECT_EQ(byte, 0xAA);
    EXPECT_EQ(buffer.GetBytes(&byte, 1), 0u);
}

TEST_F(CircularBuffer, GivesBytesBackInOrder) {
    Add({1, 2, 3});
    buffer.AddByte(4);
    EXPECT_EQ(buffer.BytesRemaining(), 4u);
    unsigned char byte = 0;
    EXPECT_TRUE(buffer.GetByte(&byte));
    EXPECT_EQ(byte, 1);
    EXPECT_EQ(Get(10), (Bytes{2, 3, 4})) << "no more than there is";
    EXPECT_TRUE(buffer.IsEmpty());
}

TEST_F(CircularBuffer, TakesASingleByteAlsoAsTheRestBehindTheEndOfTheRing) {
    Add({7});
    EXPECT_EQ(Get(9), Bytes{7});
    buffer.Reset(kCapacity - 2, kCapacity - 2);
    Add({1, 2, 3});
    EXPECT_EQ(Get(9), (Bytes{1, 2, 3}));
}

TEST_F(CircularBuffer, MarksStoredBeyondTheRingReadAcrossItsEndAllTheSame) {
    Add(Counting(kCapacity));
    buffer.Reset(2 * kCapacity + 3, 2 * kCapacity - 2);
    EXPECT_EQ(Get(9), (Bytes{0xFE, 0xFF, 0, 1, 2}));
    buffer.Reset(kCapacity, 2 * kCapacity - 2);
    unsigned char byte = 0;
    EXPECT_TRUE(buffer.GetByte(&byte));
    EXPECT_EQ(byte, 0xFE);
}

TEST_F(CircularBuffer, ReadsNoMoreThanAskedFor) {
    Add({1, 2, 3});
    EXPECT_EQ(Get(2), (Bytes{1, 2}));
    EXPECT_EQ(Get(0), Bytes{});
    EXPECT_EQ(buffer.BytesRemaining(), 1u);
}

TEST_F(CircularBuffer, AddingItsWholeCapacityToAnEmptyBufferLeavesItReadingAsEmpty) {
    Add(Counting(kCapacity));
    EXPECT_TRUE(buffer.IsEmpty());
    EXPECT_EQ(buffer.BytesRemaining(), 0u);
    EXPECT_EQ(Inspector::InMark(buffer), 0u);
}

TEST_F(CircularBuffer, OneByteLessThanItsCapacityIsReadable) {
    Add(Counting(kCapacity - 1, 5));
    EXPECT_EQ(buffer.BytesRemaining(), kCapacity - 1);
    EXPECT_EQ(Get(kCapacity), Counting(kCapacity - 1, 5));
}

TEST_F(CircularBuffer, ReadsAcrossTheEndOfTheRingInOrderAndWrapsTheOutMark) {
    buffer.Reset(kCapacity - 3, kCapacity - 3);
    Add(Counting(8, 1));
    EXPECT_EQ(Inspector::InMark(buffer), 5u);
    EXPECT_EQ(buffer.BytesRemaining(), 8u);
    EXPECT_EQ(Get(8), Counting(8, 1));
    EXPECT_EQ(Inspector::OutMark(buffer), 5u);
}

TEST_F(CircularBuffer, MarksWrapToZeroExactlyAtTheEndOfTheRing) {
    buffer.Reset(kCapacity - 2, kCapacity - 2);
    Add({1, 2});
    EXPECT_EQ(Inspector::InMark(buffer), 0u);
    EXPECT_EQ(Get(2), (Bytes{1, 2}));
    EXPECT_EQ(Inspector::OutMark(buffer), 0u);

    buffer.Reset(kCapacity - 1, kCapacity - 1);
    buffer.AddByte(9);
    EXPECT_EQ(Inspector::InMark(buffer), 0u);
    unsigned char byte = 0;
    EXPECT_TRUE(buffer.GetByte(&byte));
    EXPECT_EQ(byte, 9);
    EXPECT_EQ(Inspector::OutMark(buffer), 0u);
}

TEST_F(CircularBuffer, WritingMoreThanTheFreeSpaceSilentlyOverwritesUnreadBytes) {
    Add(Counting(kCapacity - 1));
    Add({0xE1, 0xE2, 0xE3});
    EXPECT_EQ(buffer.BytesRemaining(), 2u) << "the writer has overtaken the reader";
    EXPECT_EQ(Get(5), (Bytes{0xE2, 0xE3}));
}

TEST_F(CircularBuffer, WriterThatCatchesUpWithTheReaderExactlyLeavesAnEmptyBuffer) {
    Add({1, 2, 3});
    Add(Bytes(kCapacity - 3, 0xEE));
    EXPECT_TRUE(buffer.IsEmpty());
}

TEST_F(CircularBuffer, WriteLargerThanTheRingStaysInsideItAndEndsLikeSingleBytes) {
    const Bytes bytes = Counting(2 * kCapacity + 5);
    Add(bytes);
    EXPECT_EQ(Inspector::InMark(buffer), 5u);
    EXPECT_EQ(Get(5), Bytes(bytes.end() - 5, bytes.end()));
}

TEST_F(CircularBuffer, MovingTheOutMarkByMoreThanTheContentSkipsOnlyWhatIsThere) {
    Add({1, 2, 3, 4});
    EXPECT_EQ(buffer.MoveOutMarkBy(1), 1u);
    unsigned char byte = 0;
    EXPECT_TRUE(buffer.GetByte(&byte));
    EXPECT_EQ(byte, 2);
    EXPECT_EQ(buffer.MoveOutMarkBy(100), 2u);
    EXPECT_TRUE(buffer.IsEmpty());
    EXPECT_EQ(buffer.MoveOutMarkBy(1), 0u);
}

TEST_F(CircularBuffer, MovingTheOutMarkWrapsAtTheEndOfTheRing) {
    buffer.Reset(2, kCapacity - 2);
    EXPECT_EQ(buffer.MoveOutMarkBy(2), 2u);
    EXPECT_EQ(Inspector::OutMark(buffer), 0u);
    buffer.Reset(2, kCapacity - 2);
    EXPECT_EQ(buffer.MoveOutMarkBy(3), 3u);
    EXPECT_EQ(Inspector::OutMark(buffer), 1u);
}

TEST_F(CircularBuffer, CallMadeWhileBusyAnswersZeroOrFalseAndChangesNothing) {
    Add({1, 2, 3});
    Inspector::SetBusy(buffer, true);

    Bytes out(4, 0xAA);
    EXPECT_EQ(buffer.GetBytes(out.data(), 2), 0u);
    EXPECT_FALSE(buffer.GetByte(out.data()));
    EXPECT_EQ(buffer.MoveOutMarkBy(1), 0u);
    Add({7, 8});
    buffer.AddByte(9);

    EXPECT_EQ(out, Bytes(4, 0xAA));
    EXPECT_TRUE(Inspector::Busy(buffer)) << "the flag belongs to the call that works";
    Inspector::SetBusy(buffer, false);
    EXPECT_EQ(Get(9), (Bytes{1, 2, 3}));
}

TEST_F(CircularBuffer, BytesRemainingIsEmptyAndCopyBytesDoNotLookAtTheBusyFlag) {
    Add({1, 2, 3});
    Inspector::SetBusy(buffer, true);
    EXPECT_EQ(buffer.BytesRemaining(), 3u);
    EXPECT_FALSE(buffer.IsEmpty());
    const Bytes from{4, 5};
    Bytes to(2);
    buffer.CopyBytes(from.data(), to.data(), 2);
    EXPECT_EQ(to, from);
}

TEST_F(CircularBuffer, ResetDoesNotTestTheBusyFlagAndClearsIt) {
    Inspector::SetBusy(buffer, true);
    buffer.Reset(7, 3);
    EXPECT_FALSE(Inspector::Busy(buffer));
    EXPECT_EQ(Inspector::InMark(buffer), 7u);
    EXPECT_EQ(Inspector::OutMark(buffer), 3u);
    EXPECT_EQ(buffer.BytesRemaining(), 4u);
}

TEST_F(CircularBuffer, EveryCallLeavesTheBusyFlagClear) {
    unsigned char byte = 0;
    Add({1, 2, 3});
    buffer.AddByte(4);
    buffer.GetBytes(&byte, 1);
    buffer.GetByte(&byte);
    buffer.MoveOutMarkBy(1);
    EXPECT_FALSE(Inspector::Busy(buffer));
    EXPECT_EQ(buffer.BytesRemaining(), 1u);
}

TEST_F(CircularBuffer, MarksStoredUncheckedNeverReachOutsideTheRing) {
    for (const unsigned long mark : {kCapacity, kCapacity + 7, ~0ul, ~0ul - kCapacity}) {
        buffer.Reset(mark, 0);
        EXPECT_EQ(Inspector::InMark(buffer), mark) << "stored as given";
        Add({1, 2, 3});
        buffer.Reset(mark, 0);
        buffer.AddByte(1);
        buffer.Reset(mark, 5);
        Bytes out(100);
        buffer.GetBytes(out.data(), out.size());
        buffer.Reset(5, mark);
        buffer.GetBytes(out.data(), out.size());
        buffer.Reset(5, mark);
        buffer.GetByte(out.data());
        buffer.MoveOutMarkBy(3);
    }
}

TEST_F(CircularBuffer, CopyBytesGoesByteByByteFromTheFirst) {
    Bytes bytes{1, 2, 3, 4};
    buffer.CopyBytes(bytes.data(), bytes.data() + 1, 3);
    EXPECT_EQ(bytes, (Bytes{1, 1, 1, 1})) << "an overlapping copy repeats the first byte";
}

TEST_F(CircularBuffer, CopyBytesCountsWithThirtyTwoBits) {
    const Bytes from{1, 2};
    Bytes to(2);
    buffer.CopyBytes(from.data(), to.data(), (1ul << 32) + 1);
    EXPECT_EQ(to, (Bytes{1, 0})) << "of the count the low 32 bits hold";
}
