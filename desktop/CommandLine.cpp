#include "desktop/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <vector>

#include "tools/terminal/Help.h"

namespace desktop {

namespace {

using terminal::Parameter;
using terminal::ValueKind;

std::string Unknown(const terminal::Program& program, const std::string& word) {
    if (!word.starts_with("-")) {
        return "unexpected argument '" + word + "'";
    }
    std::vector<std::string> names = {"--help", "--version"};
    for (const Parameter& parameter : program.parameters) {
        names.emplace_back(parameter.name);
    }
    const std::string nearest = terminal::Nearest(word, names);
    return "there is no option '" + word + "'" +
           (nearest.empty() ? "" : "; did you mean '" + nearest + "'?");
}

bool IsWithin(const Parameter& parameter, const std::string& text) {
    std::int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, problem] = std::from_chars(text.data(), end, number);
    return problem == std::errc() && stop == end && number >= parameter.smallest &&
           number <= parameter.largest;
}

}  // namespace

CommandLine::Outcome CommandLine::Refuse(std::string problem) {
    std::replace_if(
        problem.begin(), problem.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    text_ = std::move(problem);
    return Outcome::wrong;
}

CommandLine::Outcome CommandLine::CheckNumbers() {
    for (const Parameter& parameter : program_.parameters) {
        const std::string name(parameter.name);
        if (parameter.kind == ValueKind::number && Has(name) && !IsWithin(parameter, Value(name))) {
            return Refuse(name + ": '" + Value(name) + "' is not a whole number from " +
                          std::to_string(parameter.smallest) + " to " +
                          std::to_string(parameter.largest));
        }
    }
    return Outcome::run;
}

CommandLine::Outcome CommandLine::Parse(int argumentCount, char** arguments) {
    CLI::App app(std::string(program_.description), std::string(program_.name));
    app.get_formatter()->label("Positionals", "Arguments");
    app.set_help_flag("-h,--help", "print this help and exit");
    app.set_version_flag("--version", std::string(program_.name) + " " + version_,
                         "print the version and exit");
    std::map<std::string, std::string> texts;
    for (const Parameter& parameter : program_.parameters) {
        const std::string name(parameter.name);
        const std::string help(parameter.help);
        if (parameter.kind == ValueKind::flag) {
            app.add_flag(name, help);
            continue;
        }
        app.add_option(name, texts[name], help)
            ->type_name(std::string(parameter.placeholder))
            ->required(!parameter.name.starts_with("--"));
    }
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::CallForHelp&) {
        text_ = app.help();
        return Outcome::information;
    } catch (const CLI::CallForVersion& version) {
        text_ = std::string(version.what()) + "\n";
        return Outcome::information;
    } catch (const CLI::ParseError& error) {
        const auto surplus = app.remaining();
        return Refuse(surplus.empty() ? error.what() : Unknown(program_, surplus.front()));
    }
    for (const Parameter& parameter : program_.parameters) {
        const std::string name(parameter.name);
        if (app.count(name) > 0) {
            values_[name] = texts[name];
        }
    }
    return CheckNumbers();
}

}  // namespace desktop
