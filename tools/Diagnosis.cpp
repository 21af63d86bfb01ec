#include "tools/Diagnosis.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "accessibility/ElementQuery.h"
#include "tools/ChosenApplication.h"
#include "tools/ElementLine.h"
#include "tools/Reach.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

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

std::string WhatIsUnreadable(const CallFailure& failure) {
    return failure.kind == CallFailureKind::wrongType
               ? "are not a list"
               : fmt::format("cannot be read (accessibility error {})",
                             static_cast<int>(failure.error));
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
                    "the application's windows " + WhatIsUnreadable(failure)};
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
        return {
            ExitCode::accessibility,
            "window-unreadable",
            fmt::format("it is not where the driver looks, but the children of window {} {}",
                        AddressText({*walk.unreadWindow}), WhatIsUnreadable(*walk.windowFailure)),
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

// What the driver's walk would say of the windows that a scene writes.
DriverWalk WalkThrough(const SceneObstacles& obstacles) {
    DriverWalk walk;
    walk.windowsFailure = obstacles.windowsFailure;
    walk.windows = obstacles.windows;
    walk.unreadWindow = obstacles.unreadWindow;
    if (obstacles.unreadWindow) {
        walk.windowFailure = obstacles.windowFailure;
    }
    return walk;
}

}  // namespace

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

// It ends with the element that is reached; if none is, the
// reason of one that the search meets says more than that of one that it does not.
Diagnosis DiagnoseInScene(const Listing& listing, const Sought& sought, CFStringRef role) {
    const DriverWalk walk = WalkThrough(listing.obstacles);
    if (walk.windowsFailure) {
        return Unreadable(*walk.windowsFailure);
    }
    const ElementList& list = listing.elements;
    const auto judgements = JudgeReach(list, role);
    const auto isMet = [&judgements](std::size_t place) {
        const Reach reach = judgements[place].reach;
        return reach == Reach::role || reach == Reach::searchField;
    };
    auto best = FirstNamed(list, sought.identifier);
    if (!best) {
        return Absent(walk, 0);
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

}  // namespace krt9ctl
