// The verb that searches for an element as the driver does and says where the search ended.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

#include "VEKCommon/OwnedReference.h"
#include "tools/ChosenApplication.h"
#include "tools/DriverWalk.h"
#include "tools/ElementLine.h"
#include "tools/Grammar.h"
#include "tools/Listing.h"
#include "tools/Reach.h"
#include "tools/SceneFile.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

struct Sought {
    std::string identifier;
    std::string role;  // of a query (accessibility/ElementQuery.h)
};

struct Diagnosis {
    ExitCode code;
    std::string_view outcome;  // in JSON
    std::string sentence;
    Json details = Json::object();
};

// "AXButton, AXCheckBox ...", as the driver's query has them.
std::string RolesSought(CFStringRef role) {
    std::vector<std::string> names;
    for (CFStringRef meant : QueryFromWindows(nullptr, role, nullptr).rolesMeantByAny) {
        names.push_back(Utf8Of(meant).value_or(""));
    }
    return names.empty() ? Printable(Utf8Of(role).value_or(""))
                         : fmt::format("{}", fmt::join(names, ", "));
}

Diagnosis FoundAt(const std::string& address, const std::string& role) {
    return {ExitCode::ok,
            "found",
            fmt::format("found at {}: {}", address, Printable(role)),
            {{"path", address}, {"role", role}}};
}

Diagnosis OfOtherRole(const std::string& address, const std::string& role, bool isSearchField,
                      CFStringRef sought) {
    const Json details{{"path", address}, {"role", role}};
    if (isSearchField) {
        return {ExitCode::outOfReach, "search-field",
                fmt::format("at {} it is a search field, which the driver never takes for a text "
                            "field",
                            address),
                details};
    }
    return {ExitCode::outOfReach, "other-role",
            fmt::format("at {} it has the role {}, but the search is for {}", address,
                        role.empty() ? "(none)" : Printable(role), RolesSought(sought)),
            details};
}

Diagnosis Unreadable(const CallFailure& failure) {
    switch (failure.error) {
        case kAXErrorAPIDisabled:
            return {ExitCode::accessibility, "not-trusted",
                    ExplainAccessibility(failure.error) +
                        "; the driver needs this permission for itself"};
        case kAXErrorCannotComplete:
            return {ExitCode::accessibility, "not-replying", ExplainAccessibility(failure.error)};
        case kAXErrorInvalidUIElement:
            return {ExitCode::accessibility, "no-application", ExplainAccessibility(failure.error)};
        default:
            return {ExitCode::accessibility, "windows-unreadable",
                    failure.kind == CallFailureKind::wrongType
                        ? "the application's windows are not a list"
                        : fmt::format("the application's windows cannot be read (accessibility "
                                      "error {})",
                                      static_cast<int>(failure.error))};
    }
}

// The first element with the identifier.
std::optional<std::size_t> FirstNamed(const ElementList& list, const std::string& identifier) {
    for (std::size_t place = 1; place < list.size(); ++place) {
        if (list[place].identifier == identifier) {
            return place;
        }
    }
    return std::nullopt;
}

Diagnosis Appeared(const ElementList& list, std::size_t place) {
    const std::string address = AddressOf(list, place);
    return {ExitCode::outOfReach,
            "changing",
            fmt::format("it is at {} now, but the search did not meet it: the application changed "
                        "meanwhile",
                        address),
            {{"path", address}, {"role", list[place].role}}};
}

// What the whole tree says of an element.
Diagnosis Elsewhere(const ElementList& list, std::size_t place, const Judgement& judgement,
                    CFStringRef role) {
    const std::string address = AddressOf(list, place);
    const ListedElement& element = list[place];
    Json details = ElementObject(list, place, judgement);
    switch (judgement.reach) {
        case Reach::reached:
            return FoundAt(address, element.role);
        case Reach::inside: {
            const ListedElement& end = list[judgement.cause];
            return {ExitCode::outOfReach, "inside",
                    fmt::format("at {} it is inside {} {}, which the driver does not search",
                                address, end.role.empty() ? "(no role)" : Printable(end.role),
                                AddressOf(list, judgement.cause)),
                    details};
        }
        case Reach::window:
            return {ExitCode::outOfReach, "window",
                    fmt::format("at {} it is a window, which the driver searches but never finds",
                                address),
                    details};
        case Reach::role:
        case Reach::searchField:
            return OfOtherRole(address, element.role, judgement.reach == Reach::searchField, role);
        default:
            return Appeared(list, place);
    }
}

Diagnosis Absent(const DriverWalk& walk, std::size_t leftOut) {
    if (walk.windowFailure) {
        return {ExitCode::accessibility,
                "window-unreadable",
                fmt::format("it is not where the driver looks, but the children of window {} "
                            "cannot be read (accessibility error {})",
                            AddressText({*walk.unreadWindow}),
                            static_cast<int>(walk.windowFailure->error)),
                {{"path", AddressText({*walk.unreadWindow})}}};
    }
    std::string sentence =
        fmt::format("the application has no such element in its {} windows", walk.windows);
    const std::size_t unread = std::max(walk.unreadElements, leftOut);
    if (unread > 0) {
        sentence += fmt::format(", but {} elements could not be read", unread);
    }
    return {ExitCode::notThere, "not-there", sentence, {{"unread", unread}}};
}

Diagnosis Diagnose(const DriverWalk& walk, const Sought& sought, CFStringRef role, pid_t pid,
                   Context& context) {
    if (walk.found) {
        return FoundAt(AddressText(walk.found->positions), walk.found->role);
    }
    if (walk.windowsFailure) {
        return Unreadable(*walk.windowsFailure);
    }
    if (const auto& met = walk.otherRole) {
        return OfOtherRole(AddressText(met->positions), met->role, met->isSearchField, role);
    }
    const auto read = ReadTree(pid, false, context);
    if (const AXError* error = std::get_if<AXError>(&read)) {
        return Unreadable({CallFailureKind::refused, *error});
    }
    const auto& tree = std::get<AccessibilityTree>(read);
    const ElementList list = ListElements(tree);
    const auto judgements = JudgeReach(list, role);
    const auto place = FirstNamed(list, sought.identifier);
    if (!place) {
        return Absent(walk, tree.LeftOut());
    }
    // What is within reach now was not there when the search passed.
    return judgements[*place].reach == Reach::reached
               ? Appeared(list, *place)
               : Elsewhere(list, *place, judgements[*place], role);
}

// The same search in the list alone. It ends with the element that is reached; if none is, the
// reason of one that the search meets says more than that of one that it does not.
Diagnosis DiagnoseInList(const ElementList& list, const Sought& sought, CFStringRef role) {
    const auto judgements = JudgeReach(list, role);
    const auto isMet = [&judgements](std::size_t place) {
        const Reach reach = judgements[place].reach;
        return reach == Reach::role || reach == Reach::searchField;
    };
    auto best = FirstNamed(list, sought.identifier);
    if (!best) {
        return {ExitCode::notThere, "not-there", "the scene's application has no such element"};
    }
    for (std::size_t place = *best; place < list.size(); ++place) {
        if (list[place].identifier != sought.identifier) {
            continue;
        }
        if (judgements[place].reach == Reach::reached) {
            best = place;
            break;
        }
        best = isMet(place) && !isMet(*best) ? place : *best;
    }
    return Elsewhere(list, *best, judgements[*best], role);
}

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
    const auto role = StringOf(sought.role);
    return Tell(sought, DiagnoseInList(listing.elements, sought, role.get()), object,
                context.output);
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
