// The verb that records an application's accessibility tree.
#include <fmt/format.h>

#include "scenes/notation/SceneText.h"
#include "tools/ApplicationLookup.h"
#include "tools/Arguments.h"
#include "tools/Grammar.h"
#include "tools/Run.h"
#include "tools/SceneDump.h"
#include "tools/Session.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

struct Choice {
    ApplicationFacts facts;
    bool isFront = false;
};

std::string Explain(AXError error) {
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

// Nothing when there is no such application.
std::optional<Choice> Choose(const Arguments& arguments) {
    const auto front = FrontApplication();
    if (arguments.Has("--pid")) {
        const auto pid = static_cast<pid_t>(arguments.Number("--pid"));
        const bool isFront = front && front->pid == pid;
        return Choice{isFront ? *front : ApplicationFacts{pid, {}, {}, {}}, isFront};
    }
    if (arguments.Has("--application")) {
        const std::string& bundleIdentifier = arguments.Text("--application");
        if (front && front->bundleIdentifier == bundleIdentifier) {
            return Choice{*front, true};
        }
        const auto pid = FindApplication(bundleIdentifier);
        return pid ? std::optional(Choice{{*pid, bundleIdentifier, {}, {}}, false}) : std::nullopt;
    }
    return front ? std::optional(Choice{*front, true}) : std::nullopt;
}

ExitCode Fail(Context& context, const std::string& sentence) {
    context.output.Problem(ExitCode::accessibility, sentence);
    return ExitCode::accessibility;
}

void RemarkOnGaps(const AccessibilityTree& tree, const SceneDump& dump, Output& output) {
    if (tree.LeftOut() > 0) {
        output.Remark(fmt::format(
            "{} elements disappeared while they were read, or exceeded the limit", tree.LeftOut()));
    }
    if (dump.leftOutValues > 0) {
        output.Remark(
            fmt::format("{} values that a scene cannot hold are left out", dump.leftOutValues));
    }
}

ExitCode ActDump(const Arguments& arguments, Context& context) {
    if (arguments.Has("--pid") && arguments.Has("--application")) {
        throw UsageError("--pid and --application exclude each other");
    }
    CheckSession();
    const auto choice = Choose(arguments);
    if (!choice) {
        return Fail(context, arguments.Has("--application") ? "there is no such application"
                                                            : "no application is in front");
    }
    Output& output = context.output;
    output.Progress("reading the application's elements");
    const AccessibilityTree::Options options{
        static_cast<float>(context.timeout), arguments.Has("--actions"),
        [&output](std::size_t count) { output.Progress(fmt::format("{} elements read", count)); }};
    const auto read = AccessibilityTree::Read(choice->facts.pid, options);
    if (const AXError* error = std::get_if<AXError>(&read)) {
        return Fail(context, Explain(*error));
    }
    const auto& tree = std::get<AccessibilityTree>(read);
    const SceneDump dump = WriteScene(tree, choice->facts, choice->isFront);
    const bool oneLine = output.IsJson() && !arguments.Has("--pretty");
    output.Document(oneLine ? scene_notation::WithoutLineBreaks(dump.text) + "\n" : dump.text);
    RemarkOnGaps(tree, dump, output);
    return ExitCode::ok;
}

}  // namespace

std::vector<Verb> DumpVerbs() {
    return {
        {.name = "dump",
         .requests = "",
         .summary = "record the front application's accessibility tree as a scene",
         .detail = "Reads the tree itself, without the driver; --timeout is that of each call. The "
                   "scene has one element a line, or with --json everything in one line. It holds "
                   "the texts that the application shows: look through it before "
                   "passing it on.",
         .example = "krt9ctl dump --application com.apple.FinalCut",
         .parameters = {{.name = "--application",
                         .kind = ValueKind::text,
                         .help = "bundle identifier of another application",
                         .placeholder = "BUNDLE"},
                        {.name = "--pid",
                         .kind = ValueKind::number,
                         .help = "process id of another application",
                         .placeholder = "N",
                         .smallest = 1,
                         .largest = kLargestSigned32},
                        {.name = "--actions",
                         .kind = ValueKind::flag,
                         .help = "also the actions of each element (one more call each)"},
                        {.name = "--pretty",
                         .kind = ValueKind::flag,
                         .help = "with --json: one element a line instead of all in one"}},
         .work = ActDump},
    };
}

}  // namespace krt9ctl
