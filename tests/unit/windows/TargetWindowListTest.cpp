// Candidates of a target-window request in little memory, and whole when they are asked for.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "windows/TargetWindowList.h"

namespace {

using Info = VEK_Driver_TargetWindowInfo;

Info EveryFieldDifferent() {
    Info info = {};
    std::strcpy(info.windowName, "window");
    std::strcpy(info.subWindowName, "sub-window");
    info.windowNameLength = 2;
    info.windowNameUnicode[0] = 0x1234;
    info.windowNameUnicode[1] = 0x5678;
    info.subWindowNameLength = 1;
    info.subWindowNameUnicode[0] = 0x9ABC;
    info.firstValue = -1.25;
    info.secondValue = 1e300;
    info.kind = 200;
    info.firstFlag = true;
    info.hasSubWindow = false;
    return info;
}

void ExpectEqual(const Info& left, const Info& right) {
    EXPECT_EQ(std::memcmp(left.windowName, right.windowName, sizeof left.windowName), 0);
    EXPECT_EQ(std::memcmp(left.subWindowName, right.subWindowName, sizeof left.subWindowName), 0);
    EXPECT_EQ(left.windowNameLength, right.windowNameLength);
    EXPECT_EQ(left.subWindowNameLength, right.subWindowNameLength);
    EXPECT_TRUE(std::ranges::equal(left.windowNameUnicode, right.windowNameUnicode));
    EXPECT_TRUE(std::ranges::equal(left.subWindowNameUnicode, right.subWindowNameUnicode));
    EXPECT_EQ(left.firstValue, right.firstValue);
    EXPECT_EQ(left.secondValue, right.secondValue);
    EXPECT_EQ(left.kind, right.kind);
    EXPECT_EQ(left.firstFlag, right.firstFlag);
    EXPECT_EQ(left.hasSubWindow, right.hasSubWindow);
}

Info Longest() {
    Info info = {};
    std::fill_n(info.windowName, 255, 'n');
    std::fill_n(info.subWindowName, 255, 's');
    std::fill_n(info.windowNameUnicode, 1024, UniChar{'N'});
    std::fill_n(info.subWindowNameUnicode, 1024, UniChar{'S'});
    info.windowNameLength = 1024;
    info.subWindowNameLength = 1024;
    info.hasSubWindow = true;
    return info;
}

}  // namespace

TEST(TargetWindowInfo, HasPlaceForNamesOf255BytesAnd1024Units) {
    EXPECT_EQ(sizeof(Info::windowName), 256u);
    EXPECT_EQ(sizeof(Info::windowNameUnicode), 1024 * sizeof(UniChar));
    EXPECT_EQ(sizeof(Info::subWindowName), 256u);
    EXPECT_EQ(sizeof(Info::subWindowNameUnicode), 1024 * sizeof(UniChar));
}

TEST(TargetWindowList, CopiesEveryFieldOfItsCandidatesInTheirOrder) {
    const std::vector<Info> infos = {EveryFieldDifferent(), Info{}, Longest()};
    const TargetWindowList list(infos.data(), infos.size());
    ASSERT_EQ(list.size(), 3u);
    EXPECT_FALSE(list.empty());
    std::size_t i = 0;
    for (const Info& copy : list) {
        SCOPED_TRACE(i);
        ExpectEqual(copy, infos[i]);
        ExpectEqual(list[i], infos[i]);
        ++i;
    }
    EXPECT_EQ(i, 3u);
}

TEST(TargetWindowList, KeepsTheSecondFlagWithoutTheFirst) {
    Info info = EveryFieldDifferent();
    info.firstFlag = false;
    info.hasSubWindow = true;
    ExpectEqual(TargetWindowList(&info, 1)[0], info);
}

TEST(TargetWindowList, WithoutCandidatesIsEmpty) {
    const TargetWindowList list;
    EXPECT_EQ(list.size(), 0u);
    EXPECT_TRUE(list.empty());
    EXPECT_TRUE(list.begin() == list.end());
}

TEST(TargetWindowList, CandidateTakesFewerBytesThanOnTheWire) {
    EXPECT_EQ(TargetWindowList::PackedSize(Info{}), 24u) << "25 on the wire";
    const Info info = EveryFieldDifferent();
    EXPECT_EQ(TargetWindowList::PackedSize(info), 24u + 6 + 10 + 4 + 2);
    EXPECT_EQ(TargetWindowList::PackedSize(Longest()), 24u + 2 * 255 + 2 * 2048);
}

TEST(TargetWindowList, ReadsNamesAndUnitsInsideTheirFieldsOnly) {
    Info info = {};
    std::memset(info.windowName, 'n', sizeof info.windowName);
    std::memset(info.subWindowName, 's', sizeof info.subWindowName);
    info.windowNameLength = std::numeric_limits<unsigned long long>::max();
    info.subWindowNameLength = 0x10000;  // 0 in 16 bits
    const Info copy = TargetWindowList(&info, 1)[0];
    EXPECT_EQ(copy.windowName, std::string(255, 'n'));
    EXPECT_EQ(copy.subWindowName, std::string(255, 's'));
    EXPECT_EQ(copy.windowNameLength, 1024u);
    EXPECT_EQ(copy.subWindowNameLength, 1024u);
}
