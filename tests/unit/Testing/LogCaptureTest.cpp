#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/time.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <thread>
#include <vector>

#include "platform/Testing/LogCapture.h"
#include "tests/support/WaitUntil.h"
#include "tests/unit/Testing/ConsoleLine.h"

namespace {

using platform_testing::LogCapture;
using platform_testing::LogLine;
using testing::ElementsAre;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

TEST(LogCapture, HoldsLinesOfBothLogsInOrder) {
    const LogCapture capture;
    syslog(LOG_EMERG, "first %d", 1);
    WriteConsoleLine("second");
    syslog(LOG_USER | LOG_INFO, "third\n");
    EXPECT_THAT(capture.Lines(), ElementsAre(LogLine{LogLine::Log::system, LOG_EMERG, "first 1"},
                                             LogLine{LogLine::Log::console, 0, "second"},
                                             LogLine{LogLine::Log::system, LOG_INFO, "third\n"}));
}

TEST(LogCapture, SeparatesTheLogs) {
    LogCapture capture;
    syslog(LOG_EMERG, "system");
    WriteConsoleLine("console");
    EXPECT_THAT(capture.SystemTexts(), ElementsAre("system"));
    EXPECT_THAT(capture.ConsoleTexts(), ElementsAre("console"));
    capture.Clear();
    EXPECT_THAT(capture.Lines(), ElementsAre());
}

TEST(LogCapture, SeesNothingBeforeItsBeginningAndAfterItsEnd) {
    syslog(LOG_EMERG, "before");
    LogCapture outer;
    {
        const LogCapture inner;
        syslog(LOG_EMERG, "inside");
        EXPECT_THAT(inner.SystemTexts(), ElementsAre("inside"));
    }
    syslog(LOG_EMERG, "after");
    EXPECT_THAT(outer.SystemTexts(), ElementsAre("inside", "after"));
}

TEST(LogCapture, KeepsATextThatIsNotAscii) {
    const LogCapture capture;
    WriteConsoleLine("Caf\xC3\xA9 \xE6\x97\xA5");
    EXPECT_THAT(capture.ConsoleTexts(), ElementsAre("Caf\xC3\xA9 \xE6\x97\xA5"));
}

TEST(SystemLog, WritesOneLineToStandardErrorWhateverTheTextEndsWith) {
    CaptureStderr();
    syslog(LOG_EMERG, "no newline");
    syslog(LOG_EMERG, "one newline\n");
    syslog(LOG_WARNING, "three newlines\n\n\n");
    syslog(LOG_EMERG, "%s", "");
    EXPECT_EQ(GetCapturedStderr(), "<0> no newline\n<0> one newline\n<4> three newlines\n<0> \n");
}

TEST(SystemLog, WritesAVeryLongTextWhole) {
    const std::string longText(200000, 'x');
    const LogCapture capture;
    CaptureStderr();
    syslog(LOG_EMERG, "%s", longText.c_str());
    EXPECT_EQ(GetCapturedStderr(), "<0> " + longText + "\n");
    EXPECT_THAT(capture.SystemTexts(), ElementsAre(longText));
}

TEST(SystemLog, SpellsOutTheErrorNumberAndLeavesItAsItWas) {
    const LogCapture capture;
    errno = ENOENT;
    syslog(LOG_EMERG, "failed: %m");
    EXPECT_EQ(errno, ENOENT);
    EXPECT_THAT(capture.SystemTexts(), ElementsAre("failed: No such file or directory"));
}

TEST(ConsoleLog, WritesDateProcessAndTextInUTF8) {
    CaptureStderr();
    WriteConsoleLine("Caf\xC3\xA9\n");
    EXPECT_THAT(GetCapturedStderr(),
                testing::MatchesRegex("[0-9]+-[0-9]+-[0-9]+ [0-9]+:[0-9]+:[0-9]+[.][0-9]+ "
                                      "unit_Testing\\[[0-9]+:[0-9]+\\] Caf\xC3\xA9\n"));
}

TEST(ConsoleLog, ShowsHalfACharacterAsAReplacement) {
    const LogCapture capture;
    const UniChar units[] = {'a', 0xD83C, 'b'};
    const CFStringRef text = CFStringCreateWithCharacters(nullptr, units, 3);
    WriteConsoleObject(text);
    CFRelease(text);
    EXPECT_THAT(capture.ConsoleTexts(), ElementsAre("a\xEF\xBF\xBD"
                                                    "b"));
}

TEST(SystemLog, LeavesOutWhatTheLocaleCannotWrite) {
    const LogCapture capture;
    syslog(LOG_EMERG, "%ls", L"\x65E5");
    EXPECT_THAT(capture.SystemTexts(), ElementsAre(""));
}

// Standard error is another file while this lives.
class OtherStandardError {
  public:
    explicit OtherStandardError(int descriptor) { dup2(descriptor, STDERR_FILENO); }
    OtherStandardError(const OtherStandardError&) = delete;
    OtherStandardError& operator=(const OtherStandardError&) = delete;
    ~OtherStandardError() {
        dup2(before_, STDERR_FILENO);
        close(before_);
    }

  private:
    const int before_ = dup(STDERR_FILENO);
};

TEST(SystemLog, LosesALineForWhichThereIsNoRoomAndGoesOn) {
    const LogCapture capture;
    const int full = open("/dev/full", O_WRONLY);
    {
        const OtherStandardError other(full);
        errno = ENOENT;
        syslog(LOG_EMERG, "line");
        EXPECT_EQ(errno, ENOENT);
    }
    close(full);
    EXPECT_THAT(capture.SystemTexts(), ElementsAre("line"));
}

volatile std::sig_atomic_t alarms = 0;

// A pipe that is full until some alarms have come, read by a thread that gets none itself.
TEST(SystemLog, WritesALineWholeThoughSignalsInterruptIt) {
    constexpr std::size_t kMoreThanAPipeHolds = 300'000;
    struct sigaction action {};
    action.sa_handler = [](int) { alarms = alarms + 1; };
    struct sigaction before {};
    sigaction(SIGALRM, &action, &before);
    sigset_t alarm;
    sigemptyset(&alarm);
    sigaddset(&alarm, SIGALRM);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::size_t came = 0;
    pthread_sigmask(SIG_BLOCK, &alarm, nullptr);
    std::thread reader([&] {
        EXPECT_TRUE(test_support::WaitUntil([] { return alarms >= 5; }));
        std::vector<char> bytes(100'000);
        ssize_t count = 0;
        while ((count = read(ends[0], bytes.data(), bytes.size())) > 0) {
            came += static_cast<std::size_t>(count);
        }
    });
    pthread_sigmask(SIG_UNBLOCK, &alarm, nullptr);
    const itimerval often{{0, 2'000}, {0, 2'000}};
    const itimerval never{};
    {
        const OtherStandardError other(ends[1]);
        setitimer(ITIMER_REAL, &often, nullptr);
        syslog(LOG_EMERG, "%s", std::string(kMoreThanAPipeHolds, 'x').c_str());
        setitimer(ITIMER_REAL, &never, nullptr);
    }
    close(ends[1]);
    reader.join();
    close(ends[0]);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_EQ(came, kMoreThanAPipeHolds + sizeof "<0> \n" - 1);
}

}  // namespace
