#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <os/signpost.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <ctime>
#include <fstream>
#include <optional>

#include "tests/adversary/AllocationMeter.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/SignpostListener.h"

namespace {

using adversary::AllocationMeter;
using test_support::SignpostListener;
using testing::IsEmpty;
using testing::SizeIs;
using Json = SignpostListener::Json;

os_log_t Log() {
    static const os_log_t log = os_log_create("org.example.test", "things");
    return log;
}

class Signposts : public testing::Test {
  protected:
    ~Signposts() override { unified_logging::UseClock(nullptr); }

    test_support::SessionFixture session_;
};

// Time stands still, but the kernel's clock is looked at as always.
std::chrono::nanoseconds StandingClock() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
    return std::chrono::seconds(1000);
}

int later = 0;  // milliseconds
std::chrono::nanoseconds SteppedClock() {
    return std::chrono::seconds(1000) + std::chrono::milliseconds(later);
}

std::string MessageOf(const Json& line) {
    return line["eventMessage"];
}

TEST_F(Signposts, LogsOfTheSameNamesAreOne) {
    EXPECT_EQ(os_log_create("a", "b"), os_log_create("a", "b"));
    EXPECT_NE(os_log_create("a", "b"), os_log_create("a", "c"));
    EXPECT_NE(os_log_create("a", "b"), os_log_create("b", "b"));
}

TEST_F(Signposts, AreDisabledWhileNobodyListens) {
    unified_logging::UseClock(nullptr);
    EXPECT_FALSE(os_signpost_enabled(Log()));
    const SignpostListener listener;
    EXPECT_TRUE(os_signpost_enabled(Log()));
}

TEST_F(Signposts, DoNotEvaluateTheirArgumentsWhileNobodyListens) {
    unified_logging::UseClock(nullptr);
    int evaluated = 0;
    os_signpost_event_emit(Log(), OS_SIGNPOST_ID_EXCLUSIVE, "name", "%d", ++evaluated);
    EXPECT_EQ(evaluated, 0);
    const SignpostListener listener;
    os_signpost_event_emit(Log(), OS_SIGNPOST_ID_NULL, "name", "%d", ++evaluated);
    os_signpost_event_emit(Log(), OS_SIGNPOST_ID_INVALID, "name", "%d", ++evaluated);
    EXPECT_EQ(evaluated, 0);
    os_signpost_event_emit(Log(), 7, "name", "%d", ++evaluated);
    EXPECT_EQ(evaluated, 1);
}

TEST_F(Signposts, ArriveInTheFormOfTheSystemsLogTool) {
    SignpostListener listener;
    os_signpost_interval_begin(Log(), 5, "work", "n=%d", 1);
    os_signpost_event_emit(Log(), OS_SIGNPOST_ID_EXCLUSIVE, "moment");
    os_signpost_interval_end(Log(), 5, "work", "n=%d", 2);
    const auto lines = listener.Take();
    ASSERT_THAT(lines, SizeIs(3));
    EXPECT_EQ(lines[0]["signpostType"], "begin");
    EXPECT_EQ(lines[1]["signpostType"], "event");
    EXPECT_EQ(lines[2]["signpostType"], "end");
    EXPECT_EQ(lines[0]["signpostName"], "work");
    EXPECT_EQ(lines[0]["signpostID"], 5);
    EXPECT_EQ(lines[0]["processID"], getpid());
    EXPECT_EQ(lines[0]["subsystem"], "org.example.test");
    EXPECT_EQ(lines[0]["category"], "things");
    EXPECT_EQ(lines[0]["eventType"], "signpostEvent");
    EXPECT_EQ(lines[0]["eventMessage"], "n=1");
    EXPECT_EQ(lines[1]["eventMessage"], "");
    EXPECT_THAT(lines[0]["timestamp"].get<std::string>(),
                testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"
                                      "\\.[0-9]{6}\\+0000"));
    EXPECT_LE(lines[0]["machTimestamp"], lines[2]["machTimestamp"]);
}

