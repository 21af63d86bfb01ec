// The command line of krt9-desktop keeps the same contract as krt9ctl's.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "tests/support/Files.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/Stage.h"
#include "tests/unit/tools/OnTerminal.h"

namespace {

using test_support::OnTerminal;
using test_support::RunProcess;
using test_support::Stage;
using testing::HasSubstr;

const std::string kProgram = Stage::DesktopPath();

class DesktopProgram : public testing::Test {
  protected:
    test_support::SessionFixture session_;
};

TEST_F(DesktopProgram, TellsItsVersionAndHelp) {
    EXPECT_EQ(RunProcess(kProgram, {"--version"}).standardOutput, "krt9-desktop 1.0.0\n");
    const auto help = RunProcess(kProgram, {"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.standardOutput, HasSubstr("--ready-fd N"));
    for (const std::string& line : test_support::LinesOf(help.standardOutput)) {
        EXPECT_LE(line.size(), 80U) << line;
    }
}

TEST_F(DesktopProgram, RefusesAWrongCommandLineInOneLineThatNamesItsHelp) {
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{}, "krt9-desktop: SCENE is required (see krt9-desktop --help)\n"},
        {{"a", "--paly"},
         "krt9-desktop: there is no option '--paly'; did you mean '--play'? (see krt9-desktop "
         "--help)\n"},
        {{"a", "--frobnicate"},
         "krt9-desktop: there is no option '--frobnicate' (see krt9-desktop --help)\n"},
        {{"a", "b\n"}, "krt9-desktop: unexpected argument 'b?' (see krt9-desktop --help)\n"},
        {{"a", "--ready-fd", "x"},
         "krt9-desktop: --ready-fd: 'x' is not a whole number from 0 to 65535 (see krt9-desktop "
         "--help)\n"},
        {{"a", "--ready-fd", "65536"},
         "krt9-desktop: --ready-fd: '65536' is not a whole number from 0 to 65535 (see "
         "krt9-desktop --help)\n"},
    };
    for (const auto& [words, sentence] : cases) {
        const auto result = RunProcess(kProgram, words);
        EXPECT_EQ(result.status, 2) << sentence;
        EXPECT_EQ(result.standardError, sentence);
        EXPECT_EQ(result.standardOutput, "");
    }
}

TEST_F(DesktopProgram, FailsWhenItsOutputCannotBeWritten) {
    const std::string scene = session_.Write("scene.json", R"({"front": null})");
    for (const std::string& words : {std::string("--version"), std::string("--help"), scene}) {
        const auto result = RunProcess("/bin/sh", {"-c", "\"$0\" $1 > /dev/full", kProgram, words});
        EXPECT_EQ(result.status, 1) << words;
        EXPECT_THAT(result.standardError, HasSubstr("No space left on device")) << words;
    }
}

TEST_F(DesktopProgram, FailsAtItsEndWhenItsLogCouldNotBeWritten) {
    const std::string scene = session_.Write("scene.json", R"({"front": null})");
    const auto desktop = Stage::LaunchDesktop({scene, "--log", "/dev/full"});
    ASSERT_TRUE(desktop->WaitForOutput("ready"));
    const auto change = Stage::Control({"desktop", "plug", R"({"name": "a"})"});
    EXPECT_EQ(change.status, 0) << change.standardError;
    desktop->Signal(SIGTERM);
    EXPECT_EQ(desktop->WaitForExit(), 1);
    EXPECT_THAT(desktop->StandardError(), HasSubstr("/dev/full: No space left on device"));
}

TEST_F(DesktopProgram, HasColoursOnATerminalOnly) {
    const std::string red = "\x1B[1m\x1B[31mkrt9-desktop:\x1B[0m SCENE is required";
    EXPECT_THAT(OnTerminal({kProgram}, 80, {{"TERM", "xterm"}, {"NO_COLOR", ""}}), HasSubstr(red));
    EXPECT_THAT(OnTerminal({kProgram}, 80, {{"TERM", "xterm"}, {"NO_COLOR", "1"}}),
                testing::StartsWith("krt9-desktop: SCENE"));
}

}  // namespace
