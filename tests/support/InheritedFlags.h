// What a log of posted events says where keys of a private source change nothing for other events.
#pragma once

#include <regex>
#include <string>

#include "platform/Variants/Variants.h"

namespace test_support {

// The log as it is usually written, in which all keys are the driver's, whose source is private:
// under the variant, events without flags of their own bear none.
inline std::string WithInheritedFlags(const std::string& log) {
    if (!platform_testing::IsOn(platform_testing::Variant::privateModifiers)) {
        return log;
    }
    static const std::regex inherited(R"("flags":[0-9]+,"flagsSet":false)");
    return std::regex_replace(log, inherited, R"("flags":0,"flagsSet":false)");
}

}  // namespace test_support
