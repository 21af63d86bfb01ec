// What people see: colours, help that fits, progress.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "VEKCommon/OwnedReference.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Files.h"
#include "tests/support/Paths.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/tools/OnTerminal.h"
#include "tools/terminal/Help.h"
#include "tools/terminal/Terminal.h"

namespace krt9ctl {
namespace {

using terminal::Nearest;
using terminal::Wrapped;
using test_support::OnTerminal;
using testing::HasSubstr;
using testing::Not;

constexpr char kProgram[] = KRT9_BINARIES "/krt9ctl";
constexpr char kRedName[] = "\x1B[1m\x1B[31mkrt9ctl:\x1B[0m";

TEST(Wrapping, LeavesLinesThatFitAsTheyAre) {
    EXPECT_EQ(Wrapped("one\n\n  two  three\n", 20), "one\n\n  two  three\n");
    EXPECT_EQ(Wrapped("", 20), "");
}

TEST(Wrapping, BreaksAtBlanksAndGoesOnUnderTheFirstLetter) {
    EXPECT_EQ(Wrapped("  one two three four", 11), "  one two\n  three\n  four");
    EXPECT_EQ(Wrapped("exactly ten", 11), "exactly ten");
    EXPECT_EQ(Wrapped("exactly ten", 10), "exactly\nten");
}

TEST(Wrapping, GoesOnUnderTheLastColumn) {
    EXPECT_EQ(Wrapped("  1  ok  done well enough", 19), "  1  ok  done well\n         enough");
    EXPECT_EQ(Wrapped("name                 words that do not fit", 24),
              "name                \nwords that do not fit");
}

TEST(Wrapping, LeavesAWordWholeThatFitsNowhere) {
    EXPECT_EQ(Wrapped("a indivisible b", 5), "a\nindivisible\nb");
    EXPECT_EQ(Wrapped("indivisible", 5), "indivisible");
    EXPECT_EQ(Wrapped("    indivisible b", 5), "    indivisible\n    b");
    EXPECT_EQ(Wrapped("ends with  ", 6), "ends\nwith  ");
}

TEST(Nearest, CountsLettersAddedLeftOutReplacedAndSwapped) {
    const std::vector<std::string> names = {"press", "value", "mouse start", "set"};
    for (const char* word : {"pres", "presss", "prexs", "rpess", "press"}) {
        EXPECT_EQ(Nearest(word, names), "press") << word;
    }
    EXPECT_EQ(Nearest("mouse strat", names), "mouse start");
    EXPECT_EQ(Nearest("st", names), "set");
}

TEST(Nearest, IsNothingWhenNothingIsNear) {
    const std::vector<std::string> names = {"press", "set"};
    for (const std::string& word : {std::string("juggle"), std::string(""), std::string("xxt"),
                                    std::string("x"), std::string(100000, 'p')}) {
        EXPECT_EQ(Nearest(word, names), "");
    }
}

TEST(Terminal, IsNeitherAFileNorNothing) {
    const int file = open("/dev/null", O_RDWR | O_CLOEXEC);
    EXPECT_FALSE(terminal::IsTerminal(file));
    EXPECT_FALSE(terminal::WantsColour(file));
    EXPECT_EQ(terminal::Columns(file), 80U);
    EXPECT_EQ(terminal::Columns(-1), 80U);
    close(file);
}

// The status of a process that closes the descriptor and fills it.
void CloseAndFill(int descriptor) {
    close(descriptor);
    terminal::FillStandardDescriptors();
    char byte = 0;
    const bool isUsable = descriptor == STDIN_FILENO ? read(descriptor, &byte, 1) >= 0
                                                     : write(descriptor, &byte, 1) >= 0;
    const bool isFree = open("/dev/null", O_RDWR | O_CLOEXEC) <= STDERR_FILENO;
    std::_Exit((isUsable ? 1 : 0) + (isFree ? 2 : 0));
}

TEST(TerminalDeathTest, ClosedStandardDescriptorsAreGivenToNothingElse) {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        EXPECT_EXIT(CloseAndFill(descriptor), testing::ExitedWithCode(0), "") << descriptor;
    }
}

TEST(Colour, IsForTerminalsThatCanShowIt) {
    const std::vector<std::string> words = {kProgram, "juggle"};
    EXPECT_THAT(OnTerminal(words, 80, {{"TERM", "xterm"}, {"NO_COLOR", ""}}), HasSubstr(kRedName));
    EXPECT_THAT(OnTerminal(words, 80, {{"TERM", "xterm"}, {"NO_COLOR", "1"}}),
                Not(HasSubstr("\x1B")));
    EXPECT_THAT(OnTerminal(words, 80, {{"TERM", "dumb"}, {"NO_COLOR", ""}}),
                Not(HasSubstr("\x1B")));
}

TEST(Colour, IsNotForATerminalOfNoKind) {
    EXPECT_THAT(OnTerminal({"/usr/bin/env", "-u", "TERM", kProgram, "juggle"}, 80, {}),
                Not(HasSubstr("\x1B")));
}

TEST(Colour, IsNotForFilesAndPipes) {
    const auto result =
        test_support::RunProcess(kProgram, {"juggle"}, {{"TERM", "xterm"}, {"NO_COLOR", ""}});
    EXPECT_THAT(result.standardError, Not(HasSubstr("\x1B")));
}

TEST(Help, FitsTheTerminal) {
    for (const unsigned columns : {50U, 80U, 120U}) {
        std::size_t longest = 0;
        for (const std::string& line :
             test_support::LinesOf(OnTerminal({kProgram, "--help"}, columns, {}))) {
            longest = std::max(longest, line.find_last_not_of("\r\n ") + 1);
        }
        EXPECT_LE(longest, columns);
        EXPECT_GT(longest, columns - 25) << "room is left unused";
    }
}

TEST(Help, OfANarrowTerminalHasAtLeastFortyColumns) {
    EXPECT_EQ(OnTerminal({kProgram, "--help"}, 10, {}), OnTerminal({kProgram, "--help"}, 40, {}));
    EXPECT_EQ(OnTerminal({kProgram, "--help"}, 0, {}), OnTerminal({kProgram, "--help"}, 80, {}))
        << "of a terminal that does not tell";
}

// A driver whose run loop never runs: a request to it waits for its time-out.
TEST(Progress, AppearsOnATerminalWhenAWaitIsLongAndGoesAway) {
    const test_support::SessionFixture session;
    const OwnedReference<CFMessagePortRef> port(CFMessagePortCreateLocal(
        kCFAllocatorDefault, CFSTR("KRT9Background"),
        [](CFMessagePortRef, SInt32, CFDataRef, void*) -> CFDataRef { return nullptr; }, nullptr,
        nullptr));
    const std::string shown =
        OnTerminal({kProgram, "ping", "--timeout", "2.6"}, 80, {{"TERM", "dumb"}});
    EXPECT_THAT(
        shown, testing::MatchesRegex("\r\x1B\\[Kkrt9ctl: waiting for the driver \\(2 s\\)(.|\r|\n)*"
                                     "\r\x1B\\[Kkrt9ctl: 'JPth': (.|\r|\n)*"));
    const auto two = OnTerminal({kProgram, "keystroke", "b", "--timeout", "1.3"}, 80, {});
    EXPECT_THAT(two, HasSubstr("request 2 of 2 (2 s)"));
    const auto quick = OnTerminal({kProgram, "ping", "--timeout", "0.1"}, 80, {{"TERM", "dumb"}});
    EXPECT_THAT(quick, Not(HasSubstr("waiting")));
    const auto piped = test_support::RunProcess(kProgram, {"ping", "--timeout", "2.6"});
    EXPECT_THAT(piped.standardError, Not(HasSubstr("waiting")));
    CFMessagePortInvalidate(port.get());
}

}  // namespace
}  // namespace krt9ctl
