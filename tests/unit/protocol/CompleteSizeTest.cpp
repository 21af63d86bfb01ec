// Which bytes hold a complete record: every record, at every length.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <optional>
#include <random>
#include <string>

#include "protocol/GeometryRecords.h"
#include "protocol/InputRecords.h"
#include "protocol/IntegerRecords.h"
#include "protocol/ServerSpec.h"
#include "protocol/SharedFamilyRecords.h"
#include "protocol/TargetWindowRequestSpec.h"
#include "protocol/WindowRequestSpec.h"
#include "tests/unit/protocol/Bytes.h"

namespace {

struct Sample {
    const char* record;
    std::optional<std::size_t> (*completeSize)(const unsigned char*, std::size_t);
    void (*read)(const unsigned char*);
    Bytes wire;  // one complete record
};

template <class Record>
Sample SampleOf(const char* name, const Bytes& wire) {
    return {name, &Record::CompleteSize,
            [](const unsigned char* bytes) { Record().Deserialize(bytes); }, wire};
}

Bytes TwoTargets() {
    return Integers({2}) + Text("Event") + Integers({5}) + Units("Event") +
           Integers({1, 2, 3, 1, 1}) + Text("Viewer") + Integers({6}) + Units("Viewer") + Text("") +
           Integers({0}) + Integers({1, 2, 3, 0, 0});
}

const Sample kSamples[] = {
    SampleOf<SOneIntSpec>("SOneIntSpec", Integers({1})),
    SampleOf<STwoIntSpec>("STwoIntSpec", Integers({1, 2})),
    SampleOf<SThreeIntSpec>("SThreeIntSpec", Integers({1, 2, 3})),
    SampleOf<SPointSpec>("SPointSpec", Integers({1, 2})),
    SampleOf<SPointSizeSpec>("SPointSizeSpec", Integers({1, 2, 3, 4})),
    SampleOf<STargetPointSizeSpec>("STargetPointSizeSpec", Integers({1, 2, 3, 4, 5})),
    SampleOf<SSendKeystrokeSpec>("SSendKeystrokeSpec", Integers({1, 2, 3})),
    SampleOf<SSendMouseSpec>("SSendMouseSpec", Integers({1, 2, 3, 4})),
    SampleOf<SWindowRequestSpec>("SWindowRequestSpec", Integers({1}) + Text("Viewer")),
    SampleOf<STargetWindowRequestSpec>("STargetWindowRequestSpec", TwoTargets()),
    SampleOf<SServerSpec>("SServerSpec", Integers({7, 3}) + Bytes({1, 2, 3, 0})),
    SampleOf<SServerPortSpec>("SServerPortSpec", Integers({1, 2})),
    SampleOf<SControlSpec>("SControlSpec", Integers({1, 2, 3, 4})),
    SampleOf<SCurrentControlInfoSpec>("SCurrentControlInfoSpec", Integers({1, 2, 3, 4})),
    SampleOf<SPortConnectDisconnectSpec>("SPortConnectDisconnectSpec", Integers({1})),
    SampleOf<SKeysetIndexSpec>("SKeysetIndexSpec", Integers({1})),
    SampleOf<SBankIndexSpec>("SBankIndexSpec", Integers({1})),
    SampleOf<SLayerIndexSpec>("SLayerIndexSpec", Integers({1})),
    SampleOf<STrackerArmSpec>("STrackerArmSpec", Integers({1, 2, 3})),
    SampleOf<SConnectStatusSpec>("SConnectStatusSpec", Integers({1}) + Bytes({2})),
    SampleOf<SResetSocketSpec>("SResetSocketSpec", Text("socket") + Integers({1})),
    SampleOf<SIncommingLongArraySpec>("SIncommingLongArraySpec", Integers({2, 9, 1, 2})),
};

class CompleteSize : public testing::TestWithParam<Sample> {};

void PrintTo(const Sample& sample, std::ostream* out) {
    *out << sample.record;
}

INSTANTIATE_TEST_SUITE_P(All22Records, CompleteSize, testing::ValuesIn(kSamples),
                         [](const auto& info) { return std::string(info.param.record); });

}  // namespace

