// A driver that starts while another one holds the port.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <memory>
#include <sstream>
#include <vector>

#include "tests/reliability/Trio.h"
#include "tests/reliability/WaitUntil.h"
#include "tests/reliability/WireClient.h"

namespace {

using test_support::ChildProcess;
using test_support::Role;
using test_support::Stage;
using test_support::Trio;
using test_support::WireClient;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr char kTaken[] = "CFMessagePort \"KRT9Background\": the name is taken by another process";
constexpr char kVersion[] = "com.solvanto.KRT9Background version 1.0.0";

std::vector<std::string> SplitLines(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class SecondDriver : public testing::Test {
  protected:
    SecondDriver() {
        EXPECT_TRUE(trio.DriverSeesTheEditor());
        socketBefore = Socket();
    }

    static std::unique_ptr<ChildProcess> Start() {
        return std::make_unique<ChildProcess>(Stage::DriverPath(), std::vector<std::string>{},
                                              Stage::DriverEnvironment());
    }

    // Which file is the port's socket; 0 for none.
    ino_t Socket() const {
        struct stat status {};
        const std::string path = trio.Session().Path() / "KRT9Background";
        return lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
    }

    // One request over a connection that lasts, answered by the driver that it was opened to.
    void ExpectServed() {
        ++sequence;
        ASSERT_TRUE(client.Send(WireClient::Request("JGlM", {}, sequence)));
        const auto reply = client.Receive();
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
        EXPECT_THAT(SplitLines(second.StandardError()),
                    ElementsAre(HasSubstr(kTaken), HasSubstr(kVersion)));
        EXPECT_EQ(second.StandardOutput(), "");
    }

    Trio trio;
    WireClient client;
    std::uint32_t sequence = 0;
    ino_t socketBefore = 0;
};

}  // namespace

TEST_F(SecondDriver, SaysSoAndIdlesWhileTheFirstGoesOnServing) {
    const auto second = Start();
    ExpectServedUntil(*second, kVersion);
    EXPECT_EQ(Socket(), socketBefore);
    EXPECT_TRUE(trio.CompanionHears("01:00:00:10"));
    ExpectIdledAndEnds(*second);
    EXPECT_EQ(Socket(), socketBefore) << "the first one's socket went with the second";
    ExpectServed();
    EXPECT_TRUE(trio.DriverAnswers()) << "newcomers";
    EXPECT_TRUE(trio.CompanionHears("01:00:00:20"));
    // Each driver tells its language once, and only the first has.
    EXPECT_THAT(SplitLines(trio.Process(Role::companion).StandardOutput()),
                testing::Contains(HasSubstr("JSLg")).Times(1));
}

TEST_F(SecondDriver, DoesNotDisturbTheFirstByItsDeath) {
    const auto second = Start();
    ExpectServedUntil(*second, kVersion);
    second->Signal(SIGKILL);
    EXPECT_EQ(second->WaitForExit(), 128 + SIGKILL);
    ExpectServed();
    EXPECT_EQ(Socket(), socketBefore);
    EXPECT_TRUE(trio.CompanionHears("01:00:00:10"));
}

// It looked for the port once, when it started.
TEST_F(SecondDriver, DoesNotTakeThePortThatTheFirstLeaves) {
    const auto second = Start();
    ExpectServedUntil(*second, kVersion);
    trio.Process(Role::driver).Signal(SIGINT);
    EXPECT_EQ(trio.Process(Role::driver).WaitForExit(), 0);
    EXPECT_EQ(Socket(), 0U);
    EXPECT_FALSE(Trio::DriverAnswers());

    trio.Start(Role::driver);  // the third takes it, and the second leaves it alone
    EXPECT_TRUE(Trio::DriverAnswers());
    const ino_t ofTheThird = Socket();
    ExpectIdledAndEnds(*second);
    EXPECT_EQ(Socket(), ofTheThird);
    EXPECT_TRUE(Trio::DriverAnswers());
}

TEST_F(SecondDriver, DoesNotTakeThePortOfAFirstThatWasKilled) {
    const auto second = Start();
    ExpectServedUntil(*second, kVersion);
    trio.Kill(Role::driver);
    EXPECT_EQ(Socket(), socketBefore) << "a dead process's socket stays";
    EXPECT_FALSE(Trio::DriverAnswers());
    trio.Start(Role::driver);
    EXPECT_TRUE(trio.DriverSeesTheEditor());
    ExpectIdledAndEnds(*second);
    EXPECT_TRUE(Trio::DriverAnswers());
}

// Also while the first does nothing: a stopped process still holds its port.
TEST_F(SecondDriver, DoesNotTakeThePortOfAFirstThatStandsStill) {
    trio.Stop(Role::driver);
    const auto second = Start();
    EXPECT_TRUE(second->WaitForOutput(kVersion));
    ExpectIdledAndEnds(*second);
    trio.Continue(Role::driver);
    ExpectServed();
    EXPECT_EQ(Socket(), socketBefore);
}

TEST_F(SecondDriver, IsOneOfManyThatStartAtOnceAndOneServes) {
    constexpr int kDrivers = 8;
    trio.Process(Role::driver).Signal(SIGINT);
    EXPECT_EQ(trio.Process(Role::driver).WaitForExit(), 0);
    std::vector<std::unique_ptr<ChildProcess>> drivers;
    for (int i = 0; i < kDrivers; ++i) {
        drivers.push_back(Start());
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
    EXPECT_TRUE(trio.DriverSeesTheEditor());
    for (const auto& driver : drivers) {
        if (driver.get() != serving) {
            ExpectIdledAndEnds(*driver);
        }
    }
    EXPECT_TRUE(Trio::DriverAnswers());
    serving->Signal(SIGINT);
    EXPECT_EQ(serving->WaitForExit(), 0) << serving->StandardError();
    EXPECT_THAT(serving->StandardError(), Not(HasSubstr(kTaken)));
    EXPECT_EQ(Socket(), 0U);
}
