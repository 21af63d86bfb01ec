#include "tools/CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>

#include "tools/Text.h"
#include "tools/Version.h"
#include "tools/terminal/Help.h"

namespace krt9ctl {

namespace {

// The heading above the verbs in a help.
constexpr char kVerbs[] = "Verbs";

constexpr char kCommonOptions[] =
    "Every verb takes --json and --timeout SECONDS. Exit codes: krt9ctl --help.";

// One parameter as the library holds it.
struct BoundOption {
    const Parameter* parameter;
    const CLI::Option* option;
};

struct BoundVerb {
    const Verb* verb;
    const CLI::App* command;
    std::vector<BoundOption> options;
};

// The library's own conversions give some texts a special meaning ("{}"); the words are taken
// from the option as they were typed instead.
CLI::callback_t KeepAsTyped() {
    return [](const CLI::results_t&) { return true; };
}

// The library takes a word in square brackets for a list; a mark before it keeps it a word.
constexpr char kWordMark = '\x1F';

std::string Marked(const std::string& word) {
    const bool needsMark = word.starts_with('[') || word.starts_with(kWordMark);
    return needsMark ? kWordMark + word : word;
}

std::vector<std::string> Unmarked(std::vector<std::string> words) {
    for (std::string& word : words) {
        word.erase(0, word.starts_with(kWordMark) ? 1 : 0);
    }
    return words;
}

CLI::Option* AddParameter(CLI::App& command, const Parameter& parameter) {
    const std::string name(parameter.name);
    const std::string help(parameter.help);
    if (parameter.kind == ValueKind::flag) {
        return command.add_flag(name, help);
    }
    CLI::Option* option = command.add_option(name, KeepAsTyped(), help);
    const bool byPlace = !parameter.name.starts_with("--");
    option->type_name(std::string(parameter.placeholder));
    option->required(byPlace && parameter.presence != Presence::optional);
    const bool isRepeated = parameter.presence == Presence::repeated;
    option->expected(1, isRepeated ? CLI::detail::expected_max_vector_size : 1);
    option->allow_extra_args(isRepeated);
    return option;
}

std::string VerbFooter(const Verb& verb) {
    std::string footer;
    if (!verb.detail.empty()) {
        footer += fmt::format("{}\n", verb.detail);
    }
    if (!verb.requests.empty()) {
        footer += fmt::format("Request: {}\n", verb.requests);
    }
    return footer + fmt::format("Example: {}\n{}", verb.example, kCommonOptions);
}

class Parser {
  public:
    explicit Parser(const Grammar& grammar);
    std::variant<Invocation, Information> Parse(std::vector<std::string> words);

  private:
    CLI::App* ParentOf(const Verb& verb);
    void AddVerb(const Verb& verb);
    const BoundVerb* ParsedVerb() const;  // null when none was named
    UsageError Complaint(const CLI::ParseError& error) const;
    UsageError ComplaintAboutVerb() const;
    UsageError ComplaintAboutWord(const Verb& verb, const std::string& word) const;
    std::string GroupTyped() const;
    Invocation Chosen() const;

