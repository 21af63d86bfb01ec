// How an application or an element deviates from correct behaviour. Each rule is for one attribute
// or action, or "*" for any; the name "multiple" in `reads` is the reading of several attributes in
// one call as such.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/Answer.h"

namespace desktop {

struct Rule {
    std::string name;
    std::uint64_t skip = 0;              // occasions that pass before it applies
    std::optional<std::uint64_t> times;  // then applies that often; none: for ever

    friend bool operator==(const Rule&, const Rule&) = default;
};

struct ReadRule : Rule {
    std::optional<Answer> answer;          // none: the true one
    std::vector<nlohmann::json> commands;  // run after the answer is determined, see Script.h

    friend bool operator==(const ReadRule&, const ReadRule&) = default;
};

// For setting an attribute and for performing an action.
struct EffectRule : Rule {
    std::int32_t error = 0;  // the result
    bool works = true;       // whether it takes effect nevertheless
    double delay = 0;        // seconds until the effect

    friend bool operator==(const EffectRule&, const EffectRule&) = default;
};

struct Misbehaviour {
    std::vector<ReadRule> reads;
    std::vector<EffectRule> sets;
    std::vector<EffectRule> actions;

    bool Empty() const { return reads.empty() && sets.empty() && actions.empty(); }
    friend bool operator==(const Misbehaviour&, const Misbehaviour&) = default;
};

// The name of rules for the reading of several attributes in one call.
inline constexpr std::string_view kMultiple = "multiple";

// "*" is for any attribute or action; the reading of several attributes is neither.
inline bool IsFor(const Rule& rule, std::string_view name) {
    return rule.name == name || (rule.name == "*" && name != kMultiple);
}

// The rule that applies to this occasion, which is counted; null when none does.
template <typename RuleType>
RuleType* ApplyRule(std::vector<RuleType>& rules, std::string_view name) {
    for (RuleType& rule : rules) {
        if (!IsFor(rule, name) || rule.times == 0) {
            continue;
        }
        if (rule.skip != 0) {
            --rule.skip;
            continue;
        }
        if (rule.times) {
            --*rule.times;
        }
        return &rule;
    }
    return nullptr;
}

}  // namespace desktop
