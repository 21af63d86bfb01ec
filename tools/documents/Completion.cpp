#include "tools/documents/Completion.h"

#include <algorithm>
#include <cctype>

#include "tools/Keys.h"

namespace documents {

namespace {

using terminal::Parameter;
using terminal::ValueKind;

void AddOnce(std::vector<std::string>& names, std::string_view name) {
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        names.emplace_back(name);
    }
}

// Names that have no special meaning in any shell.
bool IsPlain(std::string_view name) {
    return std::all_of(name.begin(), name.end(), [](unsigned char character) {
        return std::isalnum(character) != 0 || character == '-';
    });
}

void AddKeys(Place& place) {
    for (const krt9ctl::KeyRow& key : krt9ctl::Keys()) {
        if (key.code != 0 && key.name != "-" && IsPlain(key.name)) {
            place.words.push_back({std::string(key.name), "key"});
        }
    }
}

void AddParameters(Completion& completion, Place& place, const std::vector<Parameter>& parameters) {
    for (const Parameter& parameter : parameters) {
        if (!parameter.name.starts_with("--")) {
            place.takesFile = place.takesFile || parameter.kind == ValueKind::file;
            if (parameter.kind == ValueKind::key) {
                AddKeys(place);
            }
            continue;
        }
        place.options.push_back({std::string(parameter.name), std::string(parameter.help)});
        if (parameter.kind != ValueKind::flag) {
            AddOnce(completion.valueOptions, parameter.name);
        }
        if (parameter.kind == ValueKind::file) {
            AddOnce(completion.fileOptions, parameter.name);
        }
    }
}

void AddHelp(Place& place) {
    place.options.push_back({"--help", "print the help and exit"});
}

void AddVersion(Place& place) {
    place.options.push_back({"--version", "print the version and exit"});
}

}  // namespace

Completion CompletionOf(const krt9ctl::Grammar& grammar) {
    Completion completion{
        .program = "krt9ctl", .places = {}, .groups = {}, .valueOptions = {}, .fileOptions = {}};
    Place start;
    std::vector<Place> groups;
    for (const krt9ctl::VerbGroup& group : grammar.groups) {
        Place place;
        place.verb = group.name;
        groups.push_back(place);
    }
    std::vector<Place> verbs;
    for (const krt9ctl::Verb& verb : grammar.verbs) {
        const std::size_t blank = verb.name.find(' ');
        const std::string first(verb.name.substr(0, blank));
        const auto group = std::find_if(groups.begin(), groups.end(),
                                        [&](const Place& each) { return each.verb == first; });
        if (group == groups.end()) {
            start.words.push_back({first, std::string(verb.summary)});
        } else {
            group->words.push_back(
                {std::string(verb.name.substr(blank + 1)), std::string(verb.summary)});
        }
        Place place;
        place.verb = verb.name;
        AddParameters(completion, place, verb.parameters);
        verbs.push_back(std::move(place));
    }
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (!groups[i].words.empty()) {
            start.words.push_back({groups[i].verb, std::string(grammar.groups[i].summary)});
            completion.groups.push_back(groups[i].verb);
            verbs.push_back(groups[i]);
        }
    }
    completion.places.push_back(std::move(start));
    completion.places.insert(completion.places.end(), verbs.begin(), verbs.end());
    for (Place& place : completion.places) {
        AddParameters(completion, place, krt9ctl::CommonOptions());
        AddHelp(place);
    }
    AddVersion(completion.places.front());
    return completion;
}

Completion CompletionOf(const terminal::Program& program) {
    Completion completion{.program = std::string(program.name),
                          .places = {},
                          .groups = {},
                          .valueOptions = {},
                          .fileOptions = {}};
    Place start;
    AddParameters(completion, start, program.parameters);
    AddHelp(start);
    AddVersion(start);
    completion.places.push_back(std::move(start));
    return completion;
}

}  // namespace documents
