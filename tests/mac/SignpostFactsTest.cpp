// Signposts of macOS: what they cost while nobody looks, and what the system's log tool prints.
#include <gtest/gtest.h>
#include <os/log.h>
#include <os/signpost.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "tests/mac/Finding.h"
#include "tests/support/ChildProcess.h"

namespace {

constexpr char kSubsystem[] = "com.solvanto.KRT9Background.tests";

os_log_t Log() {
    static const os_log_t log = os_log_create(kSubsystem, "facts");
    return log;
}

void Emit(int number) {
    os_signpost_interval_begin(Log(), OS_SIGNPOST_ID_EXCLUSIVE, "request", "code=%{public}s n=%d",
                               "JElV", number);
    os_signpost_interval_end(Log(), OS_SIGNPOST_ID_EXCLUSIVE, "request", "n=%d", number);
}

// The driver has at most some fifty in a tick, ten times a second: 10 microseconds each would be
// half a percent of a core.
TEST(SignpostsOnMac, CostNothingMeasurableWhileNobodyLooks) {
    constexpr int kTimes = 100000;
    Emit(0);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kTimes; ++i) {
        Emit(i);
    }
    const std::chrono::duration<double, std::micro> taken =
        std::chrono::steady_clock::now() - start;
    mac_test::Report("are signposts enabled while nobody looks",
                     os_signpost_enabled(Log()) ? "yes" : "no, as in the layer");
    mac_test::Report("microseconds of an interval while nobody looks",
                     std::to_string(taken.count() / kTimes));
    EXPECT_LT(taken.count() / kTimes, 10);
}

// The names of the members that krt9ctl's trace reads, and that a public text is shown.
TEST(SignpostsOnMac, AreObjectsOfOneLineInTheLogToolsStream) {
    test_support::ChildProcess tool("/usr/bin/log",
                                    {"stream", "--signpost", "--style", "ndjson", "--predicate",
                                     std::string("subsystem == \"") + kSubsystem + "\""});
    bool isSeen = false;
    constexpr int kTries = 40;  // of half a second: the tool does not say when it begins
    for (int i = 0; i < kTries && !isSeen && tool.WaitForExit(0) == -1; ++i) {
        Emit(7);
        isSeen = tool.WaitForOutput("code=JElV n=7", 0.5);
    }
    if (!isSeen && tool.WaitForExit(0) != -1) {
        GTEST_SKIP() << "needs an administrator: " << tool.Output();
    }
    ASSERT_TRUE(isSeen) << tool.Output();
    const std::string& printed = tool.StandardOutput();
    const std::size_t message = printed.find("code=JElV n=7");
    const std::size_t start = printed.rfind('\n', message) + 1;
    const std::string line = printed.substr(start, printed.find('\n', message) - start);
    mac_test::Report("a signpost in the log tool's stream", line);
    for (const char* member :
         {"\"timestamp\"", "\"processID\"", "\"eventType\"", "signpostEvent", "\"signpostType\"",
          "begin", "\"signpostName\"", "request", "\"eventMessage\"", "\"signpostID\""}) {
        EXPECT_NE(line.find(member), std::string::npos) << member;
    }
    EXPECT_NE(line.find(std::to_string(getpid())), std::string::npos);
}

}  // namespace
