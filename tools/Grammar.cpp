#include "tools/Grammar.h"

#include <iterator>

namespace krt9ctl {

namespace {

void Append(std::vector<Verb>& verbs, std::vector<Verb> more) {
    verbs.insert(verbs.end(), std::make_move_iterator(more.begin()),
                 std::make_move_iterator(more.end()));
}

Grammar MakeGrammar() {
    Grammar grammar;
    grammar.groups = {
        {"mouse", "one step of a mouse gesture"},
        {"wait", "wait until a control is as expected"},
        {"observe", "follow something in the editing application"},
        {"desktop", "control the simulated desktop"},
    };
    Append(grammar.verbs, ElementVerbs());
    Append(grammar.verbs, WaitVerbs());
    Append(grammar.verbs, InputVerbs());
    Append(grammar.verbs, ObservationVerbs());
    Append(grammar.verbs, WindowVerbs());
    Append(grammar.verbs, RawVerbs());
    Append(grammar.verbs, BatchVerbs());
    Append(grammar.verbs, PanicVerbs());
    Append(grammar.verbs, WatchVerbs());
    Append(grammar.verbs, DumpVerbs());
    Append(grammar.verbs, TreeVerbs());
    Append(grammar.verbs, WhyVerbs());
    Append(grammar.verbs, DoctorVerbs());
    Append(grammar.verbs, ViewVerbs());
    Append(grammar.verbs, ProfileVerbs());
    Append(grammar.verbs, DiffVerbs());
    Append(grammar.verbs, TraceVerbs());
    Append(grammar.verbs, RecordVerbs());
    Append(grammar.verbs, ReportVerbs());
    Append(grammar.verbs, ReplayVerbs());
    Append(grammar.verbs, KeyVerbs());
    Append(grammar.verbs, GrammarVerbs());
    Append(grammar.verbs, DesktopVerbs());
    return grammar;
}

}  // namespace

std::vector<Parameter> CommonOptions() {
    return {
        {.name = "--json",
         .kind = ValueKind::flag,
         .help = "print one JSON object a line, for programs"},
        {.name = "--timeout",
         .kind = ValueKind::seconds,
         .help = "how long to wait for the driver, the desktop or an application (default 1)",
         .placeholder = "SECONDS"},
    };
}

const Grammar& TheGrammar() {
    static const Grammar grammar = MakeGrammar();
    return grammar;
}

}  // namespace krt9ctl