    const Grammar& grammar_;
    CLI::App app_{"Talks to the KRT9 background driver.", "krt9ctl"};
    std::map<std::string, CLI::App*> groups_;
    std::vector<BoundVerb> verbs_;
    std::map<std::string_view, const CLI::Option*> common_;
};

Parser::Parser(const Grammar& grammar) : grammar_(grammar) {
    app_.get_formatter()->label("SUBCOMMAND", "VERB");
    app_.get_formatter()->label("Positionals", "Arguments");
    app_.fallthrough();
    app_.require_subcommand(1);
    app_.set_help_flag("-h,--help", "print this help and exit");
    app_.set_version_flag("--version", fmt::format("krt9ctl {}", kVersion),
                          "print the version and exit");
    for (const Parameter& option : CommonOptions()) {
        common_[option.name] = AddParameter(app_, option);
    }
    app_.footer(ExitCodeHelp());
    for (const Verb& verb : grammar.verbs) {
        AddVerb(verb);
    }
}

// The command to which the verb's last word belongs, created with the first verb of its group.
CLI::App* Parser::ParentOf(const Verb& verb) {
    const std::size_t blank = verb.name.find(' ');
    if (blank == std::string_view::npos) {
        return &app_;
    }
    const std::string name(verb.name.substr(0, blank));
    if (const auto known = groups_.find(name); known != groups_.end()) {
        return known->second;
    }
    const auto group = std::find_if(grammar_.groups.begin(), grammar_.groups.end(),
                                    [&name](const VerbGroup& each) { return each.name == name; });
    CLI::App* command = app_.add_subcommand(name, std::string(group->summary));
    command->group(kVerbs);
    command->require_subcommand(1);
    command->footer(kCommonOptions);
    groups_[name] = command;
    return command;
}

void Parser::AddVerb(const Verb& verb) {
    const std::string lastWord(verb.name.substr(verb.name.find(' ') + 1));
    CLI::App* command = ParentOf(verb)->add_subcommand(lastWord, std::string(verb.summary));
    command->group(kVerbs);
    command->require_subcommand(0);
    command->footer(VerbFooter(verb));
    BoundVerb bound{&verb, command, {}};
    for (const Parameter& parameter : verb.parameters) {
        bound.options.push_back({&parameter, AddParameter(*command, parameter)});
    }
    verbs_.push_back(std::move(bound));
}

const BoundVerb* Parser::ParsedVerb() const {
    const auto bound = std::find_if(verbs_.begin(), verbs_.end(),
                                    [](const BoundVerb& each) { return each.command->parsed(); });
    return bound == verbs_.end() ? nullptr : &*bound;
}

// The group whose name was typed; empty for none.
std::string Parser::GroupTyped() const {
    for (const auto& [name, command] : groups_) {
        if (command->parsed()) {
            return name;
        }
    }
    return "";
}

std::string DidYouMean(const std::string& word, const std::vector<std::string>& names) {
    const std::string nearest = terminal::Nearest(word, names);
    return nearest.empty() ? "" : fmt::format("; did you mean '{}'?", nearest);
}

UsageError Parser::ComplaintAboutVerb() const {
    const std::string group = GroupTyped();
    const std::string prefix = group.empty() ? "" : group + " ";
    const auto words = Unmarked(app_.remaining(true));
    if (words.empty()) {
        return UsageError("a verb is missing", group);
    }
    if (words.front().starts_with("-")) {
        return UsageError(fmt::format("there is no option '{}'", Printable(words.front())), group);
    }
    std::vector<std::string> names;
    for (const Verb& verb : grammar_.verbs) {
        if (verb.name.starts_with(prefix)) {
            names.emplace_back(group.empty() ? verb.name.substr(0, verb.name.find(' '))
                                             : verb.name);
        }
    }
    const std::string typed = prefix + words.front();
    return UsageError(
        fmt::format("there is no verb '{}'{}", Printable(typed), DidYouMean(typed, names)), group);
}

UsageError Parser::ComplaintAboutWord(const Verb& verb, const std::string& word) const {
    if (!word.starts_with("-")) {
        return UsageError(fmt::format("unexpected argument '{}'", Printable(word)), verb.name);
    }
    std::vector<std::string> names = {"--help"};
    for (const Parameter& parameter : verb.parameters) {
        names.emplace_back(parameter.name);
    }
    for (const Parameter& option : CommonOptions()) {
        names.emplace_back(option.name);
    }
    if (std::find(names.begin(), names.end(), word) != names.end()) {
        return UsageError(fmt::format("{} stands after --, where there are no options", word),
                          verb.name);
    }
    return UsageError(
        fmt::format("there is no option '{}'{}", Printable(word), DidYouMean(word, names)),
        verb.name);
}

UsageError Parser::Complaint(const CLI::ParseError& error) const {
    const BoundVerb* bound = ParsedVerb();
    if (bound == nullptr) {
        return ComplaintAboutVerb();
    }
    const auto surplus = Unmarked(app_.remaining(true));
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr && !surplus.empty()) {
        return ComplaintAboutWord(*bound->verb, surplus.front());
    }
    return UsageError(Printable(error.what()), bound->verb->name);
}

Invocation Parser::Chosen() const {
    const BoundVerb* bound = ParsedVerb();
    if (bound == nullptr) {
        throw ComplaintAboutVerb();
    }
    Invocation invocation;
    invocation.verb = bound->verb;
    invocation.json = common_.at("--json")->count() > 0;
    if (const CLI::Option* timeout = common_.at("--timeout"); timeout->count() > 0) {
        invocation.timeout = ParseSeconds("--timeout", Unmarked(timeout->results()).back());
        invocation.hasTimeout = true;
    }
    for (const auto& [parameter, option] : bound->options) {
        if (option->count() > 0) {
            invocation.given[parameter->name] = Unmarked(option->results());
        }
    }
    return invocation;
}

std::variant<Invocation, Information> Parser::Parse(std::vector<std::string> words) {
    std::transform(words.begin(), words.end(), words.begin(), Marked);
    std::reverse(words.begin(), words.end());  // as the library wants them
    try {
        app_.parse(std::move(words));
    } catch (const CLI::CallForHelp&) {
        // The help of all verbs is no help with one that was mistyped.
        if (ParsedVerb() == nullptr && !app_.remaining(true).empty()) {
            throw ComplaintAboutVerb();
        }
        return Information{app_.help(), false};
    } catch (const CLI::CallForVersion& version) {
        return Information{fmt::format("{}\n", version.what()), true};
    } catch (const CLI::ParseError& error) {
        throw Complaint(error);
    }
    return Chosen();
}

}  // namespace

bool AsksForJson(const std::vector<std::string>& words) {
    const auto end = std::find(words.begin(), words.end(), "--");
    return std::find(words.begin(), end, "--json") != end;
}

std::variant<Invocation, Information> ParseCommandLine(const Grammar& grammar,
                                                       std::vector<std::string> words) {
    return Parser(grammar).Parse(std::move(words));
}

}  // namespace krt9ctl
