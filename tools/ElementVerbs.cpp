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
         .example = "krt9ctl value 59",
         .parameters = {Element()},
         .work = Ask<kJElV>},
        {.name = "number",
         .requests = "JESI",
         .summary = "the whole number that a control's text begins with",
         .detail = "Prints a signed 32-bit number, 0 for a text that does not begin with one; a "
                   "control without text gets no reply.",
         .example = "krt9ctl number 42",
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
         .example = "krt9ctl parent-position 59",
         .parameters = {Element()},
         .work = Ask<kJEPp>},
        {.name = "press",
         .requests = "JBtP",
         .summary = "press a control",
         .detail = "The driver does not report whether the control exists.",
         .example = "krt9ctl press 59",
         .parameters = {Element()},
         .work = Ask<kJBtP>},
        {.name = "selected",
         .requests = "JGRV",
         .summary = "which button of a radio group is selected",
         .detail = "Prints the button's index, 0 for the first one.",
         .example = "krt9ctl selected 59",
         .parameters = {Element()},
         .work = Ask<kJGRV>},
        {.name = "select",
         .requests = "JSRV",
         .summary = "press one button of a radio group",
         .detail = "The driver logs whether it worked; it does not report it.",
         .example = "krt9ctl select 59 2",
         .parameters = {Element(),
                        {.name = "INDEX",
                         .kind = ValueKind::number,
                         .help = "the button, 0 for the first one"}},
         .work = PlanSelect},
        {.name = "set",
         .requests = "JSIS",
         .summary = "type a whole number into a text field and confirm it",
         .detail = "The driver does not report whether the field exists.",
         .example = "krt9ctl set 59 42",
         .parameters = {Element(),
                        {.name = "NUMBER",
                         .kind = ValueKind::number,
                         .help = "what to type",
                         .smallest = kSmallestSigned32,
                         .largest = kLargestSigned32}},
         .work = PlanSet},
    };
}

}  // namespace krt9ctl
