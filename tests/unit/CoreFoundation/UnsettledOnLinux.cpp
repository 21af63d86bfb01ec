#include "tests/unit/CoreFoundation/Unsettled.h"

std::optional<std::string> WhyUnsettledHere(const std::string&, bool) {
    return std::nullopt;
}

void ReportUnsettled(const std::string&, const std::string&, const std::string&) {}
