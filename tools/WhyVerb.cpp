// The verb that searches for an element as the driver does and says where the search ended.
#include <fmt/format.h>

#include <cmath>

#include "VEKCommon/OwnedReference.h"
#include "accessibility/ElementQuery.h"
#include "tools/ChosenApplication.h"
#include "tools/Diagnosis.h"
#include "tools/DriverWalk.h"
#include "tools/Grammar.h"
#include "tools/Listing.h"
#include "tools/SceneFile.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

// The answer itself, whatever it is: it goes to the standard output.
ExitCode Tell(const Sought& sought, const Diagnosis& diagnosis, Json object, Output& output) {
    object["outcome"] = diagnosis.outcome;
    object.update(diagnosis.details);
    if (diagnosis.code != ExitCode::ok) {
        object["error"] = ExitCodeName(diagnosis.code);
        object["message"] = diagnosis.sentence;
    }
    output.Result(object, fmt::format("{}: {}", sought.identifier, diagnosis.sentence));
    return diagnosis.code;
}

std::string NameOf(const ApplicationFacts& facts) {
    return facts.bundleIdentifier ? Printable(*facts.bundleIdentifier)
                                  : fmt::format("the application with pid {}", facts.pid);
}

// Nothing when the driver would search the application.
std::optional<Diagnosis> ReasonNotToSearch(const std::optional<ChosenApplication>& choice,
                                           const Arguments& arguments) {
    if (!choice) {
        return Diagnosis{ExitCode::accessibility,
                         arguments.Has("--application") ? "no-application" : "nothing-in-front",
                         ExplainNoApplication(arguments)};
    }
    if (choice->isFront && !choice->facts.bundleIdentifier) {
        return Diagnosis{ExitCode::outOfReach, "no-bundle-identifier",
                         fmt::format("the driver does not search the application in front (pid "
                                     "{}), because it has no bundle identifier",
                                     choice->facts.pid)};
    }
    return std::nullopt;
}

ExitCode SearchAndTell(const Sought& sought, const ApplicationFacts& facts, Json object,
                       Context& context) {
    context.output.Progress("searching as the driver does");
    const auto identifier = StringOf(sought.identifier);
    const auto role = StringOf(sought.role);
    const DriverWalk walk =
        WalkAsDriver(facts.pid, identifier.get(), role.get(), static_cast<float>(context.timeout));
    Diagnosis diagnosis = Diagnose(walk, sought, role.get(), facts.pid, context);
    object["exchanges"] = walk.exchanges;
    object["milliseconds"] = std::round(walk.time.count() * 1000) / 1000;
    diagnosis.sentence += fmt::format("; {} {} with {} in {:.1f} ms", walk.exchanges,
                                      walk.exchanges == 1 ? "exchange" : "exchanges", NameOf(facts),
                                      walk.time.count());
    return Tell(sought, diagnosis, object, context.output);
}

// No application is asked: there are no exchanges, and the time would be that of a file.
ExitCode SearchFileAndTell(const Sought& sought, const Listing& listing, Json object,
                           Context& context) {
    if (!listing.facts.bundleIdentifier) {
        return Tell(sought,
                    {ExitCode::outOfReach, "no-bundle-identifier",
                     "the driver does not search an application without a bundle identifier"},
                    object, context.output);
    }
    object["application"] = *listing.facts.bundleIdentifier;
    if (listing.obstacles.hasRules) {
        context.output.Remark(
            "the file has rules of misbehaviour, which are not considered: an "
            "application that runs follows them (krt9-desktop FILE)");
    }
    const auto role = StringOf(sought.role);
    return Tell(sought, DiagnoseInScene(listing, sought, role.get()), object, context.output);
}

ExitCode ActWhy(const Arguments& arguments, Context& context) {
    const Sought sought{fmt::format("_NS:{}", arguments.Number("ELEMENT")),
                        arguments.Has("--role") ? arguments.Text("--role")
                                                : Utf8Of(kVEK_AXRole_AllValidRoles).value_or("")};
    Json object{{"element", sought.identifier}};
    if (const auto file = SceneFileOf(arguments)) {
        return SearchFileAndTell(sought, ReadSceneFile(*file, arguments), object, context);
    }
    const auto choice = FindChosenApplication(arguments);
    if (choice && choice->facts.bundleIdentifier) {
        object["application"] = *choice->facts.bundleIdentifier;
    }
    if (choice) {
        object["pid"] = choice->facts.pid;
    }
    if (const auto reason = ReasonNotToSearch(choice, arguments)) {
        return Tell(sought, *reason, object, context.output);
    }
    return SearchAndTell(sought, choice->facts, object, context);
}

std::vector<Parameter> WhyParameters() {
    return WithSource(
        {{.name = "ELEMENT",
          .kind = ValueKind::element,
          .help = "the control: 59 for the accessibility identifier _NS:59, or _NS:59"},
         {.name = "--role",
          .kind = ValueKind::text,
          .help = "search for this role only, as set does for AXTextField, and selected and select "
                  "do for AXRadioGroup",
          .placeholder = "ROLE"}});
}

}  // namespace

std::vector<Verb> WhyVerbs() {
    return {
        {.name = "why",
         .requests = "",
         .summary = "search for an element as the driver does and say where the search ends",
         .detail =
             "Walks through the windows of the application in front with the driver's own search, "
             "without the driver, and prints the number of exchanges with the application and the "
             "time. Exit code 0: found; 11: nothing is in front, this process is not trusted, or "
             "windows cannot be read; 12: the element is there, but has another role, is a search "
             "field or a window, or lies inside something that the driver does not search; 13: it "
             "is not there. --timeout is that of each call; the driver's is 6 seconds. A driver "
             "goes on with the application that was in front last when nothing is. With --scene "
             "the search is made in the file, without exchanges.",
         .example = "krt9ctl why 171",
         .parameters = WhyParameters(),
         .work = ActWhy},
    };
}

}  // namespace krt9ctl