TEST_F(Signposts, ShowNumbersAndOnlyTheTextsThatArePublic) {
    SignpostListener listener;
    const char* const secret = "secret";
    os_signpost_event_emit(Log(), 1, "e", "%{public}s %s %{private}s %lu 100%% %08.3f %c", "open",
                           secret, secret, 7UL, 1.5, 'x');
    EXPECT_EQ(MessageOf(listener.Take().at(0)), "open <private> <private> 7 100% 0001.500 x");
}

TEST_F(Signposts, AreCutAtATheLengthOfTheSystem) {
    SignpostListener listener;
    os_signpost_event_emit(Log(), 1, "e", "%{public}s", std::string(5000, 'x').c_str());
    os_signpost_event_emit(Log(), 1, "e", "%{public}s", "\xFF");  // no UTF-8
    const auto lines = listener.Take();
    EXPECT_EQ(MessageOf(lines.at(0)), std::string(1024, 'x'));
    EXPECT_EQ(MessageOf(lines.at(1)), "\xEF\xBF\xBD");
}

// In the kernel's strict mode any call but read, write and exit ends the process by SIGKILL.
TEST_F(Signposts, CostNoSystemCallWhileNobodyListens) {
    unified_logging::UseClock(StandingClock);
    EXPECT_FALSE(os_signpost_enabled(Log()));  // looks once
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT);
        for (int i = 0; i < 10000; ++i) {
            os_signpost_interval_begin(Log(), 1, "name", "%d", i);
            os_signpost_interval_end(Log(), 1, "name", "%d", i);
        }
        syscall(SYS_exit, 0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(Signposts, CostNoAllocationWhileNobodyListens) {
    unified_logging::UseClock(StandingClock);
    EXPECT_FALSE(os_signpost_enabled(Log()));
    const AllocationMeter meter;
    for (int i = 0; i < 10000; ++i) {
        os_signpost_event_emit(Log(), 1, "name", "%d", i);
    }
    EXPECT_EQ(meter.SoFar().count, 0U);
}

TEST_F(Signposts, AreLookedForAFewTimesASecond) {
    later = 0;
    std::optional<SignpostListener> listener(std::in_place);
    listener.reset();
    unified_logging::UseClock(SteppedClock);
    EXPECT_FALSE(os_signpost_enabled(Log()));
    const auto named =
        local_socket::Listener::Create(unified_logging::kTracerName, nullptr, nullptr);
    later = 249;
    EXPECT_FALSE(os_signpost_enabled(Log()));
    later = 250;
    EXPECT_TRUE(os_signpost_enabled(Log()));
}

// Far more than any buffer holds.
TEST_F(Signposts, AreLostAndCountedWhenTheListenerStalls) {
    SignpostListener listener;
    constexpr int kMany = 20000;
    for (int i = 0; i < kMany; ++i) {
        os_signpost_event_emit(Log(), 1, "name", "%d", i);
    }
    std::size_t arrived = listener.Take().size();
    EXPECT_LT(arrived, kMany);
    os_signpost_event_emit(Log(), 1, "name", "after");
    const auto lines = listener.Take();
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(MessageOf(lines.back()), "after");
    const Json& loss = lines[lines.size() - 2];
    EXPECT_EQ(loss["eventType"], "lossEvent");
    arrived += lines.size() - 2;
    EXPECT_EQ(loss.value("lossCount", std::size_t{0}), kMany - arrived);
}

TEST_F(Signposts, AreForgottenWhenTheListenerEndsAndFindTheNextOne) {
    later = 0;
    SignpostListener listener;
    unified_logging::UseClock(SteppedClock);
    os_signpost_event_emit(Log(), 1, "name", "one");
    listener.DropClients();
    errno = 4711;
    os_signpost_event_emit(Log(), 1, "name", "lost");
    EXPECT_EQ(errno, 4711);
    EXPECT_FALSE(os_signpost_enabled(Log()));
    later = 250;
    os_signpost_event_emit(Log(), 1, "name", "two");
    const auto lines = listener.Take();
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(MessageOf(lines[0]), "two");
}

TEST_F(Signposts, IgnoreWhatIsNoSocketUnderTheListenersName) {
    session_.Write("signposts", "text");
    unified_logging::UseClock(nullptr);
    errno = 4711;
    EXPECT_FALSE(os_signpost_enabled(Log()));
    EXPECT_EQ(errno, 4711);
}

}  // namespace
