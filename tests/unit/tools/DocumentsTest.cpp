// Manual pages and completions: written from the tables, complete, understood by their readers, and
// installed.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "desktop/Program.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Files.h"
#include "tests/support/Paths.h"
#include "tests/support/SessionFixture.h"
#include "tools/documents/Completion.h"
#include "tools/documents/Documents.h"
#include "tools/documents/ManualPage.h"
#include "tools/documents/Programs.h"

namespace documents {
namespace {

using krt9ctl::TheGrammar;
using test_support::ContentOf;
using test_support::LinesOf;
using test_support::RunProcess;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

std::string TextOf(const std::string& path) {
    for (const Document& document : AllDocuments()) {
        if (document.path == path) {
            return document.text;
        }
    }
    return "";
}

// A folder for files of the test.
class Written {
  public:
    explicit Written(const std::string& text) {
        path_ = folder_.Path() / "file";
        std::ofstream(path_) << text;
    }
    std::string Path() const { return path_.string(); }
    std::string Folder() const { return folder_.Path().string(); }

  private:
    test_support::SessionFixture folder_;
    std::filesystem::path path_;
};

// The page as a reader sees it, without overstriking.
std::string Rendered(const std::string& page) {
    const Written file(page);
    const auto result =
        RunProcess("/usr/bin/mandoc", {"-T", "ascii", "-O", "width=200", file.Path()});
    EXPECT_EQ(result.status, 0) << result.standardError;
    std::string text;
    for (const char character : result.standardOutput) {
        if (character == '\b') {
            text.pop_back();
        } else {
            text += character;
        }
    }
    return text;
}

TEST(ManualPage, OfTheCompanionHasEveryVerbParameterAndExitStatus) {
    const std::string page = Rendered(TextOf("man/man1/krt9ctl.1"));
    for (const krt9ctl::Verb& verb : TheGrammar().verbs) {
        EXPECT_THAT(page, HasSubstr(fmt::format("krt9ctl {}", verb.name)));
        EXPECT_THAT(page, HasSubstr(fmt::format("Example: {}", verb.example)));
        for (const terminal::Parameter& parameter : verb.parameters) {
            EXPECT_THAT(page, HasSubstr(std::string(parameter.name))) << verb.name;
        }
    }
    for (const krt9ctl::ExitCodeRow& row : krt9ctl::ExitCodes()) {
        EXPECT_THAT(page, HasSubstr(fmt::format("{} {}", static_cast<int>(row.code), row.name)));
    }
    EXPECT_THAT(page, HasSubstr("KRT9_SESSION_DIR"));
}

TEST(ManualPage, OfTheDesktopHasEveryOption) {
    const std::string page = Rendered(TextOf("man/man1/krt9-desktop.1"));
    for (const terminal::Parameter& parameter : desktop::DesktopProgram().parameters) {
        EXPECT_THAT(page, HasSubstr(std::string(parameter.help)));
    }
    EXPECT_THAT(page, HasSubstr("  KRT9_SESSION_DIR\n"));
    EXPECT_THAT(page, HasSubstr("  NO_COLOR\n"));
    EXPECT_THAT(page, HasSubstr("EXAMPLE\n       krt9-desktop scenes/editor-10.4.6.json --play\n"));
}

TEST(ManualPage, OfTheDriverIsInSectionEight) {
    const std::string page = Rendered(TextOf("man/man8/KRT9Background.8"));
    EXPECT_THAT(page, HasSubstr("KRT9BACKGROUND(8)"));
    EXPECT_THAT(page, HasSubstr("SIGINT"));
}

// A page has no date, so that the same sources give the same page.
TEST(ManualPage, IsUnderstoodWithoutAWarningButThatOfItsDate) {
    for (const Document& document : AllDocuments()) {
        if (!document.path.starts_with("man/")) {
            continue;
        }
        const Written file(document.text);
        const auto result =
            RunProcess("/usr/bin/mandoc", {"-T", "lint", "-W", "warning", file.Path()});
        EXPECT_THAT(LinesOf(result.standardOutput), ElementsAre(HasSubstr("missing date")))
            << document.path;
    }
}

TEST(ManualPage, KeepsCharactersThatItsMacrosWouldTake) {
    const terminal::Program program{.name = "x",
                                    .section = 1,
                                    .summary = "a-b",
                                    .description = ".dot \\back 'quote'",
                                    .parameters = {},
                                    .statuses = {},
                                    .environment = {},
                                    .files = {},
                                    .signals = {},
                                    .example = "'first",
                                    .seeAlso = {}};
    const std::string page = Rendered(WriteManualPage(program, nullptr, "1"));
    EXPECT_THAT(page, HasSubstr(".dot \\back 'quote'"));
    EXPECT_THAT(page, HasSubstr("'first"));
}

// What the shell offers after these words, the last of which is being typed.
std::vector<std::string> InBash(const std::string& program, const std::vector<std::string>& words) {
    const Written file(TextOf("bash-completion/completions/" + program));
    std::string function = "_" + program;
    std::replace(function.begin(), function.end(), '-', '_');
    const std::string script = "set -u; . \"$0\"; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); " +
                               function + "; printf '%s\\n' \"${COMPREPLY[@]}\"; complete -p " +
                               program + " >&2";
    std::vector<std::string> arguments = {"-c", script, file.Path()};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const auto result = RunProcess("/bin/bash", arguments);
    EXPECT_EQ(result.status, 0) << result.standardError;
    return LinesOf(result.standardOutput);
}

std::vector<std::string> InZsh(const std::string& program, const std::vector<std::string>& words) {
    const Written file(TextOf("zsh/site-functions/_" + program));
    std::string function = "_" + program;
    std::replace(function.begin(), function.end(), '-', '_');
    // The shell's own helpers print what they are given.
    const std::string script =
        "compdef() { :; }; _files() { print -- FILES; }; "
        "_describe() { local name=$@[-1]; print -rl -- ${(P)name}; }; "
        ". $0; words=(\"$@\"); CURRENT=$#; " +
        function;
    std::vector<std::string> arguments = {"-f", "-c", script, file.Path()};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const auto result = RunProcess("/usr/bin/zsh", arguments);
    EXPECT_EQ(result.standardError, "");
    return LinesOf(result.standardOutput);
}

std::vector<std::string> InFish(const std::string& program, const std::string& line) {
    const Written file(TextOf("fish/vendor_completions.d/" + program + ".fish"));
    const auto result = RunProcess(
        "/usr/bin/fish",
        {"--no-config", "-c", "source $argv[1]; complete -C $argv[2]", file.Path(), line},
        {{"HOME", file.Folder()}, {"XDG_CONFIG_HOME", file.Folder()}});
    EXPECT_EQ(result.standardError, "");
    return LinesOf(result.standardOutput);
}

TEST(BashCompletion, OffersVerbsThenTheirWordsThenTheirOptions) {
    EXPECT_THAT(InBash("krt9ctl", {"krt9ctl", "par"}), ElementsAre("parent-position"));
    EXPECT_THAT(InBash("krt9ctl", {"krt9ctl", ""}),
                IsSupersetOf({"value", "mouse", "--json", "--help", "--version"}));
    EXPECT_THAT(InBash("krt9ctl", {"krt9ctl", "mouse", "s"}), ElementsAre("start"));
    EXPECT_THAT(
        InBash("krt9ctl", {"krt9ctl", "--json", "--timeout", "5", "mouse", "start", "1,2", "--no"}),
        ElementsAre("--no-click"));
    EXPECT_THAT(InBash("krt9ctl", {"krt9ctl", "drag", "1,2", "3,4", "--steps", ""}),
                ElementsAre(""));
    EXPECT_THAT(InBash("krt9ctl", {"krt9ctl", "keystroke", "spa"}), ElementsAre("space"));
    EXPECT_THAT(InBash("krt9-desktop", {"krt9-desktop", "a.json", "--p"}), ElementsAre("--play"));
}

TEST(ZshCompletion, OffersVerbsThenTheirWordsThenTheirOptions) {
    EXPECT_THAT(InZsh("krt9ctl", {"krt9ctl", ""}),
                IsSupersetOf({"value:the numeric value of a control",
                              "--version:print the version "
                              "and exit"}));
    EXPECT_THAT(InZsh("krt9ctl", {"krt9ctl", "number", ""}),
                Not(Contains("value:the numeric value of a control")));
    EXPECT_THAT(InZsh("krt9ctl", {"krt9ctl", "--timeout", "5", "mouse", ""}),
                Contains("start:begin a gesture: modifier keys and mouse button down"));
    EXPECT_THAT(InZsh("krt9ctl", {"krt9ctl", "mouse", "start", "1,2", ""}),
                Contains(testing::StartsWith("--no-click:")));
    EXPECT_THAT(InZsh("krt9ctl", {"krt9ctl", "drag", "1,2", "3,4", "--steps", ""}), ElementsAre());
    EXPECT_THAT(InZsh("krt9-desktop", {"krt9-desktop", "--log", ""}), ElementsAre("FILES"));
    EXPECT_THAT(InZsh("krt9-desktop", {"krt9-desktop", ""}),
                IsSupersetOf({"FILES", "--play:play the scene's script from the start"}));
}

TEST(FishCompletion, OffersVerbsThenTheirWordsThenTheirOptions) {
    EXPECT_THAT(InFish("krt9ctl", "krt9ctl parent-"),
                ElementsAre("parent-position\tthe top left corner of what a control lies in"));
    EXPECT_THAT(InFish("krt9ctl", "krt9ctl --json --timeout 5 mouse st"),
                Contains("start\tbegin a gesture: modifier keys and mouse button down"));
    EXPECT_THAT(InFish("krt9ctl", "krt9ctl mouse start 1,2 --no-"),
                Contains(testing::StartsWith("--no-click\t")));
    EXPECT_THAT(InFish("krt9ctl", "krt9ctl value --no-"), ElementsAre());
    EXPECT_THAT(InFish("krt9-desktop", "krt9-desktop a.json --pl"),
                ElementsAre("--play\tplay the scene's script from the start"));
}

TEST(Completions, QuoteWhatTheirShellsWouldTake) {
    Completion completion{
        .program = "x", .places = {{}}, .groups = {}, .valueOptions = {}, .fileOptions = {}};
    completion.places.front().words.push_back({"a:b", "it's \\ so"});
    EXPECT_THAT(WriteZshCompletion(completion), HasSubstr(R"('a\:b:it'\''s \ so')"));
    EXPECT_THAT(WriteFishCompletion(completion), HasSubstr(R"(-a 'a:b' -d 'it\'s \\ so')"));
}

TEST(Documents, OfTheBuildAreUpToDate) {
    const auto folder = std::filesystem::path(KRT9_BINARIES).parent_path() / "documents";
    for (const Document& document : AllDocuments()) {
        EXPECT_EQ(ContentOf(folder / document.path), document.text) << document.path;
    }
}

TEST(Documents, AreInstalledWithThePrograms) {
    const test_support::SessionFixture target;
    const auto build = std::filesystem::path(KRT9_BINARIES).parent_path();
    const auto result =
        RunProcess("/usr/bin/env", {"cmake", "--install", build.string(), "--prefix",
                                    target.Path().string(), "--component", "tools"});
    EXPECT_EQ(result.status, 0) << result.standardError;
    for (const Document& document : AllDocuments()) {
        EXPECT_EQ(ContentOf(target.Path() / "share" / document.path), document.text);
    }
    EXPECT_FALSE(std::filesystem::exists(target.Path() / "share" / "written"));
    EXPECT_EQ(
        RunProcess((target.Path() / "bin" / "krt9ctl").string(), {"--version"}).standardOutput,
        "krt9ctl 1.0.0\n");
    EXPECT_TRUE(std::filesystem::exists(target.Path() / "bin" / "krt9-desktop"));
    EXPECT_THAT(RunProcess((target.Path() / "bin" / "krt9ctl").string(), {"ping"}).standardError,
                HasSubstr("start it with KRT9Background.app/"));
}

}  // namespace
}  // namespace documents
