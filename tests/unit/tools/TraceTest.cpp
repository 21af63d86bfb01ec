// The verb trace: what the driver does, put together from its signposts.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "VEKCommon/Names.h"
#include "tests/support/Files.h"
#include "tests/support/Stage.h"
#include "tests/support/WaitUntil.h"
#include "tests/unit/tools/Carried.h"
#include "tools/trace/Timeline.h"

namespace krt9ctl {
namespace {

using test_support::Role;
using test_support::Stage;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

// As the system's log tool writes it, times in microseconds after a full minute.
std::string Line(const std::string& type, const std::string& name, const std::string& message,
                 int microseconds, const std::string& zone = "+0000") {
    return fmt::format(R"({{"timestamp":"2026-01-31 11:03:{:02}.{:06}{}","processID":7,)"
                       R"("eventType":"signpostEvent","signpostType":"{}","signpostName":"{}",)"
                       R"("eventMessage":"{}","signpostID":17216892719917625070}})",
                       microseconds / 1000000, microseconds % 1000000, zone, type, name, message);
}

std::vector<trace::Event> EventsOf(const std::vector<std::string>& lines) {
    trace::Timeline timeline;
    std::vector<trace::Event> events;
    for (const std::string& line : lines) {
        auto signpost = trace::ReadSignpost(line);
        if (auto event = signpost ? timeline.Add(*signpost) : std::nullopt) {
            events.push_back(*event);
        }
    }
    return events;
}

TEST(Timeline, PutsARequestTogether) {
    const auto events =
        EventsOf({Line("begin", "request", "code=JElP length=4 first=128", 1000),
                  Line("end", "request",
                       "code=JElP result=replied exchanges=12 count=2 reply=76,-94,0,0,0", 3500)});
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(EventObject(events[0]),
              Json::parse(R"({"time":"2026-01-31T11:03:00.001000Z","event":"request","pid":7,
                  "code":"JElP","result":"replied","element":"_NS:128","reply":{"x":76,"y":-94},
                  "exchanges":12,"milliseconds":2.5})"));
    EXPECT_THAT(
        DescribeEvent(events[0]),
        MatchesRegex("[0-9:.]+ request JElP _NS:128 replied: 76,-94, 12 exchanges, 2.50 ms"));
}

TEST(Timeline, ShowsWhatHasNoReplyAndWhatNamesNoElement) {
    const auto events = EventsOf({
        Line("begin", "request", "code=JWiP length=40 first=13", 0),
        Line("end", "request", "code=JWiP result=failed exchanges=3 count=0 reply=0,0,0,0,0", 10),
        Line("end", "request", "code=A.CD result=unknown exchanges=0 count=0 reply=0,0,0,0,0", 20),
    });
    ASSERT_EQ(events.size(), 2U);
    EXPECT_THAT(DescribeEvent(events[0]), HasSubstr("request JWiP failed, 3 exchanges, 0.01 ms"));
    EXPECT_FALSE(EventObject(events[1]).contains("milliseconds"));
    EXPECT_EQ(EventObject(events[1])["result"], "unknown");
}

TEST(Timeline, GivesATickItsStepsAndTellsIdleOnes) {
    const std::vector<std::string> idle = {
        Line("begin", "tick", "", 0), Line("begin", "step", "step=profile", 1),
        Line("end", "step", "step=profile exchanges=0", 2), Line("end", "tick", "exchanges=0", 3)};
    EXPECT_TRUE(EventsOf(idle).at(0).IsIdle());
    const auto events =
        EventsOf({Line("begin", "tick", "", 0), Line("begin", "step", "step=clip", 100),
                  Line("begin", "message", "code=JFSC length=5", 150),
                  Line("end", "message", "code=JFSC status=0", 200),
                  Line("end", "step", "step=clip exchanges=8", 2100),
                  Line("end", "tick", "exchanges=8", 2200)});
    ASSERT_EQ(events.size(), 2U);
    EXPECT_THAT(DescribeEvent(events[0]), HasSubstr("message JFSC sent, 0.05 ms"));
    EXPECT_THAT(DescribeEvent(events[1]),
                HasSubstr("tick 8 exchanges: clip 2.00 ms (8 exchanges), 2.20 ms"));
    EXPECT_FALSE(events[1].IsIdle());
    EXPECT_EQ(EventObject(events[1])["steps"],
              Json::parse(R"([{"step":"clip","exchanges":8,"milliseconds":2.0}])"));
}

TEST(Timeline, IsOfOneTimeInAnyZone) {
    const auto local = trace::ReadSignpost(Line("event", "e", "", 0, "+0130"));
    const auto utc = trace::ReadSignpost(Line("event", "e", "", 0));
    const auto west = trace::ReadSignpost(Line("event", "e", "", 0, "-0800"));
    EXPECT_EQ(utc->time - local->time, std::chrono::minutes(90));
    EXPECT_EQ(west->time - utc->time, std::chrono::hours(8));
}

TEST(Timeline, DoesNotGuessTheDurationWhenTheClockWasSetBack) {
    const auto events = EventsOf({Line("begin", "tick", "", 5000), Line("end", "tick", "", 10)});
    EXPECT_EQ(events.at(0).Milliseconds(), std::nullopt);
}

TEST(Timeline, LeavesOutLinesThatAreNoSignposts) {
    for (const char* line :
         {"", "Filtering the log data using \"subsystem == ...\"", "[1]", "{}",
          R"({"eventType":"logEvent","eventMessage":"x"})", R"({"eventType":"signpostEvent"})",
          R"({"eventType":"signpostEvent","timestamp":"2026-02-31 11:03:00.000000+0000"})",
          R"({"eventType":"signpostEvent","timestamp":"yesterday"})"}) {
        EXPECT_EQ(trace::ReadSignpost(line), std::nullopt) << line;
    }
}

TEST(Timeline, CountsWhatWasLost) {
    EXPECT_EQ(trace::ReadSignpost(R"({"eventType":"lossEvent","lossCount":5})")->lost, 5U);
    EXPECT_EQ(trace::ReadSignpost(
                  R"({"eventType":"lossEvent","lossCount":{"count":6,"saturated":false}})")
                  ->lost,
              6U);
}

class Trace : public testing::Test {
  protected:
    Trace() {
        stage_.StartDesktop("editor-10.4.6.json");
        stage_.StartCompanion();
        stage_.StartDriver();
    }

