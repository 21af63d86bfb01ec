// Desktop, driver and companion die, stop and restart, in every order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/reliability/Together.h"

namespace {

using test_support::kRoles;
using test_support::Name;
using test_support::Role;
using test_support::Stage;
using testing::HasSubstr;
using Order = std::array<Role, kRoles.size()>;

class ProcessFaults : public testing::TestWithParam<Order> {
  protected:
    ProcessFaults() { StartTogether(stage); }

    // Everything works together again. A driver that started before its companion never finds it.
    void ExpectWhole(const std::string& timecode) {
        EXPECT_TRUE(test_support::DriverSeesTheEditor());
        if (stage.StartedBefore(Role::companion, Role::driver)) {
            EXPECT_TRUE(CompanionHears(stage, timecode))
                << stage.Companion().StandardOutput() << stage.Driver().StandardError();
        } else {
            EXPECT_THAT(stage.Driver().StandardError(), HasSubstr("remotePort is not valid"));
        }
    }

    Stage stage;
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
        stage.Kill(role);
        driverLives = driverLives && role != Role::driver;
        EXPECT_EQ(test_support::DriverAnswers(), driverLives)
            << "after the death of the " << Name(role);
    }
    for (const Role role : GetParam()) {
        stage.Restart(role);
    }
    ExpectWhole("01:00:00:20");
    EXPECT_EQ(stage.Interrupt(Role::driver), 0) << stage.Driver().StandardError();
}

TEST_P(ProcessFaults, KilledAndStartedAgainOneAfterTheOther) {
    for (const Role role : GetParam()) {
        stage.Kill(role);
        EXPECT_EQ(test_support::DriverAnswers(), role != Role::driver) << Name(role);
        stage.Restart(role);
        EXPECT_TRUE(test_support::DriverSeesTheEditor()) << Name(role);
    }
    EXPECT_EQ(stage.Interrupt(Role::driver), 0) << stage.Driver().StandardError();
}

TEST_P(ProcessFaults, StoppedAllAndContinued) {
    ExpectWhole("01:00:00:10");
    bool driverRuns = true;
    for (const Role role : GetParam()) {
        stage.Stop(role);
        driverRuns = driverRuns && role != Role::driver;
        if (driverRuns) {
            EXPECT_TRUE(test_support::DriverAnswers())
                << "beside a " << Name(role) << " that stands still";
        }
    }
    for (const Role role : GetParam()) {
        stage.Continue(role);
    }
    EXPECT_TRUE(test_support::DriverAnswers());
    ExpectWhole("01:00:00:20");
    EXPECT_EQ(stage.Interrupt(Role::driver), 0) << stage.Driver().StandardError();
}

TEST_P(ProcessFaults, StoppedAndThenKilledInTheMiddle) {
    for (const Role role : GetParam()) {
        stage.Stop(role);
    }
    for (const Role role : GetParam()) {
        stage.Kill(role);
    }
    for (const Role role : GetParam()) {
        stage.Restart(role);
    }
    ExpectWhole("01:00:00:20");
    EXPECT_EQ(stage.Interrupt(Role::driver), 0) << stage.Driver().StandardError();
}

}  // namespace
