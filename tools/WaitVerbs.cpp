// Verbs that wait until a control is as expected.
#include "VEKCommon/MessageCodes.h"
#include "tools/Arguments.h"
#include "tools/Grammar.h"
#include "tools/RequestBody.h"

namespace krt9ctl {

namespace {

constexpr double kUsualWait = 5;  // seconds

// The question is all there is to send.
Plan PlanNothing(const Arguments&) {
    return {};
}

template <MessageCode code>
std::optional<Expectation> ExpectWithin(const Arguments& arguments) {
    const std::int64_t element = arguments.Number("ELEMENT");
    return Expectation{{code, OneNumberBody(element)},
                       element,
                       arguments.Number("NUMBER"),
                       arguments.SecondsOr("--for", kUsualWait)};
}

std::vector<Parameter> WaitParameters(std::string_view whatNumber, std::int64_t smallest,
                                      std::int64_t largest) {
    return {{.name = "ELEMENT",
             .kind = ValueKind::element,
             .help = "the control: 59 for the accessibility identifier _NS:59, or _NS:59"},
            {.name = "NUMBER",
             .kind = ValueKind::number,
             .help = whatNumber,
             .smallest = smallest,
             .largest = largest},
            {.name = "--for",
             .kind = ValueKind::seconds,
             .help = "how long to wait (default 5)",
             .placeholder = "SECONDS"}};
}

constexpr std::string_view kDetail =
    "Asks the driver again and again, also for a control that it does not find yet. Prints "
    "nothing. Exit code 0: it is so; 14: it was not so in time.";

}  // namespace

std::vector<Verb> WaitVerbs() {
    return {
        {.name = "wait value",
         .requests = "JElV",
         .summary = "wait until a control has this numeric value",
         .detail = kDetail,
         .example = "krt9ctl wait value 171 1 --for 5",
         .parameters = WaitParameters("the value to wait for", kSmallestSigned32, kLargestSigned32),
         .work = PlanNothing,
         .expects = ExpectWithin<kJElV>},
        {.name = "wait number",
         .requests = "JESI",
         .summary = "wait until a control's text begins with this whole number",
         .detail = kDetail,
         .example = "krt9ctl wait number 87 100 --for 5",
         .parameters =
             WaitParameters("the number to wait for", kSmallestSigned32, kLargestSigned32),
         .work = PlanNothing,
         .expects = ExpectWithin<kJESI>},
        {.name = "wait selected",
         .requests = "JGRV",
         .summary = "wait until this button of a radio group is selected",
         .detail = kDetail,
         .example = "krt9ctl wait selected 119 0 --for 5",
         .parameters = WaitParameters("the button, 0 for the first one", 0, kLargestUnsigned32),
         .work = PlanNothing,
         .expects = ExpectWithin<kJGRV>},
    };
}

}  // namespace krt9ctl
