// The verb that sends any request, given as code and bytes.
#include "tools/Arguments.h"
#include "tools/Grammar.h"

namespace krt9ctl {

namespace {

Plan PlanRaw(const Arguments& arguments) {
    return {{arguments.Code("CODE"), arguments.HexOrNone("HEX")}};
}

}  // namespace

std::vector<Verb> RawVerbs() {
    return {
        {.name = "request",
         .requests = "",
         .summary = "send any request, given its code and the bytes of its body",
         .detail = "A reply of a known code is decoded; any other one is printed as hex digits. An "
                   "unknown code may go unanswered.",
         .example = "krt9ctl request JElV ab000000",
         .parameters = {{.name = "CODE",
                         .kind = ValueKind::code,
                         .help = "four characters, upper and lower case count"},
                        {.name = "HEX",
                         .kind = ValueKind::hex,
                         .help = "the body as pairs of hex digits; none for an absent body",
                         .presence = Presence::optional}},
         .work = PlanRaw},
    };
}

}  // namespace krt9ctl
