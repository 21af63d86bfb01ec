// The verb that finds the controls of one dump again in another.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <map>

#include "tools/ChosenApplication.h"
#include "tools/ElementLine.h"
#include "tools/ElementMatching.h"
#include "tools/Grammar.h"
#include "tools/Listing.h"
#include "tools/ProfileFit.h"
#include "tools/SceneFile.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

double Rounded(double share) {
    return std::round(share * 100) / 100;
}

int Percent(double share) {
    return static_cast<int>(std::lround(share * 100));
}

class Difference {
  public:
    Difference(const Listing& from, const Listing& to, ElementMatching matching);

    // What became of the six controls of the row that the first dump fits best.
    void TellControls(Output& output) const;
    void TellElements(bool all, Output& output) const;

  private:
    const ElementMatch* MatchOf(std::size_t from) const;
    std::string Line(const ElementMatch& match) const;
    Json Object(const ElementMatch& match) const;
    Json OneSided(const char* side, const ElementList& list, std::size_t place) const;
    void AddControls(std::size_t from, Json& object) const;
    std::string ControlsText(std::size_t from) const;
    std::string Instead(std::size_t from) const;

    const Listing& from_;
    const Listing& to_;
    ElementMatching matching_;
    std::size_t row_ = 0;
    FittedRow fitted_;
    std::multimap<std::size_t, std::size_t> controls_;  // by the element of the first dump
};

Difference::Difference(const Listing& from, const Listing& to, ElementMatching matching)
    : from_(from), to_(to), matching_(std::move(matching)) {
    const auto rows = FitProfiles(from.elements);
    row_ = BestRow(rows, ProfileRowFor(from.facts.shortVersion));
    fitted_ = rows[row_];
    for (std::size_t control = 0; control < kProfileControlCount; ++control) {
        if (fitted_.controls[control].fit == ProfileFit::found) {
            controls_.emplace(fitted_.controls[control].place, control);
        }
    }
}

const ElementMatch* Difference::MatchOf(std::size_t from) const {
    for (const ElementMatch& match : matching_.matches) {
        if (match.from == from) {
            return &match;
        }
    }
    return nullptr;
}

// What a control that is gone may have become: the element that has its address now.
std::string Difference::Instead(std::size_t from) const {
    const std::string address = AddressOf(from_.elements, from);
    for (std::size_t place = 1; place < to_.elements.size(); ++place) {
        const ListedElement& element = to_.elements[place];
        if (element.depth == from_.elements[from].depth && element.identifier &&
            AddressOf(to_.elements, place) == address) {
            return fmt::format("; at its address {} is {} {} now", address, ShortText(element.role),
                               ShortText(*element.identifier));
        }
    }
    return "";
}

void Difference::TellControls(Output& output) const {
    const EditorProfile& row = EditorProfiles()[row_];
    if (fitted_.found == 0) {
        return;
    }
    if (!output.IsJson()) {
        output.Result({}, fmt::format("The controls of the row {}:", row.release));
    }
    for (std::size_t control = 0; control < kProfileControlCount; ++control) {
        const FittedControl& fitted = fitted_.controls[control];
        const bool isThere = fitted.fit == ProfileFit::found;
        const ElementMatch* match = isThere ? MatchOf(fitted.place) : nullptr;
        Json object{{"row", row.release},
                    {"control", EditorProfiles()[0].controls[control].name},
                    {"old", row.controls[control].identifier},
                    {"new", nullptr}};
        std::string now = isThere ? "gone" + Instead(fitted.place) : "not in OLD";
        if (match != nullptr) {
            const std::string& identifier = *to_.elements[match->to].identifier;
            object["new"] = identifier;
            object["confidence"] = Rounded(match->confidence);
            now = fmt::format("{} ({} %)", Printable(identifier), Percent(match->confidence));
        }
        object["inOld"] = isThere;
        output.Result(
            object, fmt::format("  {:<22} {:<8} -> {}", EditorProfiles()[0].controls[control].name,
                                row.controls[control].identifier, now));
    }
}

std::string Described(const ElementList& list, std::size_t place) {
    const ListedElement& element = list[place];
    const std::string& text = element.title && !element.title->empty()
                                  ? *element.title
                                  : element.description.value_or("");
    return fmt::format("{} {}{}", AddressOf(list, place),
                       element.role.empty() ? "(no role)" : ShortText(element.role),
                       text.empty() ? "" : fmt::format(" \"{}\"", ShortText(text)));
}

std::string Difference::ControlsText(std::size_t from) const {
    std::vector<std::string_view> names;
    for (auto [each, end] = controls_.equal_range(from); each != end; ++each) {
        names.push_back(EditorProfiles()[0].controls[each->second].name);
    }
    return names.empty() ? "" : fmt::format(" [{}]", fmt::join(names, ", "));
}

void Difference::AddControls(std::size_t from, Json& object) const {
    for (auto [each, end] = controls_.equal_range(from); each != end; ++each) {
        object["controls"].push_back(EditorProfiles()[0].controls[each->second].name);
    }
}

