#include "desktop/MisbehaviourNotation.h"

namespace desktop {

using nlohmann::ordered_json;
using namespace scene_notation;

namespace {

void WriteOccasions(const Rule& rule, ordered_json& json) {
    if (rule.skip != 0) {
        json["after"] = rule.skip;
    }
    if (rule.times) {
        json["times"] = *rule.times;
    }
}

ordered_json WriteReadRule(const ReadRule& rule, const ElementDescriber& describe) {
    auto json = ordered_json::object();
    if (rule.answer) {
        json["answer"] = WriteAnswer(*rule.answer, rule.name, describe);
    }
    WriteOccasions(rule, json);
    if (!rule.commands.empty()) {
        json["then"] = rule.commands;
    }
    return json;
}

ordered_json WriteEffectRules(const std::vector<EffectRule>& rules) {
    auto json = ordered_json::object();
    for (const EffectRule& rule : rules) {
        auto& written = json[rule.name] = ordered_json::object();
        written["error"] = rule.error;
        written["works"] = rule.works;
        if (rule.delay > 0) {
            written["delay"] = rule.delay;
        }
        WriteOccasions(rule, written);
    }
    return json;
}

}  // namespace

ordered_json WriteMisbehaviour(const Misbehaviour& misbehaviour, const ElementDescriber& describe) {
    auto json = ordered_json::object();
    if (!misbehaviour.reads.empty()) {
        auto& reads = json["read"] = ordered_json::object();
        for (const ReadRule& rule : misbehaviour.reads) {
            reads[rule.name] = WriteReadRule(rule, describe);
        }
    }
    if (!misbehaviour.sets.empty()) {
        json["set"] = WriteEffectRules(misbehaviour.sets);
    }
    if (!misbehaviour.actions.empty()) {
        json["action"] = WriteEffectRules(misbehaviour.actions);
    }
    return json;
}

}  // namespace desktop
