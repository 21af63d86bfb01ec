// Every example of README.md, CONTRIBUTING.md and docs/, against the real processes.
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <regex>
#include <sstream>

#include "tests/documents/ConsoleSession.h"
#include "tests/documents/Examples.h"
#include "tests/documents/Pattern.h"
#include "tests/support/Files.h"
#include "tests/support/Paths.h"

namespace documents {
namespace {

using test_support::LinesOf;

const Findings& AllExamples() {
    static const Findings findings = FindExamples(AllDocuments());
    return findings;
}

TEST(Documents, HaveNothingThatLooksLikeAnExampleAndIsNotRun) {
    EXPECT_EQ(fmt::format("{}", fmt::join(AllExamples().unrecognised, "\n")), "")
        << "CONTRIBUTING.md says how an example is written, and how one is marked as not run";
}

class Examples : public testing::TestWithParam<Example> {};

// --- Console blocks ------------------------------------------------------------------------------

Setting SettingOf(const Example& example, const std::vector<Step>& steps) {
    Setting setting;
    for (const std::string& option : example.options) {
        if (option.starts_with("scene=")) {
            setting.scene = option.substr(option.find('=') + 1);
        } else if (option == "without=companion") {
            setting.companion = Setting::Companion::none;
        } else if (option == "without=driver") {
            setting.hasDriver = false;
            setting.companion = Setting::Companion::none;
        } else if (option == "without=desktop") {
            setting.hasDriver = setting.hasDesktop = false;
            setting.companion = Setting::Companion::none;
        } else {
            ADD_FAILURE() << "unknown option " << option;
        }
    }
    for (const Step& step : steps) {
        if (step.kind == StepKind::message) {
            setting.companion = Setting::Companion::here;
            setting.statusReply = step.reply ? step.reply : setting.statusReply;
        }
    }
    return setting;
}

void PlayConsole(const Example& example) {
    const std::vector<Step> steps = ReadConsole(example.code, example.line);
    ConsoleSession session(SettingOf(example, steps));
    EXPECT_EQ(session.Play(steps), "");
}

// --- Commands in the text ------------------------------------------------------------------------

// "krt9ctl dump" without arguments names the verb where it needs some.
bool NamesAVerb(const std::string& command) {
    static const std::regex words("krt9ctl( [a-z-]+)+");
    return std::regex_match(command, words) && command.find(" -") == std::string::npos;
}

void ExpectOutput(const Example& example, const CommandResult& result) {
    const std::string printed = fmt::format("{}", fmt::join(result.lines, "\n"));
    if (example.hasPrints) {
        EXPECT_TRUE(std::regex_match(printed, std::regex(KindsOfOutput().at(example.prints))))
            << example.prints << ": " << printed;
    }
    for (const std::string& pattern : example.output) {
        EXPECT_TRUE(
            std::any_of(result.lines.begin(), result.lines.end(),
                        [&pattern](const std::string& line) { return Matches(pattern, line); }))
            << "expected: " << pattern << "\nprinted: " << printed;
    }
}

void RunUntilInterrupted(const Example& example) {
    Setting setting;
    setting.hasDriver = false;
    setting.companion = Setting::Companion::none;
    ConsoleSession session(setting);
    test_support::ChildProcess& process = session.RunInBackground(example.code.front());
    process.Signal(SIGINT);
    EXPECT_EQ(process.WaitForExit(), example.exitCode) << process.Output();
}

void RunCommand(const Example& example) {
    constexpr int kUsage = 2;
    const std::string& command = example.code.front();
    if (example.runsUntilInterrupted) {
        RunUntilInterrupted(example);
        return;
    }
    ConsoleSession session{Setting()};
    const CommandResult result = session.Run(command);
    if (result.status == kUsage && NamesAVerb(command)) {
        EXPECT_EQ(session.Run(command + " --help").status, 0);
        return;
    }
    EXPECT_EQ(result.status, example.exitCode) << fmt::format("{}", fmt::join(result.lines, "\n"));
    ExpectOutput(example, result);
}

// --- Scenes --------------------------------------------------------------------------------------

// A whole scene, or a part of one in a scene of its own: what goes around it.
std::string SceneAround(const std::string& part, const std::vector<std::string>& options) {
    const std::string place = fmt::format("{}", fmt::join(options, " "));
    constexpr std::string_view kApplication =
        R"({{"applications": [{{"bundleID": "com.apple.FinalCut"}}, {{"bundleID": "com.example.extension",
        "windows": [{{"AXRole": "AXWindow"}}]}}, {{"bundleID": "org.example.Notes", "windows": [{}]}}]}})";
    if (place == "part of a scene") {
        return "{" + part + "}";
    }
    if (place == "window") {
        return fmt::format(kApplication, part);
    }
    if (place == "part of an element") {
        return fmt::format(
            kApplication,
            R"({"AXRole": "AXWindow", "AXTitle": "", "AXChildren": [{}, {}], )" + part + "}");
    }
    EXPECT_EQ(place, "") << "unknown options";
    return part;
}

void LoadScene(const Example& example) {
    const test_support::SessionFixture session;
    const auto file = session.Write(
        "scene.json",
        SceneAround(fmt::format("{}", fmt::join(example.code, "\n")), example.options));
    test_support::ChildProcess desktop(test_support::Stage::DesktopPath(), {file.string()});
    EXPECT_TRUE(desktop.WaitForOutput("ready")) << desktop.Output();
}

void LoadValue(Example example) {
    example.code.front() = "\"AXValue\": " + example.code.front();
    example.options = {"part", "of", "an", "element"};
    LoadScene(example);
}

// --- The demonstration ---------------------------------------------------------------------------

std::string WithoutTimes(const std::string& line) {
    return std::regex_replace(line, std::regex("[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}"), "TIME");
}

// Clip and timecode are reported in either order, so each line counts for itself.
void CompareWithDemonstration(const Example& example) {
    const auto result =
        test_support::RunProcess((Checkout() / "scripts" / "demo").string(), {KRT9_BINARIES},
                                 test_support::Stage::DriverEnvironment(), 60);
    EXPECT_EQ(result.status, 0) << result.standardOutput << result.standardError;
    std::vector<std::string> printed;
    for (const std::string& line : LinesOf(result.standardOutput)) {
        printed.push_back(WithoutTimes(line));
    }
    for (const std::string& line : example.code) {
        EXPECT_THAT(printed, testing::Contains(WithoutTimes(line)));
    }
}

TEST_P(Examples, AreTrue) {
    const Example& example = GetParam();
    SCOPED_TRACE(PlaceOf(example) + ": " + example.code.front());
    switch (example.kind) {
        case ExampleKind::console:
            return PlayConsole(example);
        case ExampleKind::demo:
            return CompareWithDemonstration(example);
        case ExampleKind::scene:
            return LoadScene(example);
        case ExampleKind::command:
            return RunCommand(example);
        case ExampleKind::sceneValue:
            return LoadValue(example);
    }
}

// docs_krt9ctl_md_16_0: the number of the example comes last, since a line may have several.
std::string NameOf(const testing::TestParamInfo<Example>& info) {
    std::string name = fmt::format("{}_{}", PlaceOf(info.param), info.index);
    std::replace_if(
        name.begin(), name.end(), [](unsigned char each) { return std::isalnum(each) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, Examples, testing::ValuesIn(AllExamples().examples), NameOf);

}  // namespace
}  // namespace documents