std::string Difference::Line(const ElementMatch& match) const {
    const auto& likeness = match.likeness;
    std::vector<std::string> by = {fmt::format("role {}", Percent(likeness.role))};
    if (likeness.text) {
        by.push_back(fmt::format("text {}", Percent(*likeness.text)));
    }
    if (likeness.place) {
        by.push_back(fmt::format("place {}", Percent(*likeness.place)));
    }
    by.push_back(fmt::format("path {}", Percent(likeness.path)));
    return fmt::format("  {:<8} -> {:<8} {:>3} %  {} -> {}; {}{}",
                       ShortText(*from_.elements[match.from].identifier),
                       ShortText(*to_.elements[match.to].identifier), Percent(match.confidence),
                       Described(from_.elements, match.from), AddressOf(to_.elements, match.to),
                       fmt::join(by, ", "), ControlsText(match.from));
}

Json Difference::Object(const ElementMatch& match) const {
    const ListedElement& from = from_.elements[match.from];
    const ListedElement& to = to_.elements[match.to];
    const auto& likeness = match.likeness;
    Json object{{"old", *from.identifier},
                {"new", *to.identifier},
                {"confidence", Rounded(match.confidence)},
                {"oldPath", AddressOf(from_.elements, match.from)},
                {"newPath", AddressOf(to_.elements, match.to)},
                {"oldRole", from.role},
                {"newRole", to.role}};
    if (from.title) {
        object["title"] = *from.title;
    }
    Json& alike = object["likeness"] = Json{{"role", Rounded(likeness.role)}};
    if (likeness.text) {
        alike["text"] = Rounded(*likeness.text);
    }
    if (likeness.place) {
        alike["place"] = Rounded(*likeness.place);
    }
    alike["path"] = Rounded(likeness.path);
    AddControls(match.from, object);
    return object;
}

Json Difference::OneSided(const char* side, const ElementList& list, std::size_t place) const {
    const bool isOld = std::string_view(side) == "old";
    Json object{{"old", nullptr}, {"new", nullptr}};
    object[side] = *list[place].identifier;
    object[isOld ? "oldPath" : "newPath"] = AddressOf(list, place);
    object[isOld ? "oldRole" : "newRole"] = list[place].role;
    if (isOld) {
        AddControls(place, object);
    }
    return object;
}

void Difference::TellElements(bool all, Output& output) const {
    const auto heading = [&output](const std::string& text) {
        if (!output.IsJson()) {
            output.Result({}, text);
        }
    };
    std::size_t changed = 0;
    for (const ElementMatch& match : matching_.matches) {
        changed += match.likeness.sameIdentifier ? 0 : 1;
    }
    heading(fmt::format("{} identifiers changed, {} stayed, {} are gone, {} are new:", changed,
                        matching_.matches.size() - changed, matching_.gone.size(),
                        matching_.added.size()));
    for (const ElementMatch& match : matching_.matches) {
        if (all || !match.likeness.sameIdentifier) {
            output.Result(Object(match), Line(match));
        }
    }
    for (const std::size_t place : matching_.gone) {
        output.Result(
            OneSided("old", from_.elements, place),
            fmt::format("  {:<8} gone  {}{}", ShortText(*from_.elements[place].identifier),
                        Described(from_.elements, place), ControlsText(place)));
    }
    for (const std::size_t place : matching_.added) {
        output.Result(OneSided("new", to_.elements, place),
                      fmt::format("  {:<8} new   {}", ShortText(*to_.elements[place].identifier),
                                  Described(to_.elements, place)));
    }
}

ExitCode ActDiff(const Arguments& arguments, Context& context) {
    Output& output = context.output;
    const Listing from = ReadSceneFile(arguments.Text("OLD"), arguments);
    const Listing to = ReadSceneFile(arguments.Text("NEW"), arguments);
    output.Progress("comparing elements");
    const Difference difference(from, to,
                                MatchElements(from.elements, to.elements, [&](std::size_t count) {
                                    output.Progress(fmt::format("{} elements compared", count));
                                }));
    difference.TellControls(output);
    difference.TellElements(arguments.Has("--all"), output);
    return ExitCode::ok;
}

}  // namespace

std::vector<Verb> DiffVerbs() {
    return {
        {.name = "diff",
         .requests = "",
         .summary = "find the elements of one dump again in another, and their new identifiers",
         .detail =
             "For a new release of the editor, whose identifiers have moved. Elements with an "
             "identifier are matched by role, text, place within the window and path; the "
             "confidence says how alike they are, and is lower when another element is nearly as "
             "alike. Prints first what became of the six controls of the row of the driver's "
             "table that OLD fits best, then the identifiers that changed, are gone, and are new.",
         .example = "krt9ctl diff scenes/editor-10.3.4.json scenes/editor-10.4.json",
         .parameters = WithApplication(
             {{.name = "OLD", .kind = ValueKind::file, .help = "dump or scene of the old release"},
              {.name = "NEW", .kind = ValueKind::file, .help = "dump or scene of the new release"},
              {.name = "--all",
               .kind = ValueKind::flag,
               .help = "also the identifiers that stayed"}}),
         .work = ActDiff},
    };
}

}  // namespace krt9ctl
