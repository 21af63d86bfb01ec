#include "desktop/MisbehaviourNotation.h"
#include "scenes/notation/Fields.h"
#include "scenes/notation/ValueReading.h"

namespace desktop {

using namespace scene_notation;
using nlohmann::json;

namespace {

void ReadOccasions(const json& source, const std::string& place, Rule& rule) {
    if (const json* after = Field(source, "after")) {
        rule.skip = static_cast<std::uint64_t>(ExpectInteger(*after, Place(place, "after"), 0));
    }
    if (const json* times = Field(source, "times")) {
        rule.times = static_cast<std::uint64_t>(ExpectInteger(*times, Place(place, "times"), 0));
    }
}

ReadRule ReadOneReadRule(const std::string& name, const json& source, const std::string& place,
                         const ElementResolver& resolve) {
    ExpectOnly(source, place, {"error", "answer", "after", "times", "then"});
    ReadRule rule;
    rule.name = name;
    ReadOccasions(source, place, rule);
    if (const json* error = Field(source, "error")) {
        rule.answer = Answer::Error(ExpectErrorCode(*error, Place(place, "error")));
    }
    if (const json* answer = Field(source, "answer")) {
        if (rule.answer) {
            throw SceneError(place, "\"error\" and \"answer\" exclude each other");
        }
        rule.answer = ReadAnswer(*answer, name, Place(place, "answer"), resolve);
    }
    if (const json* commands = Field(source, "then")) {
        ExpectShallow(*commands, Place(place, "then"));
        for (const json& command : ExpectArray(*commands, Place(place, "then"))) {
            rule.commands.push_back(ExpectObject(command, Place(place, "then")));
        }
    }
    if (!rule.answer && rule.commands.empty()) {
        throw SceneError(place, "expected \"error\", \"answer\" or \"then\"");
    }
    return rule;
}

EffectRule ReadOneEffectRule(const std::string& name, const json& source,
                             const std::string& place) {
    ExpectOnly(source, place, {"error", "works", "delay", "after", "times"});
    EffectRule rule;
    rule.name = name;
    ReadOccasions(source, place, rule);
    if (const json* error = Field(source, "error")) {
        rule.error = ExpectErrorCode(*error, Place(place, "error"));
        rule.works = rule.error == 0;
    }
    if (const json* works = Field(source, "works")) {
        rule.works = ExpectBoolean(*works, Place(place, "works"));
    }
    if (const json* delay = Field(source, "delay")) {
        rule.delay = ExpectDuration(*delay, Place(place, "delay"));
    }
    return rule;
}

std::vector<EffectRule> ReadEffectRules(const json& source, const std::string& place) {
    std::vector<EffectRule> rules;
    for (const auto& [name, rule] : ExpectObject(source, place).items()) {
        rules.push_back(ReadOneEffectRule(name, rule, Place(place, name)));
    }
    return rules;
}

}  // namespace

Misbehaviour ReadMisbehaviour(const json& source, const std::string& place,
                              const ElementResolver& resolve) {
    ExpectOnly(source, place, {"read", "set", "action"});
    Misbehaviour misbehaviour;
    if (const json* reads = Field(source, "read")) {
        for (const auto& [name, rule] : ExpectObject(*reads, Place(place, "read")).items()) {
            misbehaviour.reads.push_back(
                ReadOneReadRule(name, rule, Place(Place(place, "read"), name), resolve));
        }
    }
    if (const json* sets = Field(source, "set")) {
        misbehaviour.sets = ReadEffectRules(*sets, Place(place, "set"));
    }
    if (const json* actions = Field(source, "action")) {
        misbehaviour.actions = ReadEffectRules(*actions, Place(place, "action"));
    }
    return misbehaviour;
}

}  // namespace desktop
