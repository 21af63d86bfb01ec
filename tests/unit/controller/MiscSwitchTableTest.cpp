#include <gtest/gtest.h>

#include "controller/MiscSwitchTable.h"

namespace {

// First and last index of each run of ones; everything between the runs is 0.
constexpr int kRuns[][2] = {{0, 7}, {15, 20}, {25, 29}, {32, 39}, {56, 60}};

bool InsideARun(int index) {
    for (const auto& run : kRuns) {
        if (index >= run[0] && index <= run[1]) {
            return true;
        }
    }
    return false;
}

}  // namespace

TEST(MiscSwitchTable, HoldsThePublishedFlags) {
    static_assert(sizeof kMiscSwitchRespondsToMIDI == 64);
    for (int index = 0; index < 64; ++index) {
        EXPECT_EQ(kMiscSwitchRespondsToMIDI[index], InsideARun(index) ? 1 : 0)
            << "switch " << index;
    }
}
