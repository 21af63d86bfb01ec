// The verb that prints the grammar, for programs that need to know every verb.
#include "tools/Arguments.h"
#include "tools/CommandLine.h"
#include "tools/Grammar.h"
#include "tools/Run.h"
#include "tools/Version.h"

namespace krt9ctl {

namespace {

std::string_view KindName(ValueKind kind) {
    switch (kind) {
        case ValueKind::flag:
            return "flag";
        case ValueKind::number:
            return "number";
        case ValueKind::seconds:
            return "seconds";
        case ValueKind::coordinates:
            return "coordinates";
        case ValueKind::text:
            return "text";
        case ValueKind::code:
            return "code";
        case ValueKind::hex:
            return "hex";
        case ValueKind::element:
            return "element";
        case ValueKind::key:
            return "key";
        case ValueKind::file:
            return "file";
    }
    return "";
}

std::string_view PresenceName(const Parameter& parameter) {
    if (parameter.name.starts_with("--") || parameter.presence == Presence::optional) {
        return "optional";
    }
    return parameter.presence == Presence::repeated ? "repeated" : "required";
}

Json DescribeParameter(const Parameter& parameter) {
    Json json{{"name", parameter.name},
              {"kind", KindName(parameter.kind)},
              {"presence", PresenceName(parameter)},
              {"help", parameter.help}};
    if (!parameter.placeholder.empty()) {
        json["placeholder"] = parameter.placeholder;
    }
    if (parameter.kind == ValueKind::number || parameter.kind == ValueKind::coordinates) {
        json["smallest"] = parameter.smallest;
        json["largest"] = parameter.largest;
    }
    return json;
}

Json DescribeVerb(const Verb& verb) {
    Json parameters = Json::array();
    for (const Parameter& parameter : verb.parameters) {
        parameters.push_back(DescribeParameter(parameter));
    }
    return {{"name", verb.name},     {"requests", verb.requests}, {"summary", verb.summary},
            {"detail", verb.detail}, {"example", verb.example},   {"parameters", parameters}};
}

ExitCode ActGrammar(const Arguments&, Context& context) {
    Json grammar{{"name", "krt9ctl"}, {"version", kVersion}};
    grammar["options"] = Json::array();
    for (const Parameter& option : CommonOptions()) {
        grammar["options"].push_back(DescribeParameter(option));
    }
    grammar["groups"] = Json::array();
    for (const VerbGroup& group : TheGrammar().groups) {
        grammar["groups"].push_back({{"name", group.name}, {"summary", group.summary}});
    }
    grammar["verbs"] = Json::array();
    for (const Verb& verb : TheGrammar().verbs) {
        grammar["verbs"].push_back(DescribeVerb(verb));
    }
    grammar["exitCodes"] = Json::array();
    for (const ExitCodeRow& row : ExitCodes()) {
        grammar["exitCodes"].push_back(
            {{"code", static_cast<int>(row.code)}, {"name", row.name}, {"meaning", row.meaning}});
    }
    context.output.Document(context.output.IsJson() ? OneLine(grammar) + "\n"
                                                    : grammar.dump(2) + "\n");
    return ExitCode::ok;
}

}  // namespace

std::vector<Verb> GrammarVerbs() {
    return {
        {.name = "grammar",
         .requests = "",
         .summary = "print the grammar as JSON: verbs, parameters, exit codes",
         .detail = "For programs that generate manual pages, completions or forms.",
         .example = "krt9ctl grammar",
         .parameters = {},
         .work = ActGrammar},
    };
}

}  // namespace krt9ctl
