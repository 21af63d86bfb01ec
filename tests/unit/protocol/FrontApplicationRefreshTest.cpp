// Which row of the version profiles a refresh selects for the application in front.

#include "VEKCommon/MessageCodes.h"
#include "tests/support/FrontApplicationState.h"
#include "tests/unit/protocol/DispatcherTest.h"

namespace {

struct Front {
    const char* version;
    int profile;
};

constexpr int kProfileBefore = 42;

std::string SceneOf(const Front& front) {
    return R"({ "front": "com.apple.FinalCut", "applications": [ { "bundleID": "com.apple.FinalCut",
                "name": "Final Cut Pro", "pid": 501,
                "info": { "CFBundleShortVersionString": ")" +
           std::string(front.version) + R"(" }, "windows": [] } ] })";
}

class FrontApplicationRefresh : public DispatcherTest, public testing::WithParamInterface<Front> {
  protected:
    FrontApplicationRefresh() : DispatcherTest(SceneOf(GetParam())) {}
};

class UnreadableVersion : public DispatcherTest {};

INSTANTIATE_TEST_SUITE_P(Versions, FrontApplicationRefresh,
                         testing::Values(Front{"10.4.6", 5}, Front{"10.4.5", 5}, Front{"10.4.2", 4},
                                         Front{"10.4", 4}, Front{"10.4.60", 5}, Front{"10.3.4", 3},
                                         Front{"10.3", 2}, Front{"10.2.1", 1}, Front{"10.1.4", 0},
                                         Front{"10.5", 5}, Front{"11.0", 5}, Front{"10.0.9", 5},
                                         Front{"", 5}));

}  // namespace

TEST_P(FrontApplicationRefresh, SelectsTheProfileOfTheVersion) {
    DriverInspector::Profile(Driver()) = kProfileBefore;
    EXPECT_EQ(Ask(kJAcF, Integers({1, 0, 0})), std::nullopt);
    EXPECT_EQ(DriverInspector::Profile(Driver()), GetParam().profile)
        << "version " << GetParam().version;
    EXPECT_EQ(DriverInspector::FrontAppPID(Driver()), 501);
}

TEST_F(UnreadableVersion, LeavesTheProfileAsItIs) {
    DriverInspector::Profile(Driver()) = kProfileBefore;
    test_support::SetFrontApplication({"com.apple.FinalCut", nullptr, 502});
    EXPECT_EQ(Ask(kJAcF, Integers({1, 0, 0})), std::nullopt);
    EXPECT_EQ(DriverInspector::Profile(Driver()), kProfileBefore);
    EXPECT_EQ(DriverInspector::FrontAppPID(Driver()), 502);
}
