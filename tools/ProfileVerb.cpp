// The verb that compares an editor with the rows of the driver's table.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tools/ChosenApplication.h"
#include "tools/Grammar.h"
#include "tools/Listing.h"
#include "tools/ProfileFit.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

struct Comparison {
    std::vector<FittedRow> rows;
    std::size_t used = 0;  // by the driver, for the application's version
    std::size_t best = 0;
};

std::string WhyNot(const ElementList& list, const FittedControl& control) {
    switch (control.fit) {
        case ProfileFit::reach:
            return fmt::format(" at {}, out of the search's reach", AddressOf(list, control.place));
        case ProfileFit::role: {
            const std::string& role = list[control.place].role;
            return fmt::format(" is {} {}", role.empty() ? "without role" : Printable(role),
                               AddressOf(list, control.place));
        }
        default:
            return "";
    }
}

std::string RowLine(const Comparison& comparison, std::size_t row, const ElementList& list) {
    const FittedRow& fitted = comparison.rows[row];
    std::vector<std::string> missing;
    for (std::size_t i = 0; i < kProfileControlCount; ++i) {
        if (fitted.controls[i].fit != ProfileFit::found) {
            missing.push_back(fmt::format("{} {}{}", EditorProfiles()[0].controls[i].name,
                                          EditorProfiles()[row].controls[i].identifier,
                                          WhyNot(list, fitted.controls[i])));
        }
    }
    return fmt::format("{} {:<7} {} of {}{}{}", row == comparison.best ? '*' : ' ',
                       EditorProfiles()[row].release, fitted.found, kProfileControlCount,
                       missing.empty() ? "" : "; not: ", fmt::join(missing, ", "));
}

Json RowObject(const Comparison& comparison, std::size_t row, const ElementList& list) {
    const FittedRow& fitted = comparison.rows[row];
    Json controls = Json::array();
    for (std::size_t i = 0; i < kProfileControlCount; ++i) {
        const FittedControl& control = fitted.controls[i];
        Json object{{"control", EditorProfiles()[0].controls[i].name},
                    {"identifier", EditorProfiles()[row].controls[i].identifier},
                    {"fit", ProfileFitName(control.fit)}};
        if (control.fit != ProfileFit::missing) {
            object["path"] = AddressOf(list, control.place);
            object["role"] = list[control.place].role;
        }
        controls.push_back(std::move(object));
    }
    return {{"row", EditorProfiles()[row].release},
            {"found", fitted.found},
            {"used", row == comparison.used},
            {"best", row == comparison.best},
            {"controls", controls}};
}

std::string Heading(const Listing& listing, const Comparison& comparison) {
    const auto& version = listing.facts.shortVersion;
    return fmt::format(
        "{} {}: the driver uses the row {}, and {}", NameOf(listing),
        version ? Printable(*version) : "without version",
        EditorProfiles()[comparison.used].release,
        comparison.best == comparison.used
            ? "none fits better"
            : fmt::format("the row {} fits better", EditorProfiles()[comparison.best].release));
}

ExitCode ActProfile(const Arguments& arguments, Context& context) {
    const auto read = ReadListing(arguments, SceneFileOf(arguments, "DUMP"), context);
    if (const ExitCode* code = std::get_if<ExitCode>(&read)) {
        return *code;
    }
    const auto& listing = std::get<Listing>(read);
    Comparison comparison{FitProfiles(listing.elements), ProfileRowFor(listing.facts.shortVersion)};
    comparison.best = BestRow(comparison.rows, comparison.used);
    Output& output = context.output;
    if (comparison.rows[comparison.best].found == 0) {
        output.Problem(ExitCode::notThere,
                       fmt::format("{} has none of the controls of any row", NameOf(listing)));
        return ExitCode::notThere;
    }
    if (!output.IsJson()) {
        output.Result({}, Heading(listing, comparison));
    }
    for (std::size_t row = 0; row < comparison.rows.size(); ++row) {
        output.Result(RowObject(comparison, row, listing.elements),
                      RowLine(comparison, row, listing.elements));
    }
    return ExitCode::ok;
}

}  // namespace

std::vector<Verb> ProfileVerbs() {
    return {
        {.name = "profile",
         .requests = "",
         .summary = "compare the editor in front, or a dump, with what the driver knows of editors",
         .detail =
             "The driver has a row for some releases, with the identifiers of six controls. "
             "Prints for each row how many of them its search finds, and which not: because "
             "no element has the identifier, one of another role has it, or the search does "
             "not come there. * stands before the row that fits best. The clip table is there "
             "only while the timeline index is visible, the clip's texts only with a clip. "
             "Exit code 13: no row has any control in common with the application.",
         .example = "krt9ctl profile --application com.apple.FinalCut",
         .parameters = WithSource({{.name = "DUMP",
                                    .kind = ValueKind::file,
                                    .help = "a dump or scene; without it, what is on the screen",
                                    .presence = Presence::optional}}),
         .work = ActProfile},
    };
}

}  // namespace krt9ctl
