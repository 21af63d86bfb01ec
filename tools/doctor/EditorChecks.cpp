// Checks of the application in front: whether it is the editor, whether the driver may read it, and
// whether it has the controls that the driver follows.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "VEKCommon/MessageCodes.h"
#include "VEKCommon/Names.h"
#include "accessibility/VersionProfiles.h"
#include "tools/ChosenApplication.h"
#include "tools/DriverWalk.h"
#include "tools/EditorProfiles.h"
#include "tools/Reach.h"
#include "tools/RequestBody.h"
#include "tools/Session.h"
#include "tools/Text.h"
#include "tools/doctor/Examination.h"

namespace krt9ctl::doctor {

namespace {

constexpr std::string_view kFront = "front";
constexpr std::string_view kPermission = "permission";
constexpr std::string_view kControls = "controls";

constexpr char kLookLater[] = "krt9ctl doctor --after 5";  // time to bring the editor to the front

bool IsEditor(const std::optional<ApplicationFacts>& front) {
    return front && front->bundleIdentifier == kEditorBundleID;
}

std::string NameOf(const ApplicationFacts& facts) {
    return facts.bundleIdentifier
               ? Printable(*facts.bundleIdentifier)
               : fmt::format("an application without bundle identifier (pid {})", facts.pid);
}

// An element that a request can name, by its number.
struct Witness {
    std::int64_t number;
    std::string role;
};

std::optional<Witness> FindWitness(const ElementList& list) {
    const auto judgements = JudgeReach(list);
    for (std::size_t place = 1; place < list.size(); ++place) {
        const auto& identifier = list[place].identifier;
        if (judgements[place].reach == Reach::reached && identifier) {
            if (const auto number = ParseElement(*identifier)) {
                return Witness{*number, list[place].role};
            }
        }
    }
    return std::nullopt;
}

Finding CompareWithDriver(const Witness& witness, const ApplicationFacts& front, Client& client) {
    const Answer answer = client.Send({kJElV, OneNumberBody(witness.number)});
    const Json details{{"element", fmt::format("_NS:{}", witness.number)}, {"role", witness.role}};
    if (DeliveryOf(answer.status).code != ExitCode::ok) {
        return Unknown(
            kPermission,
            fmt::format("asked for _NS:{}: {}", witness.number, DeliveryOf(answer.status).sentence),
            details);
    }
    if (answer.reply.empty()) {
        return Failing(kPermission, ExitCode::permission,
                       fmt::format("krt9ctl reads {} _NS:{} of {}, and the driver does not",
                                   Printable(witness.role), witness.number, NameOf(front)),
                       PermissionCommand(), details);
    }
    return Fine(kPermission,
                fmt::format("the driver reads {} _NS:{} of {}, as krt9ctl does",
                            Printable(witness.role), witness.number, NameOf(front)),
                details);
}

struct Sighting {
    const ProfileControl& control;
    bool isFound;
};

// Nothing when the application's windows cannot be read.
std::optional<std::vector<Sighting>> LookForControls(const EditorProfile& profile, pid_t pid,
                                                     double timeout) {
    std::vector<Sighting> sightings;
    for (const ProfileControl& control : profile.controls) {
        if (control.role.empty()) {
            continue;
        }
        const DriverWalk walk =
            WalkAsDriver(pid, StringOf(control.identifier).get(), StringOf(control.role).get(),
                         static_cast<float>(timeout));
        if (walk.windowsFailure) {
            return std::nullopt;
        }
        sightings.push_back({control, walk.found.has_value()});
    }
    return sightings;
}

// The driver reads the clip's name from any of three controls: one of them is enough. The editor
// shows two of them only at times.
const ProfileControl* FirstMissing(const EditorProfile& profile,
                                   const std::vector<Sighting>& sightings) {
    const auto isFound = [&](std::size_t column) {
        const std::string_view identifier = profile.controls[column].identifier;
        const std::string_view role = profile.controls[column].role;
        return std::any_of(sightings.begin(), sightings.end(), [&](const Sighting& each) {
            return each.isFound && each.control.identifier == identifier &&
                   each.control.role == role;
        });
    };
    for (const std::size_t column : {kTimelineIndexToggle, kTimecodeArea}) {
        if (!isFound(column)) {
            return &profile.controls[column];
        }
    }
    const bool hasClip = isFound(kFirstClipName) || isFound(kSecondClipName) || isFound(kClipTable);
    return hasClip ? nullptr : &profile.controls[kFirstClipName];
}

std::string Listed(const std::vector<Sighting>& sightings, bool found) {
    std::vector<std::string> names;
    for (const Sighting& each : sightings) {
        if (each.isFound == found) {
            names.push_back(fmt::format("{} {}", each.control.name, each.control.identifier));
        }
    }
    return names.empty() ? "none" : fmt::format("{}", fmt::join(names, ", "));
}

Json ControlsObject(const std::vector<Sighting>& sightings) {
    Json controls = Json::array();
    for (const Sighting& each : sightings) {
        controls.push_back({{"name", each.control.name},
                            {"identifier", each.control.identifier},
                            {"role", each.control.role},
                            {"found", each.isFound}});
    }
    return {{"controls", controls}};
}

}  // namespace

Finding CheckFront(const Facts& facts) {
    if (!facts.front) {
        const auto missing = FindMissingFromSession();
        return Failing(kFront, ExitCode::front,
                       missing ? missing->sentence : "no application is in front",
                       missing ? missing->command : kLookLater);
    }
    Json details{{"pid", facts.front->pid}};
    if (facts.front->bundleIdentifier) {
        details["application"] = *facts.front->bundleIdentifier;
    }
    if (!IsEditor(facts.front)) {
        return Failing(
            kFront, ExitCode::front,
            fmt::format("{} is in front, and the driver follows " kEditorBundleID " only",
                        NameOf(*facts.front)),
            kLookLater, details);
    }
    if (!facts.front->shortVersion) {
        return Unknown(kFront,
                       "the editor is in front, but its version cannot be read: the driver goes on "
                       "with the profile that it had",
                       details);
    }
    const std::string& version = *facts.front->shortVersion;
    const ChosenProfile chosen = ProfileOfVersion(version);
    details["version"] = version;
    details["profile"] = chosen.profile.release;
    details["known"] = chosen.isKnown;
    return Fine(kFront,
                chosen.isKnown
                    ? fmt::format("the editor, version {}, profile {}", Printable(version),
                                  chosen.profile.release)
                    : fmt::format("the editor, version {}, which has no profile of its own: the "
                                  "driver takes that of {}",
                                  Printable(version), chosen.profile.release),
                details);
}

// The driver does not tell whether it has the permission. Without it, it finds nothing.
Finding CheckPermission(const Facts& facts, Client& client, Context& context) {
    if (!facts.front || !facts.front->bundleIdentifier) {
        return Unknown(kPermission, "no application that the driver searches is in front");
    }
    if (!facts.driverReplies) {
        return Unknown(kPermission, "the driver does not reply");
    }
    const auto read = ReadTree(facts.front->pid, false, context);
    if (const AXError* error = std::get_if<AXError>(&read)) {
        return Unknown(kPermission, ExplainAccessibility(*error));
    }
    const auto witness = FindWitness(ListElements(std::get<AccessibilityTree>(read)));
    if (!witness) {
        return Unknown(kPermission, fmt::format("{} has no element that a request could name",
                                                NameOf(*facts.front)));
    }
    return CompareWithDriver(*witness, *facts.front, client);
}

Finding CheckControls(const Facts& facts, Context& context) {
    if (!IsEditor(facts.front) || !facts.front->shortVersion) {
        return Unknown(kControls, "the editor is not in front, or its version is not known");
    }
    const EditorProfile& profile = ProfileOfVersion(*facts.front->shortVersion).profile;
    context.output.Progress("looking for the editor's controls");
    const auto sightings = LookForControls(profile, facts.front->pid, context.timeout);
    if (!sightings) {
        return Unknown(kControls, "the editor's windows cannot be read");
    }
    const std::string found = "found: " + Listed(*sightings, true);
    const std::string missing = Listed(*sightings, false);
    const std::string all = missing == "none" ? found : found + "; not found: " + missing;
    if (const ProfileControl* control = FirstMissing(profile, *sightings)) {
        return Failing(kControls, ExitCode::controls, all,
                       fmt::format("krt9ctl why {} --role {}", control->identifier, control->role),
                       ControlsObject(*sightings));
    }
    return Fine(kControls, all, ControlsObject(*sightings));
}

}  // namespace krt9ctl::doctor
