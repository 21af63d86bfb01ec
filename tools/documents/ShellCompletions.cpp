// The completions in the three shells' notations. Each has a function that finds the verb among the
// words typed so far, and a table of what can follow it.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "tools/documents/Completion.h"

namespace documents {

namespace {

// A name that a function can have: letters, digits and underscores.
std::string FunctionName(const std::string& program) {
    std::string name = "_" + program;
    for (char& character : name) {
        character = character == '-' ? '_' : character;
    }
    return name;
}

// In single quotes, within which all but a single quote is literal. Bash and zsh.
std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char character : text) {
        quoted += character == '\'' ? "'\\''" : std::string(1, character);
    }
    return quoted + "'";
}

// Fish has escapes in single quotes.
std::string QuotedForFish(const std::string& text) {
    std::string quoted = "'";
    for (const char character : text) {
        quoted += character == '\'' || character == '\\' ? "\\" : "";
        quoted += character;
    }
    return quoted + "'";
}

// zsh's _describe separates word and meaning by a colon.
std::string Described(const Candidate& candidate) {
    std::string word;
    for (const char character : candidate.word) {
        word += character == ':' ? "\\:" : std::string(1, character);
    }
    return Quoted(word + ":" + candidate.meaning);
}

std::string JoinedWords(const Place& place) {
    std::string joined;
    for (const auto* list : {&place.words, &place.options}) {
        for (const Candidate& candidate : *list) {
            joined += (joined.empty() ? "" : " ") + candidate.word;
        }
    }
    return joined;
}

// A pattern of a case statement that nothing matches when the list is empty.
std::string Pattern(const std::vector<std::string>& names) {
    return names.empty() ? "''" : fmt::format("{}", fmt::join(names, "|"));
}

constexpr char kHead[] =
    "Completions of {}. Written by krt9-documents from the program's own table.";

}  // namespace

std::string WriteBashCompletion(const Completion& completion) {
    const std::string function = FunctionName(completion.program);
    std::string text = fmt::format("# {}\n", fmt::format(fmt::runtime(kHead), completion.program));
    text += fmt::format(
        "{}() {{\n"
        "    local current=${{COMP_WORDS[COMP_CWORD]}} verb='' words='' index\n"
        "    COMPREPLY=()\n"
        "    for ((index = 1; index < COMP_CWORD; ++index)); do\n"
        "        case ${{COMP_WORDS[index - 1]}} in {}) continue ;; esac\n"
        "        case ${{COMP_WORDS[index]}} in -*) continue ;; esac\n"
        "        case $verb in ''|{}) verb=\"${{verb:+$verb }}${{COMP_WORDS[index]}}\" ;; esac\n"
        "    done\n"
        "    case ${{COMP_WORDS[COMP_CWORD - 1]}} in {}) return ;; esac\n"
        "    case $verb in\n",
        function, Pattern(completion.valueOptions), Pattern(completion.groups),
        Pattern(completion.valueOptions));
    for (const Place& place : completion.places) {
        // A positional argument that is not a verb may be anything: the options stay the same.
        const std::string pattern =
            place.verb.empty() && completion.places.size() == 1 ? "*" : Quoted(place.verb);
        text += fmt::format("        {}) words={} ;;\n", pattern, Quoted(JoinedWords(place)));
    }
    text +=
        "    esac\n"
        "    while IFS='' read -r index; do COMPREPLY+=(\"$index\"); done < \\\n"
        "        <(compgen -W \"$words\" -- \"$current\")\n"
        "}\n";
    const bool takesFile = completion.places.front().takesFile;
    text += fmt::format("complete {}-F {} {}\n", takesFile ? "-o default " : "", function,
                        completion.program);
    return text;
}

std::string WriteZshCompletion(const Completion& completion) {
    const std::string function = FunctionName(completion.program);
    std::string text = fmt::format("#compdef {}\n# {}\n", completion.program,
                                   fmt::format(fmt::runtime(kHead), completion.program));
    text += fmt::format(
        "{}() {{\n"
        "    local verb='' index\n"
        "    local -a candidates options\n"
        "    for ((index = 2; index < CURRENT; ++index)); do\n"
        "        case $words[index-1] in ({}) continue ;; esac\n"
        "        case $words[index] in (-*) continue ;; esac\n"
        "        case $verb in (''|{}) verb=\"${{verb:+$verb }}$words[index]\" ;; esac\n"
        "    done\n"
        "    case $words[CURRENT-1] in\n"
        "        ({}) _files; return ;;\n"
        "        ({}) return ;;\n"
        "    esac\n"
        "    case $verb in\n",
        function, Pattern(completion.valueOptions), Pattern(completion.groups),
        Pattern(completion.fileOptions), Pattern(completion.valueOptions));
    for (const Place& place : completion.places) {
        text += fmt::format("        ({})\n", place.verb.empty() && completion.places.size() == 1
                                                  ? "*"
                                                  : Quoted(place.verb));
        for (const auto& [name, list] :
             {std::pair("candidates", &place.words), std::pair("options", &place.options)}) {
            text += fmt::format("            {}=(\n", name);
            for (const Candidate& candidate : *list) {
                text += fmt::format("                {}\n", Described(candidate));
            }
            text += "            )\n";
        }
        text += place.takesFile ? "            _files\n            ;;\n" : "            ;;\n";
    }
    text += fmt::format(
        "    esac\n"
        "    (( $#candidates )) && _describe -t commands command candidates\n"
        "    _describe -o -t options option options\n"
        "}}\n"
        "compdef {} {}\n",
        function, completion.program);
    return text;
}

std::string WriteFishCompletion(const Completion& completion) {
    const std::string function = "_" + FunctionName(completion.program) + "_at";
    std::string text = fmt::format("# {}\n", fmt::format(fmt::runtime(kHead), completion.program));
    text += fmt::format(
        "function {}\n"
        "    set -l verb\n"
        "    set -l before\n"
        "    for word in (commandline -opc)[2..-1]\n"
        "        if not contains -- \"$before\" {}; and not string match -q -- '-*' $word\n"
        "            if test -z \"$verb\"; or contains -- \"$verb\" {}\n"
        "                set verb (string trim -- \"$verb $word\")\n"
        "            end\n"
        "        end\n"
        "        set before $word\n"
        "    end\n"
        "    test {}\n"
        "end\n",
        function, fmt::join(completion.valueOptions, " "), fmt::join(completion.groups, " "),
        completion.places.size() == 1 ? "-n x" : "\"$verb\" = \"$argv[1]\"");
    text += completion.places.front().takesFile
                ? ""
                : fmt::format("complete -c {} -f\n", completion.program);
    const auto isIn = [](const std::vector<std::string>& names, const std::string& name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    for (const Place& place : completion.places) {
        const std::string condition = QuotedForFish(function + " \"" + place.verb + "\"");
        for (const Candidate& word : place.words) {
            text += fmt::format("complete -c {} -n {} -a {} -d {}\n", completion.program, condition,
                                QuotedForFish(word.word), QuotedForFish(word.meaning));
        }
        for (const Candidate& option : place.options) {
            const char* value = isIn(completion.fileOptions, option.word)    ? " -r -F"
                                : isIn(completion.valueOptions, option.word) ? " -x"
                                                                             : "";
            text +=
                fmt::format("complete -c {} -n {} -l {}{} -d {}\n", completion.program, condition,
                            option.word.substr(2), value, QuotedForFish(option.meaning));
        }
    }
    return text;
}

}  // namespace documents
