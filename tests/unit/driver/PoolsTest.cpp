// There is no autorelease pool around a callout of the run loop, so the driver's callbacks have
// their own: whatever they autorelease is released when they return.

#include "tests/unit/driver/TickedDriver.h"

namespace {

using platform_testing::Growth;
using platform_testing::LiveObjects;
using platform_testing::ObjectCounts;

// There is no pool of the test around the callbacks: what they autorelease outside of their own
// pools is never released, and counts as growth.
class Pools : public TickedDriver {
  protected:
    Pools() : TickedDriver(SceneWithController()) { ObserveBoth(); }

    // The objects by which a hundred calls increase what exists after the first five.
    static ObjectCounts GrowthOver(const std::function<void()>& callback) {
        const auto call = [&](int times) {
            for (int i = 0; i < times; ++i) {
                callback();
            }
        };
        call(5);
        const ObjectCounts before = LiveObjects();
        call(100);
        return Growth(before, LiveObjects());
    }
};

TEST_F(Pools, TicksOfTheTimerLeaveNothingWithoutOneAroundThem) {
    EXPECT_EQ(GrowthOver([] { CVEK_UserSpaceDriver::TimeoutCounterEntry(nullptr, nullptr); }),
              ObjectCounts());
}

TEST_F(Pools, RequestsLeaveNothingWithoutOneAroundThem) {
    EXPECT_EQ(GrowthOver([] {
                  const UInt8 number[] = {100, 0, 0, 0};
                  const CFDataRef body = CFDataCreate(kCFAllocatorDefault, number, sizeof number);
                  for (const SInt32 code : {kJESI, kJElV, kJAcF, kJGlM}) {
                      if (const CFDataRef reply = CVEK_UserSpaceDriver::MessageCallbackEntry(
                              nullptr, code, body, nullptr)) {
                          CFRelease(reply);
                      }
                  }
                  CFRelease(body);
              }),
              ObjectCounts());
}

TEST_F(Pools, ActivationsLeaveNothingWithoutOneAroundThem) {
    EXPECT_EQ(GrowthOver([this] {
                  Activate("com.example.player");
                  Activate("com.apple.FinalCut");
              }),
              ObjectCounts());
}

}  // namespace
