// krt9ctl from its words to its exit code.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "tools/Grammar.h"
#include "tools/Run.h"

namespace krt9ctl {
namespace {

using testing::HasSubstr;

TEST(Help, ListsVerbsAndExitCodes) {
    std::ostringstream out, err;
    EXPECT_EQ(RunCommandLine({"--help"}, out, err), ExitCode::ok);
    for (const Verb& verb : TheGrammar().verbs) {
        const std::string firstWord(verb.name.substr(0, verb.name.find(' ')));
        EXPECT_THAT(out.str(), HasSubstr("\n  " + firstWord + " "));
    }
    EXPECT_THAT(out.str(), HasSubstr(ExitCodeHelp()));
    EXPECT_EQ(err.str(), "");
}

TEST(Help, OfAVerbHasItsRequestAndExample) {
    std::ostringstream out, err;
    EXPECT_EQ(RunCommandLine({"mouse", "start", "--help"}, out, err), ExitCode::ok);
    EXPECT_THAT(out.str(), HasSubstr("Request: JPMS"));
    EXPECT_THAT(out.str(), HasSubstr("Example: krt9ctl mouse start 100,200 --option"));
    EXPECT_THAT(out.str(), HasSubstr("unsigned"));
}

TEST(Help, VersionIsOneLine) {
    std::ostringstream out, err;
    EXPECT_EQ(RunCommandLine({"--version"}, out, err), ExitCode::ok);
    EXPECT_EQ(out.str(), "krt9ctl 1.0.0\n");
}

TEST(UsageErrors, AreOneLineOnTheErrorStreamAndTheUsageExitCode) {
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"juggle"}, {"value", "x"}, {}, {"value"}}) {
        std::ostringstream out, err;
        EXPECT_EQ(RunCommandLine(words, out, err), ExitCode::usage);
        EXPECT_EQ(out.str(), "");
        const std::string line = err.str();
        EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << line;
        EXPECT_THAT(line, testing::StartsWith("krt9ctl: "));
    }
}

}  // namespace
}  // namespace krt9ctl
