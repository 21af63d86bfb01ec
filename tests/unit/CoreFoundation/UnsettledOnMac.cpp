#include <iostream>
#include <map>

#include "tests/unit/CoreFoundation/Unsettled.h"

namespace {

const std::map<std::string, std::string> kUnsettledFamilies = {
    {"language-choice", "was measured without a list of the user's languages"},
    {"retain", "retain counts depend on tagged pointers and cached objects"},
};

}  // namespace

std::optional<std::string> WhyUnsettledHere(const std::string& family, bool deviates) {
    if (deviates) {
        return "the measured result is known to be Linux's alone";
    }
    const auto found = kUnsettledFamilies.find(family);
    return found != kUnsettledFamilies.end() ? std::optional(found->second) : std::nullopt;
}

void ReportUnsettled(const std::string& id, const std::string& difference,
                     const std::string& reason) {
    std::cout << "[     INFO ] " << id << ": "
              << (difference.empty() ? "as measured" : difference.substr(0, 500)) << " (" << reason
              << ")\n";
}
