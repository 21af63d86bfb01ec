// The vectors were measured on Linux. Some results are known to be of that system, and a test there
// holds them, or what the layer does in their place; on macOS such a case is information.
#pragma once

#include <optional>
#include <string>

// Why the case need not give the measured result on this system; nothing when it must.
// `deviates`: the layer of Linux is to differ from the measured result.
std::optional<std::string> WhyUnsettledHere(const std::string& family, bool deviates);

// Prints a case that is information: what differs from the measured result ("" for nothing), and
// why it may.
void ReportUnsettled(const std::string& id, const std::string& difference,
                     const std::string& reason);
