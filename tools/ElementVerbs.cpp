// Verbs that read, set or press one control of the front application.
#include "VEKCommon/MessageCodes.h"
#include "tools/Arguments.h"
#include "tools/Grammar.h"
#include "tools/RequestBody.h"

namespace krt9ctl {

namespace {

Parameter Element() {
    return {.name = "ELEMENT",
            .kind = ValueKind::element,
            .help = "the control: 59 for the accessibility identifier _NS:59, or _NS:59"};
}

Plan PlanSelect(const Arguments& arguments) {
    return {{kJSRV, TwoNumbersBody(arguments.Number("ELEMENT"), arguments.Number("INDEX"))}};
}

Plan PlanSet(const Arguments& arguments) {
    return {{kJSIS, TwoNumbersBody(arguments.Number("ELEMENT"), arguments.Number("NUMBER"))}};
}

constexpr double kUsualTimeToBeSo = 2;  // seconds

Parameter Within() {
    return {.name = "--within",
            .kind = ValueKind::seconds,
            .help = "with --expect: how long it may take (default 2)",
            .placeholder = "SECONDS"};
}

Parameter Expect(std::string_view help) {
    return {.name = "--expect", .kind = ValueKind::flag, .help = help};
}

// That a request of this code returns the number that the named parameter has; nothing without
// --expect.
template <MessageCode code>
std::optional<Expectation> ExpectSame(const Arguments& arguments, std::string_view parameter) {
    if (!arguments.Has("--expect")) {
        if (arguments.Has("--within")) {
            throw UsageError("--within needs --expect");
        }
        return std::nullopt;
    }
    const std::int64_t element = arguments.Number("ELEMENT");
    return Expectation{{code, OneNumberBody(element)},
                       element,
                       arguments.Number(parameter),
                       arguments.SecondsOr("--within", kUsualTimeToBeSo)};
}

// A press has no outcome of its own: only a value that is another one afterwards shows it.
std::optional<Expectation> ExpectOfPress(const Arguments& arguments) {
    auto expectation = ExpectSame<kJElV>(arguments, "--expect");
    if (expectation) {
        expectation->mustBeNews = true;
    }
    return expectation;
}

std::optional<Expectation> ExpectOfSelect(const Arguments& arguments) {
    return ExpectSame<kJGRV>(arguments, "INDEX");
}

std::optional<Expectation> ExpectOfSet(const Arguments& arguments) {
    return ExpectSame<kJESI>(arguments, "NUMBER");
}

template <MessageCode code>
Plan Ask(const Arguments& arguments) {
    return {{code, OneNumberBody(arguments.Number("ELEMENT"))}};
}

}  // namespace

std::vector<Verb> ElementVerbs() {
    return {
        {.name = "value",
         .requests = "JElV",
         .summary = "the numeric value of a control",
         .detail =
             "Prints a signed 32-bit number; 0 also for a control whose value is not a number.",
         .example = "krt9ctl value 171",
         .parameters = {Element()},
         .work = Ask<kJElV>},
        {.name = "number",
         .requests = "JESI",
         .summary = "the whole number that a control's text begins with",
         .detail = "Prints a signed 32-bit number, 0 for a text that does not begin with one; a "
                   "control without text gets no reply.",
         .example = "krt9ctl number 87",
         .parameters = {Element()},
         .work = Ask<kJESI>},
        {.name = "position",
         .requests = "JElP",
         .summary = "where a control is: the point to click in it",
         .detail = "Prints X,Y in global display coordinates (points, origin at the top left of "
                   "the main display). The driver reports a point 17 right of and below the "
                   "control's top left corner, except for _NS:128 from profile 2 on.",
         .example = "krt9ctl position 128",
         .parameters = {Element()},
         .work = Ask<kJElP>},
        {.name = "parent-position",
         .requests = "JEPp",
         .summary = "the top left corner of what a control lies in",
         .detail = "Prints X,Y in global display coordinates, points.",
         .example = "krt9ctl parent-position 159",
         .parameters = {Element()},
         .work = Ask<kJEPp>},
        {.name = "press",
         .requests = "JBtP",
         .summary = "press a control",
         .detail =
             "The driver does not report whether the control exists. With --expect, exit code "
             "0 means that the press took effect: the control's value was another one before "
             "and is N after it. When it is N before, nothing is pressed (exit code 14).",
         .example = "krt9ctl press 171",
         .parameters = {Element(),
                        {.name = "--expect",
                         .kind = ValueKind::number,
                         .help = "succeed only if the control's value becomes N",
                         .placeholder = "N",
                         .smallest = kSmallestSigned32,
                         .largest = kLargestSigned32},
                        Within()},
         .work = Ask<kJBtP>,
         .expects = ExpectOfPress},
        {.name = "selected",
         .requests = "JGRV",
         .summary = "which button of a radio group is selected",
         .detail = "Prints the button's index, 0 for the first one.",
         .example = "krt9ctl selected 119",
         .parameters = {Element()},
         .work = Ask<kJGRV>},
        {.name = "select",
         .requests = "JSRV",
         .summary = "press one button of a radio group",
         .detail = "The driver logs whether it worked; it does not report it. With --expect, exit "
                   "code 0 means that the button is selected now, 14 that it is not.",
         .example = "krt9ctl select 119 2",
         .parameters = {Element(),
                        {.name = "INDEX",
                         .kind = ValueKind::number,
                         .help = "the button, 0 for the first one"},
                        Expect("succeed only if the button is selected then"),
                        Within()},
         .work = PlanSelect,
         .expects = ExpectOfSelect},
        {.name = "set",
         .requests = "JSIS",
         .summary = "type a whole number into a text field and confirm it",
         .detail =
             "The driver does not report whether the field exists. With --expect, exit code 0 "
             "means that the field's text begins with the number now, 14 that it does not.",
         .example = "krt9ctl set 87 120",
         .parameters = {Element(),
                        {.name = "NUMBER",
                         .kind = ValueKind::number,
                         .help = "what to type",
                         .smallest = kSmallestSigned32,
                         .largest = kLargestSigned32},
                        Expect("succeed only if the field shows the number then"),
                        Within()},
         .work = PlanSet,
         .expects = ExpectOfSet},
    };
}

}  // namespace krt9ctl
