// The verb that lists the names of keys.
#include <fmt/format.h>

#include "tools/Arguments.h"
#include "tools/Grammar.h"
#include "tools/Keys.h"
#include "tools/Run.h"

namespace krt9ctl {

namespace {

ExitCode ActKeys(const Arguments&, Context& context) {
    Json object{{"keys", Json::array()}, {"modifiers", Json::array()}};
    std::string lines;
    for (const ModifierRow& modifier : Modifiers()) {
        object["modifiers"].push_back({{"name", modifier.name}, {"otherName", modifier.otherName}});
        lines += fmt::format("{}+  {}+\n", modifier.name, modifier.otherName);
    }
    for (const KeyRow& key : Keys()) {
        object["keys"].push_back({{"name", key.name}, {"code", key.code}});
        lines += fmt::format("{:<15}  0x{:02x}{}\n", key.name, key.code,
                             key.code == 0 ? "  (the driver never posts key code 0)" : "");
    }
    lines.pop_back();
    context.output.Result(object, lines);
    return ExitCode::ok;
}

}  // namespace

std::vector<Verb> KeyVerbs() {
    return {
        {.name = "keys",
         .requests = "",
         .summary = "list the names of keys and modifiers, with their codes",
         .detail = "The names are those of the keys' places on an ANSI keyboard: a layout may put "
                   "other characters there.",
         .example = "krt9ctl keys",
         .work = ActKeys},
    };
}

}  // namespace krt9ctl
