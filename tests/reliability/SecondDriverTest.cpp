// A driver that starts while another one holds the port.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <memory>
#include <optional>
#include <vector>

#include "tests/reliability/Together.h"
#include "tests/reliability/WireClient.h"
#include "tests/support/Files.h"
#include "tests/support/WaitUntil.h"

namespace {

using test_support::ChildProcess;
using test_support::DriverAnswers;
using test_support::DriverSeesTheEditor;
using test_support::LinesOf;
using test_support::Role;
using test_support::Stage;
using test_support::WireClient;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr char kTaken[] = "CFMessagePort \"KRT9Background\": the name is taken by another process";
constexpr char kVersion[] = "com.solvanto.KRT9Background version 1.0.0";

class SecondDriver : public testing::Test {
  protected:
    SecondDriver() {
        StartTogether(stage);
        EXPECT_TRUE(DriverSeesTheEditor());
        client.emplace();
        socketBefore = Socket();
    }

    // Which file is the port's socket; 0 for none.
    ino_t Socket() const {
        struct stat status {};
        const std::string path = stage.Session().Path() / "KRT9Background";
        return lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
    }

    // One request over a connection that lasts, answered by the driver that it was opened to.
    void ExpectServed() {
        ++sequence;
        ASSERT_TRUE(client->SendBytes(WireClient::Request("JGlM", {}, sequence)));
        const auto reply = client->ReceiveReply();
        ASSERT_TRUE(reply && reply->sequence == sequence && reply->data.size() == 8);
    }

    // Requests to the first one until the text appears, at least twenty.
    void ExpectServedUntil(ChildProcess& second, const std::string& text) {
        bool said = false;
        EXPECT_TRUE(test_support::WaitUntil([&] {
            ExpectServed();
            said = said || second.WaitForOutput(text, 0.001);
            return HasFatalFailure() || (said && sequence >= 20);
        })) << second.StandardError();
        EXPECT_TRUE(said);
    }

    // The two lines of a driver that has no port, and its orderly end.
    static void ExpectIdledAndEnds(ChildProcess& second) {
        second.Signal(SIGINT);
        EXPECT_EQ(second.WaitForExit(), 0) << second.StandardError();
        EXPECT_THAT(LinesOf(second.StandardError()),
                    ElementsAre(HasSubstr(kTaken), HasSubstr(kVersion)));
        EXPECT_EQ(second.StandardOutput(), "");
    }

    Stage stage;
    std::optional<WireClient> client;
    std::uint32_t sequence = 0;
    ino_t socketBefore = 0;
};

}  // namespace

TEST_F(SecondDriver, SaysSoAndIdlesWhileTheFirstGoesOnServing) {
    const auto second = Stage::LaunchDriver();
    ExpectServedUntil(*second, kVersion);
    EXPECT_EQ(Socket(), socketBefore);
    EXPECT_TRUE(CompanionHears(stage, "01:00:00:10"));
    ExpectIdledAndEnds(*second);
    EXPECT_EQ(Socket(), socketBefore) << "the first one's socket went with the second";
    ExpectServed();
    EXPECT_TRUE(DriverAnswers()) << "newcomers";
    EXPECT_TRUE(CompanionHears(stage, "01:00:00:20"));
    // Each driver tells its language once, and only the first has.
    EXPECT_THAT(LinesOf(stage.Companion().StandardOutput()),
                testing::Contains(HasSubstr("JSLg")).Times(1));
}

TEST_F(SecondDriver, DoesNotDisturbTheFirstByItsDeath) {
    const auto second = Stage::LaunchDriver();
    ExpectServedUntil(*second, kVersion);
    second->Signal(SIGKILL);
    EXPECT_EQ(second->WaitForExit(), 128 + SIGKILL);
    ExpectServed();
    EXPECT_EQ(Socket(), socketBefore);
    EXPECT_TRUE(CompanionHears(stage, "01:00:00:10"));
}

// It looked for the port once, when it started.
TEST_F(SecondDriver, DoesNotTakeThePortThatTheFirstLeaves) {
    const auto second = Stage::LaunchDriver();
    ExpectServedUntil(*second, kVersion);
    EXPECT_EQ(stage.Interrupt(Role::driver), 0);
    EXPECT_EQ(Socket(), 0U);
    EXPECT_FALSE(DriverAnswers());

    stage.Restart(Role::driver);  // the third takes it, and the second leaves it alone
    EXPECT_TRUE(DriverAnswers());
    const ino_t ofTheThird = Socket();
    ExpectIdledAndEnds(*second);
    EXPECT_EQ(Socket(), ofTheThird);
    EXPECT_TRUE(DriverAnswers());
}

TEST_F(SecondDriver, DoesNotTakeThePortOfAFirstThatWasKilled) {
    const auto second = Stage::LaunchDriver();
    ExpectServedUntil(*second, kVersion);
    stage.Kill(Role::driver);
    EXPECT_EQ(Socket(), socketBefore) << "a dead process's socket stays";
    EXPECT_FALSE(DriverAnswers());
    stage.Restart(Role::driver);
    EXPECT_TRUE(DriverSeesTheEditor());
    ExpectIdledAndEnds(*second);
    EXPECT_TRUE(DriverAnswers());
}

// Also while the first does nothing: a stopped process still holds its port.
TEST_F(SecondDriver, DoesNotTakeThePortOfAFirstThatStandsStill) {
    stage.Stop(Role::driver);
    const auto second = Stage::LaunchDriver();
    EXPECT_TRUE(second->WaitForOutput(kVersion));
    ExpectIdledAndEnds(*second);
    stage.Continue(Role::driver);
    ExpectServed();
    EXPECT_EQ(Socket(), socketBefore);
}

TEST_F(SecondDriver, IsOneOfManyThatStartAtOnceAndOneServes) {
    constexpr int kDrivers = 8;
    EXPECT_EQ(stage.Interrupt(Role::driver), 0);
    std::vector<std::unique_ptr<ChildProcess>> drivers;
    for (int i = 0; i < kDrivers; ++i) {
        drivers.push_back(Stage::LaunchDriver());
    }
    int idle = 0;
    ChildProcess* serving = nullptr;
    for (const auto& driver : drivers) {
        ASSERT_TRUE(driver->WaitForOutput(kVersion));
        if (driver->StandardError().find(kTaken) != std::string::npos) {
            ++idle;
        } else {
            serving = driver.get();
        }
    }
    ASSERT_EQ(idle, kDrivers - 1);
    ASSERT_NE(serving, nullptr);
    EXPECT_TRUE(DriverSeesTheEditor());
    for (const auto& driver : drivers) {
        if (driver.get() != serving) {
            ExpectIdledAndEnds(*driver);
        }
    }
    EXPECT_TRUE(DriverAnswers());
    serving->Signal(SIGINT);
    EXPECT_EQ(serving->WaitForExit(), 0) << serving->StandardError();
    EXPECT_THAT(serving->StandardError(), Not(HasSubstr(kTaken)));
    EXPECT_EQ(Socket(), 0U);
}
