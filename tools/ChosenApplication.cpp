#include "tools/ChosenApplication.h"

#include <fmt/format.h>

#include "tools/ApplicationLookup.h"
#include "tools/Session.h"

namespace krt9ctl {

namespace {

// Nothing when there is no such application.
std::optional<ChosenApplication> Choose(const Arguments& arguments) {
    const auto front = FrontApplication();
    if (arguments.Has("--pid")) {
        const auto pid = static_cast<pid_t>(arguments.Number("--pid"));
        if (front && front->pid == pid) {
            return ChosenApplication{*front, true};
        }
        // A process that the system does not list may have elements as well.
        return ChosenApplication{FindApplication(pid).value_or(ApplicationFacts{pid, {}, {}, {}}),
                                 false};
    }
    if (arguments.Has("--application")) {
        const std::string& bundleIdentifier = arguments.Text("--application");
        if (front && front->bundleIdentifier == bundleIdentifier) {
            return ChosenApplication{*front, true};
        }
        const auto facts = FindApplication(bundleIdentifier);
        return facts ? std::optional(ChosenApplication{*facts, false}) : std::nullopt;
    }
    return front ? std::optional(ChosenApplication{*front, true}) : std::nullopt;
}

}  // namespace

std::vector<Parameter> WithApplication(std::vector<Parameter> parameters) {
    parameters.push_back({.name = "--application",
                          .kind = ValueKind::text,
                          .help = "bundle identifier of another application",
                          .placeholder = "BUNDLE"});
    parameters.push_back({.name = "--pid",
                          .kind = ValueKind::number,
                          .help = "process id of another application",
                          .placeholder = "N",
                          .smallest = 1,
                          .largest = kLargestSigned32});
    return parameters;
}

std::optional<ChosenApplication> FindChosenApplication(const Arguments& arguments) {
    if (arguments.Has("--pid") && arguments.Has("--application")) {
        throw UsageError("--pid and --application exclude each other");
    }
    CheckSession();
    return Choose(arguments);
}

std::string ExplainNoApplication(const Arguments& arguments) {
    if (const auto missing = FindMissingFromSession()) {
        return missing->Explain();
    }
    return arguments.Has("--application") ? "there is no such application"
                                          : "no application is in front";
}

std::optional<ChosenApplication> ChooseApplication(const Arguments& arguments, Context& context) {
    auto choice = FindChosenApplication(arguments);
    if (!choice) {
        context.output.Problem(ExitCode::accessibility, ExplainNoApplication(arguments));
    }
    return choice;
}

std::variant<AccessibilityTree, AXError> ReadTree(pid_t pid, bool withActions, Context& context) {
    Output& output = context.output;
    output.Progress("reading the application's elements");
    return AccessibilityTree::Read(
        pid, {static_cast<float>(context.timeout), withActions, [&output](std::size_t count) {
                  output.Progress(fmt::format("{} elements read", count));
              }});
}

std::string ExplainAccessibility(AXError error) {
    if (const auto missing = FindMissingFromSession()) {
        return missing->Explain();
    }
    switch (error) {
        case kAXErrorAPIDisabled:
            return "this process is not trusted for accessibility (see the system's privacy "
                   "settings)";
        case kAXErrorCannotComplete:
            return "the application does not reply; a longer --timeout may help";
        case kAXErrorInvalidUIElement:
            return "there is no such application";
        default:
            return fmt::format("the application's tree cannot be read (accessibility error {})",
                               static_cast<int>(error));
    }
}

}  // namespace krt9ctl