TEST_P(CompleteSize, IsNothingForEveryShorterLength) {
    const Sample& sample = GetParam();
    for (std::size_t length = 0; length < sample.wire.size(); ++length) {
        const ExactCopy body(sample.wire, length);
        EXPECT_FALSE(sample.completeSize(body.Start(), body.Length())) << length << " bytes";
    }
    EXPECT_FALSE(sample.completeSize(nullptr, 0)) << "no bytes at all";
}

TEST_P(CompleteSize, OfTheWholeRecordIsItsLengthAndReadingStaysInsideIt) {
    const Sample& sample = GetParam();
    const ExactCopy body(sample.wire);
    EXPECT_EQ(sample.completeSize(body.Start(), body.Length()), sample.wire.size());
    sample.read(body.Start());
}

TEST_P(CompleteSize, IgnoresBytesAfterTheRecord) {
    const Sample& sample = GetParam();
    const ExactCopy body(sample.wire + Bytes({0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(sample.completeSize(body.Start(), body.Length()), sample.wire.size());
}

// Bytes drawn mostly from small numbers, so that counts and lengths often fit what follows them.
TEST_P(CompleteSize, OfAnyBytesIsExactlyWhatReadingThemNeeds) {
    const Sample& sample = GetParam();
    std::mt19937 random(20);
    int accepted = 0;
    for (int round = 0; round < 5000; ++round) {
        Bytes bytes(random() % 120);
        for (unsigned char& byte : bytes) {
            byte = static_cast<unsigned char>(random() % 4 == 0 ? random() % 3 : 0);
        }
        const ExactCopy body(bytes);
        const auto size = sample.completeSize(body.Start(), body.Length());
        if (!size) {
            continue;
        }
        ++accepted;
        ASSERT_LE(*size, bytes.size());
        const ExactCopy complete(bytes, *size);
        EXPECT_EQ(sample.completeSize(complete.Start(), *size), size);
        EXPECT_FALSE(*size > 0 && sample.completeSize(complete.Start(), *size - 1));
        sample.read(complete.Start());
    }
    EXPECT_GT(accepted, 100) << "the bytes are hostile, not hopeless";
}

TEST(CompleteSizeOfTargetWindowRequest, RefusesACountThatTheBytesCannotHold) {
    const ExactCopy body(Integers({0xFFFFFFFF}) + Text("Event") + Bytes(1000, 0));
    EXPECT_FALSE(STargetWindowRequestSpec::CompleteSize(body.Start(), body.Length()));
}

TEST(CompleteSizeOfTargetWindowRequest, RefusesANameWithoutTerminator) {
    const ExactCopy body(Integers({1}) + Bytes(200, 'n'));
    EXPECT_FALSE(STargetWindowRequestSpec::CompleteSize(body.Start(), body.Length()));
}

TEST(CompleteSizeOfTargetWindowRequest, RefusesNamesBeyond255Bytes) {
    const Bytes rest = Integers({0, 0, 0, 0, 0, 0});
    const ExactCopy longest(Integers({1}) + Text(std::string(255, 'n')) + rest);
    const ExactCopy tooLong(Integers({1}) + Text(std::string(256, 'n')) + rest);
    EXPECT_EQ(STargetWindowRequestSpec::CompleteSize(longest.Start(), longest.Length()),
              longest.Length());
    EXPECT_FALSE(STargetWindowRequestSpec::CompleteSize(tooLong.Start(), tooLong.Length()));

    const Bytes first = Integers({1}) + Text("A") + Integers({0, 0, 0, 0, 0, 1});
    const ExactCopy second(first + Text(std::string(256, 'n')) + Integers({0}));
    EXPECT_FALSE(STargetWindowRequestSpec::CompleteSize(second.Start(), second.Length()))
        << "the second name alike";
}

TEST(CompleteSizeOfTargetWindowRequest, RefusesNamesBeyond1024Units) {
    const Bytes rest = Integers({0, 0, 0, 0, 0});
    const ExactCopy longest(Integers({1}) + Text("A") + Integers({1024}) + Bytes(2048, 0) + rest);
    const ExactCopy tooLong(Integers({1}) + Text("A") + Integers({1025}) + Bytes(2050, 0) + rest);
    const ExactCopy wrapping(Integers({1}) + Text("A") + Integers({0x80000000}) + Bytes(64, 0));
    EXPECT_EQ(STargetWindowRequestSpec::CompleteSize(longest.Start(), longest.Length()),
              longest.Length());
    EXPECT_FALSE(STargetWindowRequestSpec::CompleteSize(tooLong.Start(), tooLong.Length()));
    EXPECT_FALSE(STargetWindowRequestSpec::CompleteSize(wrapping.Start(), wrapping.Length()))
        << "a byte count that would wrap to 0 in 32 bits";
}

TEST(CompleteSizeOfTargetWindowRequest, HasNoLimitButTheBytesForTheNumberOfCandidates) {
    constexpr unsigned int count = 100000;
    constexpr std::size_t smallestTarget = 25;  // bytes: no name
    const ExactCopy body(Integers({count}) + Bytes(count * smallestTarget, 0));
    EXPECT_EQ(STargetWindowRequestSpec::CompleteSize(body.Start(), body.Length()), body.Length());
    EXPECT_FALSE(STargetWindowRequestSpec::CompleteSize(body.Start(), body.Length() - 1));
}

TEST(CompleteSizeOfWindowRequest, RefusesANameWithoutTerminator) {
    const ExactCopy body(Integers({1}) + Bytes({'V', 'i'}));
    EXPECT_FALSE(SWindowRequestSpec::CompleteSize(body.Start(), body.Length()));
}

TEST(CompleteSizeOfServerRecord, RefusesLengthsThatTheBytesCannotHold) {
    const ExactCopy body(Integers({1, 0xFFFFFFFF, 0, 0}));
    EXPECT_FALSE(SServerSpec::CompleteSize(body.Start(), body.Length()));
}

// Memory that is only reserved: what lies behind the first fields is not looked at.
TEST(CompleteSizeOfServerRecord, RefusesARecordBeyondTheSerialSizeAlthoughTheBytesAreThere) {
    constexpr std::size_t length = (std::size_t{1} << 32U) + 4096;
    void* const memory = mmap(nullptr, length, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto* const body = static_cast<unsigned char*>(memory);
    std::ranges::copy(Integers({1, 0xFFFFFFF6}), body);
    EXPECT_EQ(SServerSpec::CompleteSize(body, length), 0xFFFFFFFEu);
    std::ranges::copy(Integers({1, 0xFFFFFFF7}), body);
    EXPECT_FALSE(SServerSpec::CompleteSize(body, length)) << "4,294,967,296 bytes";
    munmap(memory, length);
}

TEST(CompleteSizeOfResetSocket, RefusesTextsBeyond255Bytes) {
    const ExactCopy longest(Text(std::string(255, 's')) + Integers({1}));
    const ExactCopy tooLong(Text(std::string(256, 's')) + Integers({1}));
    EXPECT_EQ(SResetSocketSpec::CompleteSize(longest.Start(), longest.Length()), longest.Length());
    SResetSocketSpec().Deserialize(longest.Start());
    EXPECT_FALSE(SResetSocketSpec::CompleteSize(tooLong.Start(), tooLong.Length()));
}

TEST(CompleteSizeOfIncomingLongArray, RefusesACountWhoseByteSizeWouldWrap) {
    const ExactCopy body(Integers({0x40000000, 0, 1, 2}));
    EXPECT_FALSE(SIncommingLongArraySpec::CompleteSize(body.Start(), body.Length()));
}
