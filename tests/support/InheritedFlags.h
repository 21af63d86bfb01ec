// The log of posted events under the variant in which the keys of a private source do not change
// the modifiers of other events.
#pragma once

#include <regex>
#include <string>

#include "platform/Variants/Variants.h"

namespace test_support {

// Takes the log as it is without the variant. Its keys are the driver's, whose source is private,
// so that under the variant an event without flags of its own has none.
inline std::string WithInheritedFlags(const std::string& log) {
    if (!platform_testing::IsOn(platform_testing::Variant::privateModifiers)) {
        return log;
    }
    static const std::regex inherited(R"("flags":[0-9]+,"flagsSet":false)");
    return std::regex_replace(log, inherited, R"("flags":0,"flagsSet":false)");
}

}  // namespace test_support
