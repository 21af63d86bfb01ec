// krt9ctl from its command line to its exit code.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "tests/support/Files.h"
#include "tools/Grammar.h"
#include "tools/Run.h"

namespace krt9ctl {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(Help, ListsVerbsAndExitCodes) {
    std::ostringstream out, err;
    EXPECT_EQ(RunCommandLine({"--help"}, {out, err}), ExitCode::ok);
    for (const Verb& verb : TheGrammar().verbs) {
        const std::string firstWord(verb.name.substr(0, verb.name.find(' ')));
        EXPECT_THAT(out.str(), HasSubstr("\n  " + firstWord + " "));
    }
    for (const ExitCodeRow& row : ExitCodes()) {
        EXPECT_THAT(out.str(), HasSubstr(" " + std::string(row.name) + " ")) << row.name;
    }
    EXPECT_EQ(err.str(), "");
}

TEST(Help, HasItsVerbsUnderThatHeading) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"--help"}, {"mouse", "--help"}}) {
        std::ostringstream out, err;
        EXPECT_EQ(RunCommandLine(words, {out, err}), ExitCode::ok);
        EXPECT_THAT(out.str(), HasSubstr("\nVerbs:\n"));
        EXPECT_THAT(out.str(), Not(HasSubstr("ubcommand")));
    }
}

TEST(Help, OfAVerbHasItsRequestAndExample) {
    std::ostringstream out, err;
    EXPECT_EQ(RunCommandLine({"mouse", "start", "--help"}, {out, err}), ExitCode::ok);
    EXPECT_THAT(out.str(), HasSubstr("Request: JPMS"));
    EXPECT_THAT(out.str(), HasSubstr("Example: krt9ctl mouse start 100,200 --option"));
    EXPECT_THAT(out.str(), HasSubstr("unsigned"));
}

TEST(Help, VersionIsOneLine) {
    std::ostringstream out, err;
    EXPECT_EQ(RunCommandLine({"--version"}, {out, err}), ExitCode::ok);
    EXPECT_EQ(out.str(), "krt9ctl 1.0.0\n");
}

std::vector<std::vector<std::string>> EveryHelp() {
    std::vector<std::vector<std::string>> all = {{"--help"}};
    for (const VerbGroup& group : TheGrammar().groups) {
        all.push_back({std::string(group.name), "--help"});
    }
    for (const Verb& verb : TheGrammar().verbs) {
        std::istringstream name{std::string(verb.name)};
        std::vector<std::string> words{std::istream_iterator<std::string>(name), {}};
        words.emplace_back("--help");
        all.push_back(words);
    }
    return all;
}

TEST(Help, FitsEightyColumns) {
    for (const auto& words : EveryHelp()) {
        std::ostringstream out, err;
        EXPECT_EQ(RunCommandLine(words, {out, err}), ExitCode::ok);
        for (const std::string& line : test_support::LinesOf(out.str())) {
            EXPECT_LE(line.size(), 80U) << line;
        }
    }
}

TEST(Json, OfVersionAndHelpIsOneObjectInOneLine) {
    std::ostringstream version, help, err;
    EXPECT_EQ(RunCommandLine({"--version", "--json"}, {version, err}), ExitCode::ok);
    EXPECT_EQ(version.str(), "{\"name\":\"krt9ctl\",\"version\":\"1.0.0\"}\n");
    EXPECT_EQ(RunCommandLine({"--json", "press", "--help"}, {help, err}), ExitCode::ok);
    EXPECT_THAT(Json::parse(help.str())["help"], HasSubstr("Example: krt9ctl press 171"));
    const std::string line = help.str();
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
}

TEST(Json, OfEveryUsageErrorIsOneObjectInOneLine) {
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"juggle", "--json"},
             {"--json"},
             {"--json", "value", "x"},
             {"value", "--json"},
             {"mouse", "--json"},
             {"drag", "1,2", "3,4", "--loud", "--json"},
             {"ping", "--timeout", "0", "--json"},
             {"dump", "--pid", "1", "--application", "a", "--json"}}) {
        std::ostringstream out, err;
        EXPECT_EQ(RunCommandLine(words, {out, err}), ExitCode::usage);
        const std::string line = out.str();
        EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << testing::PrintToString(words);
        const Json object = Json::parse(line, nullptr, false);
        EXPECT_EQ(object.value("error", ""), "usage") << testing::PrintToString(words);
    }
}

TEST(UsageErrors, NameTheVerbAndItsOwnHelp) {
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"value", "x"}, "krt9ctl: value: ELEMENT: 'x' is not an element"},
        {{"value", "x"}, "(see krt9ctl value --help)\n"},
        {{"mouse", "start", "x"}, "krt9ctl: mouse start: POINT: 'x' is not X,Y"},
        {{"mouse", "start", "x"}, "(see krt9ctl mouse start --help)\n"},
        {{"value"}, "krt9ctl: value: ELEMENT is required (see krt9ctl value --help)\n"},
        {{"mouse", "x"}, "krt9ctl: mouse: there is no verb 'mouse x' (see krt9ctl mouse --help)\n"},
        {{"mouse"}, "krt9ctl: mouse: a verb is missing (see krt9ctl mouse --help)\n"},
        {{"juggle"}, "krt9ctl: there is no verb 'juggle' (see krt9ctl --help)\n"},
        {{"keystroke", "b", "--up", "--down"}, "(see krt9ctl keystroke --help)\n"},
    };
    for (const auto& [words, part] : cases) {
        std::ostringstream out, err;
        EXPECT_EQ(RunCommandLine(words, {out, err}), ExitCode::usage);
        EXPECT_THAT(err.str(), HasSubstr(part));
    }
}

TEST(UsageErrors, AreOneLineOnTheErrorStreamAndTheUsageExitCode) {
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"juggle"}, {"value", "x"}, {}, {"value"}}) {
        std::ostringstream out, err;
        EXPECT_EQ(RunCommandLine(words, {out, err}), ExitCode::usage);
        EXPECT_EQ(out.str(), "");
        const std::string line = err.str();
        EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << line;
        EXPECT_THAT(line, testing::StartsWith("krt9ctl: "));
    }
}

}  // namespace
}  // namespace krt9ctl
