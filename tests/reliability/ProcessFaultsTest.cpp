// Desktop, driver and companion die, stop and restart, in every order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include "tests/reliability/Trio.h"

namespace {

using test_support::kRoles;
using test_support::Name;
using test_support::Role;
using test_support::Trio;
using testing::HasSubstr;
using Order = std::array<Role, kRoles.size()>;

class ProcessFaults : public testing::TestWithParam<Order> {
  protected:
    // Everything works together again. A driver that started before its companion never finds it.
    void ExpectWhole(const std::string& timecode) {
        EXPECT_TRUE(trio.DriverSeesTheEditor());
        if (trio.ConnectedByOrder()) {
            EXPECT_TRUE(trio.CompanionHears(timecode))
                << trio.Process(Role::companion).StandardOutput()
                << trio.Process(Role::driver).StandardError();
        } else {
            EXPECT_THAT(trio.Process(Role::driver).StandardError(),
                        HasSubstr("remotePort is not valid"));
        }
    }
    int InterruptDriver() {
        trio.Process(Role::driver).Signal(SIGINT);
        return trio.Process(Role::driver).WaitForExit();
    }

    Trio trio;
};

std::string OrderName(const testing::TestParamInfo<Order>& info) {
    std::string name;
    for (const Role role : info.param) {
        name += (name.empty() ? "" : "_") + std::string(Name(role));
    }
    return name;
}

std::vector<Order> EveryOrder() {
    Order order = kRoles;
    std::vector<Order> orders;
    do {
        orders.push_back(order);
    } while (std::next_permutation(order.begin(), order.end()));
    return orders;
}

INSTANTIATE_TEST_SUITE_P(Orders, ProcessFaults, testing::ValuesIn(EveryOrder()), OrderName);

TEST_P(ProcessFaults, KilledAllAndStartedAgain) {
    ExpectWhole("01:00:00:10");
    bool driverLives = true;
    for (const Role role : GetParam()) {
        trio.Kill(role);
        driverLives = driverLives && role != Role::driver;
        EXPECT_EQ(trio.DriverAnswers(), driverLives) << "after the death of the " << Name(role);
    }
    for (const Role role : GetParam()) {
        trio.Start(role);
    }
    ExpectWhole("01:00:00:20");
    EXPECT_EQ(InterruptDriver(), 0) << trio.Process(Role::driver).StandardError();
}

TEST_P(ProcessFaults, KilledAndStartedAgainOneAfterTheOther) {
    for (const Role role : GetParam()) {
        trio.Kill(role);
        EXPECT_EQ(trio.DriverAnswers(), role != Role::driver) << Name(role);
        trio.Start(role);
        EXPECT_TRUE(trio.DriverSeesTheEditor()) << Name(role);
    }
    EXPECT_EQ(InterruptDriver(), 0) << trio.Process(Role::driver).StandardError();
}

TEST_P(ProcessFaults, StoppedAllAndContinued) {
    ExpectWhole("01:00:00:10");
    bool driverRuns = true;
    for (const Role role : GetParam()) {
        trio.Stop(role);
        driverRuns = driverRuns && role != Role::driver;
        if (driverRuns) {
            EXPECT_TRUE(trio.DriverAnswers()) << "beside a " << Name(role) << " that stands still";
        }
    }
    for (const Role role : GetParam()) {
        trio.Continue(role);
    }
    EXPECT_TRUE(trio.DriverAnswers());
    ExpectWhole("01:00:00:20");
    EXPECT_EQ(InterruptDriver(), 0) << trio.Process(Role::driver).StandardError();
}

TEST_P(ProcessFaults, StoppedAndThenKilledInTheMiddle) {
    for (const Role role : GetParam()) {
        trio.Stop(role);
    }
    for (const Role role : GetParam()) {
        trio.Kill(role);
    }
    for (const Role role : GetParam()) {
        trio.Start(role);
    }
    ExpectWhole("01:00:00:20");
    EXPECT_EQ(InterruptDriver(), 0) << trio.Process(Role::driver).StandardError();
}

}  // namespace
