// With a meter that sees nothing, every bound would hold.

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "tests/adversary/AllocationMeter.h"

namespace {

using adversary::AllocationMeter;
using adversary::Allocations;

constexpr std::size_t kBytes = 123456;
constexpr std::size_t kSlack = 4096;  // bytes, of the allocator and the runtime

}  // namespace

TEST(AllocationMeter, SeesWhatOperatorNewTakes) {
    const AllocationMeter meter;
    const auto block = std::make_unique<unsigned char[]>(kBytes);
    EXPECT_GE(meter.SoFar().largest, kBytes);
    EXPECT_LT(meter.SoFar().largest, kBytes + kSlack);
}

TEST(AllocationMeter, SeesWhatFoundationTakes) {
    const unsigned char bytes[kBytes] = {};
    const AllocationMeter meter;
    CFRelease(CFDataCreate(kCFAllocatorDefault, bytes, sizeof bytes));
    EXPECT_GE(meter.SoFar().largest, kBytes);
    EXPECT_LT(meter.SoFar().total, kBytes + kSlack);
}

TEST(AllocationMeter, PeakIsWhatLivedAtOneTime) {
    const AllocationMeter meter;
    for (int i = 0; i < 10; ++i) {
        void* volatile block = std::malloc(kBytes);
        std::free(block);
    }
    EXPECT_GE(meter.SoFar().total, 10 * kBytes);
    EXPECT_GE(meter.SoFar().peak, kBytes);
    EXPECT_LT(meter.SoFar().peak, kBytes + kSlack);
    EXPECT_EQ(meter.SoFar().count, 10U);
}

TEST(AllocationMeter, LiveIsWhatHasNotBeenFreed) {
    const AllocationMeter meter;
    void* volatile kept = std::malloc(kBytes);
    std::free(std::malloc(2 * kBytes));
    EXPECT_GE(meter.SoFar().live, static_cast<long>(kBytes));
    EXPECT_LT(meter.SoFar().live, static_cast<long>(kBytes + kSlack));
    std::free(kept);
    EXPECT_EQ(meter.SoFar().live, 0);
}

TEST(AllocationMeter, CountsFromItsOwnBeginning) {
    {
        const AllocationMeter earlier;
        std::free(std::malloc(kBytes));
    }
    const AllocationMeter meter;
    EXPECT_EQ(meter.SoFar().total, 0U);
}
