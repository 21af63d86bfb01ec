// Verbs that post keystrokes and mouse gestures, and the pointer's position.
#include <cmath>

#include "VEKCommon/MessageCodes.h"
#include "tools/Arguments.h"
#include "tools/Grammar.h"
#include "tools/Keys.h"
#include "tools/RequestBody.h"

namespace krt9ctl {

namespace {

constexpr std::int64_t kLargestStepCount = 10000;
constexpr std::int64_t kUsualStepCount = 10;

unsigned int ModifierWord(const Arguments& arguments) {
    unsigned int word = 0;
    for (const ModifierRow& modifier : Modifiers()) {
        word |= arguments.Has(modifier.option) ? modifier.bit : 0;
    }
    return word;
}

std::vector<Parameter> WithModifiers(std::vector<Parameter> parameters) {
    for (const ModifierRow& modifier : Modifiers()) {
        parameters.push_back(
            {.name = modifier.option, .kind = ValueKind::flag, .help = modifier.optionHelp});
    }
    return parameters;
}

Parameter Place(std::string_view name, std::string_view help) {
    return {.name = name,
            .kind = ValueKind::coordinates,
            .help = help,
            .smallest = kSmallestSigned32,
            .largest = kLargestUnsigned32};
}

Parameter NoClick() {
    return {.name = "--no-click",
            .kind = ValueKind::flag,
            .help = "do not press the mouse button: only move, with the modifier keys down"};
}

Bytes MouseBody(Coordinates where, const Arguments& arguments) {
    // All steps have the same body.
    return krt9::requests::StartGesture({.x = Pattern(where.x),
                                         .y = Pattern(where.y),
                                         .modifiers = ModifierWord(arguments),
                                         .click = !arguments.Has("--no-click")})
        .body;
}

template <MessageCode code, bool releases>
Plan PlanMouseStep(const Arguments& arguments) {
    return {{code, MouseBody(arguments.Point("POINT"), arguments), releases}};
}

Coordinates Between(Coordinates from, Coordinates to, std::int64_t step, std::int64_t steps) {
    const double part = static_cast<double>(step) / static_cast<double>(steps);
    return {from.x + std::llround(static_cast<double>(to.x - from.x) * part),
            from.y + std::llround(static_cast<double>(to.y - from.y) * part)};
}

Plan PlanDrag(const Arguments& arguments) {
    const Coordinates from = arguments.Point("FROM");
    const Coordinates to = arguments.Point("TO");
    const std::int64_t steps = arguments.NumberOr("--steps", kUsualStepCount);
    Plan plan;
    plan.push_back({kJPMS, MouseBody(from, arguments)});
    for (std::int64_t step = 1; step <= steps; ++step) {
        plan.push_back({kJPMC, MouseBody(Between(from, to, step, steps), arguments)});
    }
    plan.push_back({kJPME, MouseBody(to, arguments), true});
    return plan;
}

Bytes KeystrokeBody(const Arguments& arguments, bool press) {
    const KeyChoice key = arguments.Key("KEY");
    return krt9::requests::PostKey(
               {.code = key.code, .modifiers = key.modifiers | ModifierWord(arguments)}, press)
        .body;
}

Plan PlanKeystroke(const Arguments& arguments) {
    const bool onlyDown = arguments.Has("--down");
    const bool onlyUp = arguments.Has("--up");
    if (onlyDown && onlyUp) {
        throw UsageError("--down and --up exclude each other; without them both are sent");
    }
    Plan plan;
    if (!onlyUp) {
        plan.push_back({kJCPK, KeystrokeBody(arguments, true)});
    }
    if (!onlyDown) {
        plan.push_back({kJCPK, KeystrokeBody(arguments, false), true});
    }
    return plan;
}

}  // namespace

std::vector<Verb> InputVerbs() {
    static constexpr std::string_view kMouseDetail =
        "All steps of a gesture carry the same modifiers and the same --no-click. The driver takes "
        "coordinates as unsigned numbers: a negative one arrives as its two's complement.";
    static constexpr std::string_view kDragDetail =
        "All steps carry the same modifiers and the same --no-click. When the drag fails or is "
        "interrupted, the button and the modifier keys go up where the pointer is. The driver "
        "takes coordinates as unsigned numbers: a negative one arrives as its two's complement.";
    return {
        {.name = "keystroke",
         .requests = "JCPK",
         .summary = "press and release a key",
         .detail = "KEY is a virtual key code or a name, with modifiers before it: cmd+b, "
                   "shift+cmd+left, 0x31. The verb keys lists the names; they are those of the "
                   "keys' places on an ANSI keyboard. The modifiers travel as flags of the "
                   "key-down. The driver never posts key code 0, which is the key a.",
         .example = "krt9ctl keystroke cmd+b",
         .parameters = WithModifiers(
             {{.name = "KEY",
               .kind = ValueKind::key,
               .help = "the key: a name or a virtual key code, such as cmd+b or 0x31"},
              {.name = "--down", .kind = ValueKind::flag, .help = "only press the key"},
              {.name = "--up", .kind = ValueKind::flag, .help = "only let the key go"}}),
         .work = PlanKeystroke},
        {.name = "drag",
         .requests = "JPMS JPMC JPME",
         .summary = "drag with the mouse from one point to another",
         .detail = kDragDetail,
         .example = "krt9ctl drag 100,200 300,400 --option",
         .parameters = WithModifiers({Place("FROM", "where the gesture starts, as X,Y"),
                                      Place("TO", "where it ends, as X,Y"),
                                      {.name = "--steps",
                                       .kind = ValueKind::number,
                                       .help = "points on the way, the last one TO (default 10)",
                                       .placeholder = "N",
                                       .largest = kLargestStepCount},
                                      NoClick()}),
         .work = PlanDrag},
        {.name = "mouse start",
         .requests = "JPMS",
         .summary = "begin a gesture: modifier keys and mouse button down",
         .detail = kMouseDetail,
         .example = "krt9ctl mouse start 100,200 --option",
         .parameters = WithModifiers({Place("POINT", "where, as X,Y"), NoClick()}),
         .work = PlanMouseStep<kJPMS, false>},
        {.name = "mouse continue",
         .requests = "JPMC",
         .summary = "one step of a drag",
         .detail = kMouseDetail,
         .example = "krt9ctl mouse continue 150,250 --option",
         .parameters = WithModifiers({Place("POINT", "where, as X,Y"), NoClick()}),
         .work = PlanMouseStep<kJPMC, false>},
        {.name = "mouse end",
         .requests = "JPME",
         .summary = "end a gesture: mouse button and modifier keys up",
         .detail = kMouseDetail,
         .example = "krt9ctl mouse end 300,400 --option",
         .parameters = WithModifiers({Place("POINT", "where, as X,Y"), NoClick()}),
         .work = PlanMouseStep<kJPME, true>},
        {.name = "pointer",
         .requests = "JGlM",
         .summary = "where the mouse pointer is",
         .detail = "Prints X,Y in global display coordinates, points.",
         .example = "krt9ctl pointer",
         .work =
             [](const Arguments&) {
                 return Plan{{kJGlM, {}}};
             }},
    };
}

}  // namespace krt9ctl
