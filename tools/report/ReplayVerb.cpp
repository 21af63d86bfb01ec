// The verb that carries out a recorded session again and compares what comes of it.
#include <fmt/format.h>

#include "tools/Arguments.h"
#include "tools/Conversation.h"
#include "tools/Grammar.h"
#include "tools/Interruption.h"
#include "tools/Run.h"
#include "tools/Text.h"
#include "tools/report/Rerun.h"

namespace krt9ctl {

namespace {

constexpr double kShortestTimeout = 10;  // seconds: a busy machine is no difference

void Show(const Difference& difference, Output& output) {
    const std::string place = difference.line == 0 ? "" : fmt::format("line {}: ", difference.line);
    output.Result({{"line", difference.line},
                   {"what", difference.what},
                   {"recorded", difference.recorded},
                   {"now", difference.now}},
                  fmt::format("{}{}: recorded {}, now {}", place, Printable(difference.what),
                              Printable(difference.recorded), Printable(difference.now)));
}

ExitCode Tell(const std::string& path, const Comparison& comparison, Output& output) {
    for (const Difference& difference : comparison.differences) {
        Show(difference, output);
    }
    if (comparison.stopped != ExitCode::ok) {
        ReportSignal(comparison.stopped, output);
        return comparison.stopped;
    }
    const Json object{{"requests", comparison.requests},
                      {"messages", comparison.messages},
                      {"differences", comparison.differences.size()}};
    if (!comparison.differences.empty()) {
        output.Problem(ExitCode::differs,
                       fmt::format("'{}': {} replies or messages are not as recorded, of {} "
                                   "requests and {} messages",
                                   Printable(path), comparison.differences.size(),
                                   comparison.requests, comparison.messages),
                       object);
        return ExitCode::differs;
    }
    output.Result(object, fmt::format("{} requests and {} messages are as recorded",
                                      comparison.requests, comparison.messages));
    return ExitCode::ok;
}

std::optional<std::string> GivenText(const Arguments& arguments, std::string_view name) {
    return arguments.Has(name) ? std::optional(arguments.Text(name)) : std::nullopt;
}

ExitCode Replay(const std::string& path, const Arguments& arguments, Context& context) {
    const Material material = ReadMaterial(path, GivenText(arguments, "--scene"));
    context.output.Progress("starting a desktop and the driver");
    const auto session =
        OpenPrivateSession({material.scene, material.language, GivenText(arguments, "--driver")});
    if (!session) {
        context.output.Problem(ExitCode::noDesktop,
                               "this system has no simulated desktop: replay it on Linux");
        return ExitCode::noDesktop;
    }
    const Comparison comparison =
        Rerun(material, *session, std::max(context.timeout, kShortestTimeout), context.output);
    return Tell(path, comparison, context.output);
}

ExitCode ActReplay(const Arguments& arguments, Context& context) {
    const Interruption interruption;
    const std::string& path = arguments.Text("FILE");
    try {
        return Replay(path, arguments, context);
    } catch (const UnfitMaterial& error) {
        context.output.Problem(ExitCode::badReport,
                               fmt::format("'{}': {}", Printable(path), error.what()));
        return ExitCode::badReport;
    }
}

}  // namespace

std::vector<Verb> ReplayVerbs() {
    return {
        {.name = "replay",
         .requests = "",
         .summary = "carry out a report's recorded requests again, and compare",
         .detail =
             "Starts a simulated desktop with the scene of the report, and the driver on it, in a "
             "session of their own; sends the recorded requests; compares replies and messages. "
             "Exit code 0 means that all are as recorded, 15 that some are not. FILE is what "
             "report has written, or with --scene what record has.",
         .example = "krt9ctl replay report.zip",
         .parameters = {{.name = "FILE",
                         .kind = ValueKind::file,
                         .help = "a report or a recording"},
                        {.name = "--scene",
                         .kind = ValueKind::file,
                         .help = "the scene on which it is replayed, in place of the report's",
                         .placeholder = "FILE"},
                        {.name = "--driver",
                         .kind = ValueKind::file,
                         .help = "another driver than the one beside krt9ctl",
                         .placeholder = "FILE"}},
         .work = ActReplay},
    };
}

}  // namespace krt9ctl
