// The grammar of the command line as data: every verb, its parameters and what it does. The parser,
// the help and the verb `grammar` read the same rows.
#pragma once

#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/ExitCode.h"
#include "tools/Expectation.h"
#include "tools/Request.h"
#include "tools/terminal/Parameter.h"

namespace krt9ctl {

class Arguments;
struct Context;

using terminal::kLargestSigned32;
using terminal::kLargestUnsigned32;
using terminal::kSmallestSigned32;
using terminal::Parameter;
using terminal::Presence;
using terminal::ValueKind;

// A verb either plans requests, which are then sent one after the other, or acts on its own.
using MakePlan = Plan (*)(const Arguments&);
using MakeExpectation = std::optional<Expectation> (*)(const Arguments&);
using Act = ExitCode (*)(const Arguments&, Context&);

struct Verb {
    std::string_view name;           // the words as typed: "value", "mouse start"
    std::string_view requests = {};  // the codes it sends, for the help; empty for none
    std::string_view summary;        // one line
    std::string_view detail = {};    // what else a user must know; may be empty
    std::string_view example;        // one command line
    std::vector<Parameter> parameters = {};
    std::variant<MakePlan, Act> work;
    // Of a plan: the option with which its times are printed in place of its replies.
    std::string_view measuredWith = {};
    // Of a plan: what must become so after it; null for nothing.
    MakeExpectation expects = nullptr;
};

// The first word of verbs of two words.
struct VerbGroup {
    std::string_view name;
    std::string_view summary;
};

struct Grammar {
    std::vector<VerbGroup> groups;
    std::vector<Verb> verbs;
};

// The options that stand before or after any verb.
std::vector<Parameter> CommonOptions();

// Everything krt9ctl can do on this system.
const Grammar& TheGrammar();

// One function for each family of verbs.
std::vector<Verb> ElementVerbs();
std::vector<Verb> WaitVerbs();
std::vector<Verb> InputVerbs();
std::vector<Verb> ObservationVerbs();
std::vector<Verb> WindowVerbs();
std::vector<Verb> RawVerbs();
std::vector<Verb> BatchVerbs();
std::vector<Verb> PanicVerbs();
std::vector<Verb> WatchVerbs();
std::vector<Verb> DumpVerbs();
std::vector<Verb> TreeVerbs();
std::vector<Verb> WhyVerbs();
std::vector<Verb> DoctorVerbs();
std::vector<Verb> ViewVerbs();
std::vector<Verb> ProfileVerbs();
std::vector<Verb> DiffVerbs();
std::vector<Verb> TraceVerbs();
std::vector<Verb> RecordVerbs();
std::vector<Verb> ReportVerbs();
std::vector<Verb> ReplayVerbs();
std::vector<Verb> GrammarVerbs();
std::vector<Verb> KeyVerbs();

// Those of the simulated desktop; an empty list on systems without one.
std::vector<Verb> DesktopVerbs();

}  // namespace krt9ctl
