#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "protocol/TargetWindowRequestSpec.h"
#include "tests/unit/protocol/Bytes.h"

namespace {

using Info = VEK_Driver_TargetWindowInfo;

void SetName(char (&name)[256], unsigned long long& length, UniChar (&units)[1024],
             const std::string& text) {
    std::strncpy(name, text.c_str(), sizeof name - 1);
    length = text.length();
    std::copy(text.begin(), text.end(), units);
}

Info Candidate(const std::string& name) {
    Info info{};
    SetName(info.windowName, info.windowNameLength, info.windowNameUnicode, name);
    return info;
}

Info Candidate(const std::string& name, const std::string& subName) {
    Info info = Candidate(name);
    info.hasSubWindow = true;
    SetName(info.subWindowName, info.subWindowNameLength, info.subWindowNameUnicode, subName);
    return info;
}

Bytes NameField(const std::string& name) {
    return Text(name) + Integers({static_cast<unsigned int>(name.length())}) + Units(name);
}

Bytes Zeros(std::size_t count) {
    return Bytes(count, 0);
}

}  // namespace

TEST(TargetWindowRequest, FieldWithoutSecondNameEndsAfterItsFlag) {
    Info info = Candidate("Event");
    info.firstValue = 1.9;
    info.secondValue = -1.9;
    info.kind = 200;
    info.firstFlag = true;
    STargetWindowRequestSpec record(&info, 1);

    EXPECT_EQ(STargetWindowRequestSpec::CalcInfoFieldSize(info), 40u) << "6 + 24 + 10";
    EXPECT_EQ(record.SerialBufferSize(), 44u);
    EXPECT_EQ(Serialized(record),
              Integers({1}) + NameField("Event") + Integers({1, 0xFFFFFFFF, 200, 1, 0}));
}

TEST(TargetWindowRequest, SecondNamesOwnBytesAreDeliberatelyNotCounted) {
    Info info = Candidate("Event", "Viewer");
    EXPECT_EQ(STargetWindowRequestSpec::CalcInfoFieldSize(info), 40u + 4u + 12u);
}

TEST(TargetWindowRequest, LoneSecondNameLiesBeyondTheStoredSizeButInsideTheBuffer) {
    Info info = Candidate("Event", "Viewer");
    STargetWindowRequestSpec record(&info, 1);
    const Bytes wire =
        Integers({1}) + NameField("Event") + Integers({0, 0, 0, 0, 1}) + NameField("Viewer");

    EXPECT_EQ(record.SerialBufferSize(), 60u) << "the stored size, uncounted name left out";
    ASSERT_EQ(wire.size(), 67u);
    const unsigned char* const bytes = record.Serialize();
    EXPECT_EQ(Bytes(bytes, bytes + wire.size()), wire) << "every byte of the name has its place";
}

TEST(TargetWindowRequest, SizeIsOverAllocatedByTheRunningSumOfItsCandidates) {
    const Info infos[] = {Candidate("Event"), Candidate("A"), Candidate("")};
    STargetWindowRequestSpec record(infos, 3);
    const unsigned int first = 40;
    const unsigned int second = 2 + 24 + 2;
    const unsigned int third = 1 + 24;
    EXPECT_EQ(record.SerialBufferSize(), 4 + first + (first + second) + (first + second + third));
}

TEST(TargetWindowRequest, OverAllocatedRestOfTheBufferIsZero) {
    const Info infos[] = {Candidate("Event"), Candidate("A", "Viewer")};
    STargetWindowRequestSpec record(infos, 2);
    const Bytes wire = Integers({2}) + NameField("Event") + Integers({0, 0, 0, 0, 0}) +
                       NameField("A") + Integers({0, 0, 0, 0, 1}) + NameField("Viewer");
    ASSERT_GT(record.SerialBufferSize(), wire.size());
    EXPECT_EQ(Serialized(record), wire + Zeros(record.SerialBufferSize() - wire.size()));
}

TEST(TargetWindowRequest, WithoutCandidatesIsTheCountAlone) {
    STargetWindowRequestSpec none;
    EXPECT_EQ(Serialized(none), Integers({0}));
    STargetWindowRequestSpec empty(nullptr, 0);
    EXPECT_EQ(Serialized(empty), Integers({0}));
}

TEST(TargetWindowRequest, CandidatesAreCopied) {
    Info info = Candidate("Event");
    STargetWindowRequestSpec record(&info, 1);
    info = Candidate("Other");
    ASSERT_EQ(record.targets.size(), 1u);
    EXPECT_STREQ(record.targets[0].windowName, "Event");
}