    // Returns when the driver tells it what it does.
    std::unique_ptr<test_support::ChildProcess> Begin(std::vector<std::string> words = {}) {
        words.insert(words.begin(), {"trace", "--all"});
        auto trace = Stage::LaunchControl(words);
        EXPECT_TRUE(trace->WaitForOutput("tracing the driver\n")) << trace->Output();
        return trace;
    }

    Stage stage_;
};

TEST_F(Trace, ShowsRequestsTicksAndMessagesBesideTheCompanion) {
    const auto trace = Begin();
    EXPECT_EQ(Stage::Control({"value", "159"}).status, 0);
    EXPECT_TRUE(trace->WaitForOutput("request JElV _NS:159 replied: 1,"));
    Stage::Control({"refresh", "--profile", "--timecode", "--clip"});
    EXPECT_TRUE(trace->WaitForOutput("message JFTC sent,"));
    EXPECT_TRUE(trace->WaitForOutput("timecode"));
    EXPECT_TRUE(stage_.Companion().WaitForOutput("JFTC timecode"));
    trace->Signal(SIGINT);
    EXPECT_EQ(trace->WaitForExit(), 0);
    EXPECT_THAT(stage_.Session().Files(), Not(testing::Contains("signposts")));
}

TEST_F(Trace, ShowsOnlyWhatIsSlow) {
    const auto slow = Stage::LaunchControl({"--json", "trace", "--slow", "150ms", "--count", "1"});
    ASSERT_TRUE(slow->WaitForOutput("tracing the driver\n"));
    // Until the request has met the desktop that stands.
    for (int tries = 0; tries < 50 && slow->StandardOutput().empty(); ++tries) {
        stage_.Stop(Role::desktop);
        const auto value = Stage::LaunchControl({"--timeout", "10", "value", "159"});
        slow->WaitForOutput("request", 0.4);
        stage_.Continue(Role::desktop);
        ASSERT_EQ(value->WaitForExit(), 0);
        slow->WaitForOutput("request", 0.1);
    }
    ASSERT_EQ(slow->WaitForExit(), 0) << slow->Output();
    const Json event = Json::parse(slow->StandardOutput());
    EXPECT_EQ(event["code"], "JElV");
    EXPECT_EQ(event["element"], "_NS:159");
    EXPECT_GE(event["milliseconds"], 150);
}

TEST_F(Trace, MissesNoRequestOnceItSaysThatItTraces) {
    for (int times = 0; times < 5; ++times) {
        const auto trace = Stage::LaunchControl({"trace"});
        ASSERT_TRUE(trace->WaitForOutput("tracing the driver\n")) << trace->Output();
        Stage::Control({"value", "159"});
        EXPECT_TRUE(trace->WaitForOutput("request JElV _NS:159")) << trace->Output();
        trace->Signal(SIGINT);
        EXPECT_EQ(trace->WaitForExit(), 0);
    }
}

TEST_F(Trace, SaysThatTheDriverHasNotNoticedIt) {
    stage_.Stop(Role::driver);
    const auto trace = Stage::LaunchControl({"trace"});
    EXPECT_TRUE(trace->WaitForOutput("which has not noticed it within 3 seconds"))
        << trace->Output();
    stage_.Continue(Role::driver);
}

TEST_F(Trace, SaysThatNoDriverRuns) {
    stage_.Kill(Role::driver);
    const auto trace = Stage::LaunchControl({"trace", "--all"});
    EXPECT_TRUE(trace->WaitForOutput("once it is started: none runs in the session"))
        << trace->Output();
    stage_.StartDriver();
    EXPECT_TRUE(trace->WaitForOutput("tick")) << trace->Output();
}

TEST_F(Trace, IsOneInASession) {
    const auto first = Begin();
    const auto second = Stage::Control({"trace"});
    EXPECT_EQ(second.status, static_cast<int>(ExitCode::nameTaken));
    EXPECT_THAT(second.standardError, HasSubstr("another trace runs"));
}

TEST_F(Trace, FollowsTheDriverThatIsStartedAgain) {
    const auto trace = Begin({"--json"});
    stage_.Restart(Role::driver);
    EXPECT_TRUE(trace->WaitForOutput(fmt::format(R"("pid":{})", stage_.Driver().pid())));
}

// Whatever becomes of the tracer, requests are answered and messages sent.
TEST_F(Trace, ThatIsStoppedOrKilledDoesNotHarmTheDriver) {
    const auto trace = Begin();
    trace->Signal(SIGSTOP);
    EXPECT_EQ(Stage::Control({"ping", "--count", "5000"}).status, 0);
    trace->Signal(SIGCONT);
    EXPECT_TRUE(trace->WaitForOutput("signposts were lost"));
    trace->Signal(SIGKILL);
    trace->WaitForExit();
    EXPECT_EQ(Stage::Control({"ping", "--count", "100"}).status, 0);
    Begin();
}

TEST_F(Trace, EndsQuietlyWhenNobodyReadsItsOutput) {
    EXPECT_EQ(test_support::RunProcess(
                  "/bin/sh", {"-c", Stage::ControlPath() + " trace --all | head -1 >/dev/null"})
                  .status,
              0);
}

TEST_F(Trace, EndsAfterItsTime) {
    EXPECT_EQ(Stage::Control({"trace", "--for", "0.01"}).status, 0);
}

TEST(TraceUsage, TakesTimesInTwoUnits) {
    const test_support::SessionFixture session;
    for (const char* time : {"20ms", "1.5s", "20"}) {
        EXPECT_EQ(Carried({"trace", "--slow", time, "--for", "0.01"}).code, ExitCode::ok);
    }
    for (const char* time : {"x", "20m", "-1ms", ""}) {
        EXPECT_THROW(Carried({"trace", "--slow", time, "--for", "0.01"}), UsageError) << time;
    }
}

TEST(TraceNames, AreThoseOfTheDriversBundle) {
    const auto bundle =
        std::filesystem::path(Stage::DriverPath()).parent_path().parent_path() / "Info.plist";
    EXPECT_THAT(test_support::ContentOf(bundle), HasSubstr("<string>" kDriverBundleID "</string>"));
}

}  // namespace
}  // namespace krt9ctl
