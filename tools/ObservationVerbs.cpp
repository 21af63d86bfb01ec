// Verbs that make the driver look up the front application again, follow it or stop following it.
#include "VEKCommon/MessageCodes.h"
#include "tools/Arguments.h"
#include "tools/Grammar.h"
#include "tools/RequestBody.h"

namespace krt9ctl {

namespace {

constexpr std::int64_t kMostPings = 1000000;

template <MessageCode code>
Plan PlanBare(const Arguments&) {
    return {{code, {}}};
}

Plan PlanPing(const Arguments& arguments) {
    return Plan(static_cast<std::size_t>(arguments.NumberOr("--count", 1)), Request{kJPth, {}});
}

Plan PlanRefresh(const Arguments& arguments) {
    const bool profile = arguments.Has("--profile");
    const bool timecode = arguments.Has("--timecode");
    const bool clip = arguments.Has("--clip");
    if (!profile && !timecode && !clip) {
        throw UsageError("say what to refresh: --profile, --timecode or --clip");
    }
    const auto request = krt9::requests::RefreshAndObserve(
        {.frontApplication = profile, .timecode = timecode, .clip = clip});
    return {{request.code, request.body}};
}

}  // namespace

std::vector<Verb> ObservationVerbs() {
    return {
        {.name = "refresh",
         .requests = "JAcF",
         .summary = "look up the front application again",
         .detail = "At least one option must be given.",
         .example = "krt9ctl refresh --profile --timecode --clip",
         .parameters = {{.name = "--profile",
                         .kind = ValueKind::flag,
                         .help = "forget known controls and choose the identifiers by version"},
                        {.name = "--timecode",
                         .kind = ValueKind::flag,
                         .help = "start to follow the timecode"},
                        {.name = "--clip",
                         .kind = ValueKind::flag,
                         .help = "start to follow the selected clip"}},
         .work = PlanRefresh},
        {.name = "observe clip",
         .requests = "JObE",
         .summary = "follow the selected clip's name",
         .detail = "The names arrive at the companion's port; see the verb watch.",
         .example = "krt9ctl observe clip",
         .work = PlanBare<kJObE>},
        {.name = "observe timecode",
         .requests = "JObT",
         .summary = "follow the timecode under the playhead",
         .detail = "The timecodes arrive at the companion's port; see the verb watch.",
         .example = "krt9ctl observe timecode",
         .work = PlanBare<kJObT>},
        {.name = "stop",
         .requests = "JStO",
         .summary = "stop following clip and timecode, forget known controls",
         .detail = "",
         .example = "krt9ctl stop",
         .work = PlanBare<kJStO>},
        {.name = "reset",
         .requests = "JXRs",
         .summary = "forget known controls and the last clip name; go on following",
         .detail = "",
         .example = "krt9ctl reset",
         .work = PlanBare<kJXRs>},
        {.name = "ping",
         .requests = "JPth",
         .summary = "check that the driver is alive; the request does nothing",
         .detail = "With --count it prints the shortest time, the median, and the time that 99 of "
                   "100 replies do not exceed. The time goes from before the request is sent until "
                   "its reply is there. SIGINT ends the series early and prints what was measured.",
         .example = "krt9ctl ping --count 100",
         .parameters = {{.name = "--count",
                         .kind = ValueKind::number,
                         .help = "send it N times, one after the other, and print the times",
                         .placeholder = "N",
                         .smallest = 1,
                         .largest = kMostPings}},
         .work = PlanPing,
         .measuredWith = "--count"},
    };
}

}  // namespace krt9ctl
