#include "tests/documents/ConsoleSession.h"

#include <CoreFoundation/CoreFoundation.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "VEKCommon/OwnedReference.h"
#include "scenes/notation/Hex.h"
#include "tests/documents/Markdown.h"
#include "tests/documents/Pattern.h"
#include "tests/support/Codes.h"
#include "tests/support/Files.h"
#include "tests/support/RunLoop.h"
#include "tests/support/WaitUntil.h"

namespace documents {

namespace {

using test_support::ChildProcess;
using test_support::kPatience;
using test_support::Stage;

struct Program {
    const char* name;
    std::string path;
};

std::vector<Program> Programs() {
    return {{"krt9ctl", Stage::ControlPath()},
            {"krt9-desktop", Stage::DesktopPath()},
            {"KRT9Background", Stage::DriverPath()}};
}

// What a command that runs until it is interrupted prints once it serves; null for others.
const char* ReadyText(std::string_view command) {
    static constexpr std::pair<std::string_view, const char*> kTexts[] = {
        {"krt9ctl watch", "watching the companion's port"},
        {"krt9ctl trace", "tracing the driver"},
        {"krt9-desktop", "ready"},
        {"KRT9Background", "accessibilityEnabled"},
    };
    for (const auto& [beginning, text] : kTexts) {
        if (command.starts_with(beginning)) {
            return text;
        }
    }
    return nullptr;
}

std::string Hex(const Bytes& bytes) {
    return scene_notation::FormatHex(bytes);
}

std::string Translations() {
    for (const Document& document : AllDocuments()) {
        for (const CodeBlock& block : document.blocks) {
            if (document.name == kTranslationsDocument && block.language == "xml") {
                return fmt::format("{}\n", fmt::join(block.code, "\n"));
            }
        }
    }
    throw std::runtime_error(std::string("no block of XML in ") + kTranslationsDocument);
}

std::string WrongOutput(const std::vector<std::string>& expected,
                        const std::vector<std::string>& actual) {
    return fmt::format("expected:\n  {}\nprinted:\n  {}", fmt::join(expected, "\n  "),
                       fmt::join(actual, "\n  "));
}

}  // namespace

ConsoleSession::ConsoleSession(const Setting& setting) : setting_(setting) {
    MakePrograms();
    std::filesystem::create_directory_symlink(Checkout() / "scenes", folder_.Path() / "scenes");
    home_.WriteTranslations("en", Translations());
    if (setting.companion == Setting::Companion::here) {
        companion_ = std::make_unique<test_support::Companion>();
        companion_->reply = setting.statusReply;
    }
    if (setting.hasDesktop) {
        stage_.StartDesktop(setting.scene);
    }
    if (setting.companion == Setting::Companion::watch) {
        stage_.StartCompanion();
    }
    if (setting.hasDriver) {
        stage_.StartDriver();
        driver_ = &stage_.Driver();
        AwaitFirstTick();
    }
}

bool ConsoleSession::HasTicked() {
    switch (setting_.companion) {
        case Setting::Companion::none:
            return driver_->WaitForOutput("SendMessage no remote port");
        case Setting::Companion::watch:
            return stage_.Companion().WaitForOutput("JSLg");
        case Setting::Companion::here:
            return test_support::RunLoopUntil([this] { return !companion_->received.empty(); },
                                              kPatience);
    }
    return false;
}

// In which the driver learns its language. It reports it to the companion, or logs that there is
// none.
void ConsoleSession::AwaitFirstTick() {
    if (!HasTicked()) {
        throw std::runtime_error("the driver's timer does not run");
    }
}

// Scripts: a script can give a program the patience that a document need not show.
void ConsoleSession::MakePrograms() {
    for (const Program& program : Programs()) {
        std::string script = "#!/bin/sh\n";
        for (const auto& [name, value] : Stage::DriverEnvironment()) {
            script += fmt::format("export {}='{}'\n", name, value);
        }
        if (std::string_view(program.name) == "krt9ctl") {
            script += fmt::format(
                "case \" $* \" in *' --timeout '*) ;; *) set -- --timeout {} \"$@\" ;; esac\n",
                kPatience);
        }
        script += fmt::format("exec '{}' \"$@\"\n", program.path);
        const auto file = folder_.Write(std::filesystem::path("bin") / program.name, script);
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }
}

std::vector<std::string> ConsoleSession::ShellWords(const std::string& command) const {
    return {"-c", fmt::format("cd '{0}' && export PATH='{0}/bin':\"$PATH\"\n{1}",
                              folder_.Path().string(), command)};
}

// A companion that did not take messages meanwhile would lose those that the driver cannot hand
// over within its hundredth of a second.
CommandResult ConsoleSession::Run(const std::string& command) {
    constexpr double kStep = 0.005;  // seconds
    ChildProcess process("/bin/sh", ShellWords(command));
    int status = -1;
    const auto hasEnded = [&] {
        if (companion_) {
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
        }
        status = process.WaitForExit(kStep);
        return status != -1;
    };
    test_support::WaitUntil(hasEnded);
    CommandResult read{status, test_support::LinesOf(process.StandardOutput())};
    const auto errors = test_support::LinesOf(process.StandardError());
    read.lines.insert(read.lines.end(), errors.begin(), errors.end());
    return read;
}

ChildProcess& ConsoleSession::RunInBackground(const std::string& command) {
    const char* const ready = ReadyText(command);
    if (ready == nullptr) {
        throw std::runtime_error(command + " is not known to run until it is interrupted");
    }
    processes_.push_back(std::make_unique<ChildProcess>("/bin/sh", ShellWords("exec " + command)));
    ChildProcess& process = *processes_.back();
    if (!process.WaitForOutput(ready)) {
        throw std::runtime_error(command + " did not start: " + process.Output());
    }
    if (command.starts_with("KRT9Background")) {
        driver_ = &process;
    }
    return process;
}

std::string ConsoleSession::Play(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
        const std::string problem = PlayStep(step);
        if (!problem.empty()) {
            return fmt::format("line {}: {}", step.line, problem);
        }
    }
    return CheckBackground();
}