TEST(TargetWindowRequest, IsReadBackWhole) {
    const Bytes wire = Integers({2}) + NameField("Event") +
                       Integers({5, 0xFFFFFFFE, 0x1FF, 2, 0x80000000}) + NameField("Viewer") +
                       NameField("") + Integers({0, 0, 0, 0, 0});
    STargetWindowRequestSpec record;
    const ExactCopy body(wire);
    record.Deserialize(body.Start());

    ASSERT_EQ(record.targets.size(), 2u);
    const Info& first = record.targets[0];
    EXPECT_STREQ(first.windowName, "Event");
    EXPECT_EQ(first.windowNameLength, 5u);
    EXPECT_EQ(first.windowNameUnicode[4], 't');
    EXPECT_EQ(first.firstValue, 5.0);
    EXPECT_EQ(first.secondValue, 4294967294.0) << "read as unsigned";
    EXPECT_EQ(first.kind, 0xFF) << "the low byte";
    EXPECT_TRUE(first.firstFlag);
    EXPECT_TRUE(first.hasSubWindow);
    EXPECT_STREQ(first.subWindowName, "Viewer");
    EXPECT_EQ(first.subWindowNameLength, 6u);
    EXPECT_EQ(first.subWindowNameUnicode[0], 'V');
    const Info& second = record.targets[1];
    EXPECT_STREQ(second.windowName, "");
    EXPECT_EQ(second.windowNameLength, 0u);
    EXPECT_FALSE(second.firstFlag);
    EXPECT_FALSE(second.hasSubWindow);
}

TEST(TargetWindowRequest, BothCarriedValuesAreReadAsUnsigned) {
    STargetWindowRequestSpec record;
    record.Deserialize(
        (Integers({1}) + NameField("") + Integers({0xFFFFFFFE, 0x80000000, 0, 0, 0})).data());
    EXPECT_EQ(record.targets[0].firstValue, 4294967294.0);
    EXPECT_EQ(record.targets[0].secondValue, 2147483648.0);
}

TEST(TargetWindowRequest, EachFlagIsTrueForAnyNumberButZero) {
    for (const unsigned int flag : {1u, 2u, 0x100u, 0x80000000u}) {
        STargetWindowRequestSpec record;
        record.Deserialize((Integers({1}) + NameField("") + Integers({0, 0, 0, flag, 0})).data());
        EXPECT_TRUE(record.targets[0].firstFlag) << flag;
        EXPECT_FALSE(record.targets[0].hasSubWindow);
        record.Deserialize(
            (Integers({1}) + NameField("") + Integers({0, 0, 0, 0, flag}) + NameField("Sub"))
                .data());
        EXPECT_FALSE(record.targets[0].firstFlag);
        EXPECT_TRUE(record.targets[0].hasSubWindow) << flag;
        EXPECT_STREQ(record.targets[0].subWindowName, "Sub");
    }
}

TEST(TargetWindowRequest, ReadingAgainForgetsTheCandidatesThatWere) {
    STargetWindowRequestSpec record;
    record.Deserialize(
        (Integers({1}) + NameField("Event") + Integers({1, 2, 3, 1, 1}) + NameField("Viewer"))
            .data());
    record.Deserialize((Integers({1}) + NameField("") + Integers({0, 0, 0, 0, 0})).data());
    EXPECT_EQ(record.targets.size(), 1u);
    EXPECT_STREQ(record.targets[0].windowName, "");
    EXPECT_STREQ(record.targets[0].subWindowName, "");
    EXPECT_EQ(record.SerialBufferSize(), 29u);
}

TEST(TargetWindowRequest, WhatWasReadIsWrittenAgain) {
    const Bytes wire = Integers({1}) + NameField("Event") + Integers({5, 0xFFFFFFFE, 7, 1, 0});
    STargetWindowRequestSpec record;
    record.Deserialize(wire.data());
    EXPECT_EQ(Serialized(record), wire) << "values above the signed range keep their pattern";
}

TEST(TargetWindowRequest, CarriedValuesThatAreNoIntegersAreBounded) {
    Info info = Candidate("");
    info.firstValue = std::nan("");
    info.secondValue = std::numeric_limits<double>::infinity();
    STargetWindowRequestSpec record(&info, 1);
    EXPECT_EQ(Serialized(record),
              Integers({1}) + NameField("") + Integers({0, 0xFFFFFFFF, 0, 0, 0}));
}

TEST(TargetWindowRequest, UnterminatedOrOverlongCandidateInMemoryIsReadInsideItsFieldsOnly) {
    Info info{};
    std::memset(info.windowName, 'n', sizeof info.windowName);
    info.windowNameLength = ~0ull;
    STargetWindowRequestSpec record(&info, 1);
    const Bytes wire = Integers({1}) + Text(std::string(255, 'n')) + Integers({1024}) +
                       Zeros(2048) + Integers({0, 0, 0, 0, 0});
    EXPECT_EQ(Serialized(record), wire);
}

TEST(TargetWindowRequest, LongestNamesComeBack) {
    const std::string name(255, 'n');
    Info info = Candidate(name, name);
    info.windowNameLength = 1024;
    info.subWindowNameLength = 1024;
    info.subWindowNameUnicode[1023] = 0xABCD;
    STargetWindowRequestSpec record(&info, 1);
    STargetWindowRequestSpec back;
    back.Deserialize(record.Serialize());
    ASSERT_EQ(back.targets.size(), 1u);
    EXPECT_EQ(std::memcmp(back.targets[0].windowName, info.windowName, 256), 0);
    EXPECT_EQ(std::memcmp(back.targets[0].subWindowName, info.subWindowName, 256), 0);
    EXPECT_EQ(back.targets[0].subWindowNameUnicode[1023], 0xABCD);
}
