#include <gmock/gmock.h>
#include <syslog.h>

#include <cerrno>

#include "platform/Testing/LogCapture.h"
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
                                      "unit_testing\\[[0-9]+:[0-9]+\\] Caf\xC3\xA9\n"));
}

}  // namespace
