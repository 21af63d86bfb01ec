// The verb that records an application's accessibility tree.
#include <fmt/format.h>

#include "scenes/notation/SceneText.h"
#include "tools/ChosenApplication.h"
#include "tools/Grammar.h"
#include "tools/SceneDump.h"

namespace krt9ctl {

namespace {

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
    const auto choice = ChooseApplication(arguments, context);
    if (!choice) {
        return ExitCode::accessibility;
    }
    Output& output = context.output;
    const auto read = ReadTree(choice->facts.pid, arguments.Has("--actions"), context);
    if (const AXError* error = std::get_if<AXError>(&read)) {
        output.Problem(ExitCode::accessibility, ExplainAccessibility(*error));
        return ExitCode::accessibility;
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
         .parameters =
             WithApplication({{.name = "--actions",
                               .kind = ValueKind::flag,
                               .help = "also the actions of each element (one more call each)"},
                              {.name = "--pretty",
                               .kind = ValueKind::flag,
                               .help = "with --json: one element a line instead of all in one"}}),
         .work = ActDump},
    };
}

}  // namespace krt9ctl
