// The grammar of the command line as data: every verb, its parameters and what it does. The parser,
// the help and the verb `grammar` read the same rows.
#pragma once

#include <cstdint>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/ExitCode.h"
#include "tools/Request.h"

namespace krt9ctl {

class Arguments;
struct Context;

enum class ValueKind {
    flag,         // an option without a value
    number,       // decimal or 0x hex, within the parameter's limits
    seconds,      // more than 0, at most 86400, fractions allowed
    coordinates,  // X,Y: two whole numbers, global display coordinates
    text,         // UTF-8 without a zero byte
    code,         // four printable ASCII characters
    hex,          // pairs of hex digits
};

enum class Presence { required, optional, repeated };  // repeated: once or more

inline constexpr std::int64_t kLargestUnsigned32 = 0xFFFFFFFF;
inline constexpr std::int64_t kSmallestSigned32 = -0x80000000LL;
inline constexpr std::int64_t kLargestSigned32 = 0x7FFFFFFF;

struct Parameter {
    std::string_view name;  // "ELEMENT" is given by its place, "--steps" as an option
    ValueKind kind = ValueKind::text;
    std::string_view help;
    Presence presence = Presence::required;  // of one given by its place; options are optional
    std::string_view placeholder;            // of an option's value, in the help
    std::int64_t smallest = 0;               // of a number, or of each coordinate
    std::int64_t largest = kLargestUnsigned32;
};

// A verb either plans requests, which are then sent one after the other, or acts on its own.
using MakePlan = Plan (*)(const Arguments&);
using Act = ExitCode (*)(const Arguments&, Context&);

struct Verb {
    std::string_view name;      // the words as typed: "value", "mouse start"
    std::string_view requests;  // the codes it sends, for the help; empty for none
    std::string_view summary;   // one line
    std::string_view detail;    // what else a user must know; may be empty
    std::string_view example;   // one command line
    std::vector<Parameter> parameters;
    std::variant<MakePlan, Act> work;
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

// One call a family of verbs.
std::vector<Verb> ElementVerbs();
std::vector<Verb> InputVerbs();
std::vector<Verb> ObservationVerbs();
std::vector<Verb> WindowVerbs();
std::vector<Verb> RawVerbs();
std::vector<Verb> WatchVerbs();
std::vector<Verb> DumpVerbs();
std::vector<Verb> GrammarVerbs();

// Of the simulated desktop; where there is none, nothing but an empty list.
std::vector<Verb> DesktopVerbs();

}  // namespace krt9ctl
