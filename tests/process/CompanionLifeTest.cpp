// The companion as a process that dies, restarts or starts late, while the driver runs. The driver
// looks for its port once, when it starts: a companion that starts later gets no messages, but
// every companion's requests are served.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "tests/support/Stage.h"

namespace {

using test_support::ChildProcess;
using test_support::Role;
using test_support::Stage;
using testing::HasSubstr;
using testing::Not;

class CompanionLife : public testing::Test {
  protected:
    CompanionLife() { stage_.StartDesktop("editor-10.4.6.json"); }

    void StartWatch() { stage_.StartCompanion({"--units", "2", "--channels", "16"}); }

    ChildProcess& Watch() { return stage_.Companion(); }

    void KillWatch() {
        Watch().Signal(SIGKILL);
        ASSERT_EQ(Watch().WaitForExit(), 128 + SIGKILL);
    }

    void Tell(const std::vector<std::string>& words) {
        const test_support::ProcessResult result = stage_.Control(words);
        ASSERT_EQ(result.status, 0) << result.standardError;
    }

    // Starts to observe; returns when the companion was told of clip and timecode.
    void ObserveAndSee(const std::string& clip, const std::string& timecode) {
        Tell({"refresh", "--profile", "--timecode", "--clip"});
        EXPECT_TRUE(Watch().WaitForOutput("JFSC clip: " + clip)) << Watch().StandardOutput();
        EXPECT_TRUE(Watch().WaitForOutput("JFTC timecode: " + timecode))
            << Watch().StandardOutput();
    }

    // The playhead moves and another clip is selected; returns when the driver has looked at the
    // playhead in several ticks since: whatever it had to report, it has sent.
    void LetTheDriverSeeAChange(const std::string& clip, const std::string& timecode) {
        Tell({"desktop", "select-clip", clip});
        Tell({"desktop", "playhead", timecode});
        const std::string seen = "seen " + timecode;
        Tell({"desktop", "raw",
              R"({"command": "misbehave", "element": "/0/4/2/1/2/0/0/0", "misbehaviour": {"read": {
                  "AXValueDescription": {"after": 5, "times": 1, "then": [
                  {"command": "plug", "device": {"name": ")" +
                  seen + R"("}}]}}}})"});
        EXPECT_TRUE(stage_.Desktop().WaitForOutput(seen)) << "the driver does not observe";
    }

    // What the companion printed, all of it.
    std::string Watched() {
        EXPECT_EQ(stage_.Interrupt(Role::companion), 0);
        return Watch().StandardOutput();
    }

    void ExpectRequestsToBeServed() {
        EXPECT_EQ(stage_.Control({"value", "159"}).standardOutput, "1\n");
        EXPECT_EQ(stage_.Control({"ping"}).status, 0);
    }

    Stage stage_;
};

TEST_F(CompanionLife, OneThatIsThereAtTheStartIsToldEverything) {
    StartWatch();
    stage_.StartDriver();
    EXPECT_TRUE(Watch().WaitForOutput("JSLg language: en"));
    EXPECT_TRUE(Watch().WaitForOutput("Stus status query, answered: 2 units, 16 channels"));
    ObserveAndSee("no clip selected", "01:00:00:00");
    LetTheDriverSeeAChange("Gulls", "01:00:25:00");
    EXPECT_TRUE(Watch().WaitForOutput("JFSC clip: Gulls"));
    EXPECT_TRUE(Watch().WaitForOutput("JFTC timecode: 01:00:25:00"));
    EXPECT_EQ(stage_.Interrupt(Role::driver), 0);
    EXPECT_THAT(stage_.Driver().StandardError(), Not(HasSubstr("SendMessage")));
}

TEST_F(CompanionLife, OneThatIsKilledAndComesBackIsToldNothingMore) {
    StartWatch();
    stage_.StartDriver();
    ObserveAndSee("no clip selected", "01:00:00:00");
    KillWatch();
    LetTheDriverSeeAChange("Gulls", "01:00:25:00");
    ExpectRequestsToBeServed();
    StartWatch();
    LetTheDriverSeeAChange("Crowd", "01:01:10:00");
    ExpectRequestsToBeServed();
    EXPECT_EQ(Watched(), "");
    EXPECT_EQ(stage_.Interrupt(Role::driver), 0);
    EXPECT_THAT(stage_.Driver().StandardError(), Not(HasSubstr("SendMessage")))
        << "the port that was there fails without a word";
}

TEST_F(CompanionLife, OneThatComesLateIsToldNothing) {
    stage_.StartDriver();
    EXPECT_TRUE(stage_.Driver().WaitForOutput("remotePort is not valid"));
    ASSERT_TRUE(stage_.Driver().WaitForOutput("SendMessage no remote port"))
        << "the language is sent in vain";
    StartWatch();
    Tell({"refresh", "--profile", "--timecode", "--clip"});
    LetTheDriverSeeAChange("Gulls", "01:00:25:00");
    ExpectRequestsToBeServed();
    EXPECT_EQ(Watched(), "");
    EXPECT_EQ(stage_.Interrupt(Role::driver), 0);
}

TEST_F(CompanionLife, ADriverStartedAnewFindsTheOneThatCameBack) {
    StartWatch();
    stage_.StartDriver();
    EXPECT_TRUE(Watch().WaitForOutput("JSLg"));
    KillWatch();
    StartWatch();
    EXPECT_EQ(stage_.Interrupt(Role::driver), 0);
    stage_.StartDriver();
    EXPECT_TRUE(Watch().WaitForOutput("JSLg language: en"));
    EXPECT_TRUE(Watch().WaitForOutput("Stus status query, answered: 2 units, 16 channels"));
    ObserveAndSee("no clip selected", "01:00:00:00");
}

TEST_F(CompanionLife, OneThatIsKilledAndOneThatComesBackFindTheirNameFree) {
    StartWatch();
    stage_.StartDriver();
    EXPECT_TRUE(Watch().WaitForOutput("JSLg"));
    for (int life = 0; life < 3; ++life) {
        KillWatch();
        StartWatch();
    }
    ExpectRequestsToBeServed();
    EXPECT_EQ(stage_.Interrupt(Role::driver), 0);
}

}  // namespace