std::string ConsoleSession::PlayStep(const Step& step) {
    switch (step.kind) {
        case StepKind::command:
            return PlayCommand(step);
        case StepKind::request:
            return PlayRequest(step);
        case StepKind::message:
            return AwaitMessage(step);
        case StepKind::desktop:
            return stage_.Desktop().WaitForOutput(step.text)
                       ? ""
                       : "the desktop logged " + stage_.Desktop().StandardOutput();
        case StepKind::driver:
            return driver_->WaitForOutput(step.text)
                       ? ""
                       : "the driver logged " + driver_->StandardError();
    }
    return "no such step";
}

void ConsoleSession::ForgetDesktopLog() {
    if (setting_.hasDesktop) {
        stage_.Desktop().ForgetOutput();
    }
}

std::string ConsoleSession::PlayCommand(const Step& step) {
    ForgetDesktopLog();
    if (step.isBackground) {
        backgrounds_.push_back({step, &RunInBackground(step.text)});
        return "";
    }
    const CommandResult result = Run(step.text);
    if (!MatchLines(step.output, result.lines)) {
        return WrongOutput(step.output, result.lines);
    }
    return result.status == step.exitCode
               ? ""
               : fmt::format("exit code {} instead of {}", result.status, step.exitCode);
}

std::string ConsoleSession::PlayRequest(const Step& step) {
    ForgetDesktopLog();
    const OwnedReference<CFMessagePortRef> port(
        CFMessagePortCreateRemote(kCFAllocatorDefault, CFSTR("KRT9Background")));
    if (!port) {
        return "there is no driver";
    }
    OwnedReference<CFDataRef> body;
    if (!step.body.empty()) {
        body.reset(CFDataCreate(kCFAllocatorDefault, step.body.data(),
                                static_cast<CFIndex>(step.body.size())));
    }
    CFDataRef received = nullptr;
    const SInt32 status =
        CFMessagePortSendRequest(port.get(), test_support::CodeOf(step.text), body.get(), kPatience,
                                 kPatience, kCFRunLoopDefaultMode, &received);
    const OwnedReference<CFDataRef> owner(received);
    if (status != kCFMessagePortSuccess) {
        return fmt::format("status {}", status);
    }
    const Bytes reply(CFDataGetBytePtr(received),
                      CFDataGetBytePtr(received) + CFDataGetLength(received));
    if (!step.reply) {
        return "the reply is not told";
    }
    return reply == *step.reply
               ? ""
               : fmt::format("the reply is '{}' instead of '{}'", Hex(reply), Hex(*step.reply));
}

std::string ConsoleSession::AwaitMessage(const Step& step) {
    auto& received = companion_->received;
    const SInt32 code = test_support::CodeOf(step.text);
    const auto arrived = [&] {
        return std::find_if(received.begin(), received.end(), [&](const auto& message) {
            return message.code == code && message.body == step.body;
        });
    };
    if (!test_support::RunLoopUntil([&] { return arrived() != received.end(); })) {
        std::string seen;
        for (const auto& message : received) {
            seen +=
                fmt::format("\n  {} {}", test_support::CodeText(message.code), Hex(message.body));
        }
        return "it did not arrive, but:" + seen;
    }
    received.erase(arrived());
    return "";
}

// In any order, and whatever else it printed: the driver asks for the status until it is answered
// in time.
std::string ConsoleSession::CheckBackground() {
    for (const Background& background : backgrounds_) {
        ChildProcess& process = *background.process;
        const std::vector<std::string>& expected = background.step.output;
        const auto isPrinted = [&process](const std::string& pattern) {
            const auto lines = test_support::LinesOf(process.Output());
            return std::any_of(lines.begin(), lines.end(), [&pattern](const std::string& line) {
                return Matches(pattern, line);
            });
        };
        const auto areAllPrinted = [&] {
            constexpr double kStep = 0.02;  // seconds
            process.WaitForOutput("waited for, and printed by nobody", kStep);
            return std::all_of(expected.begin(), expected.end(), isPrinted);
        };
        if (!test_support::WaitUntil(areAllPrinted)) {
            return fmt::format("line {}: {}", background.step.line,
                               WrongOutput(expected, test_support::LinesOf(process.Output())));
        }
    }
    return "";
}

}  // namespace documents
