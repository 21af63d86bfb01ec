// Vectors whose results hold on Linux, where all were measured, and may differ on macOS. On Linux
// they are tested like the others; on macOS a difference is printed and is not a failure.
#pragma once

#include <optional>
#include <string>

// Why the case need not give the measured result on this system; nothing when it must.
// `deviates`: the platform layer differs from the measured result on purpose.
std::optional<std::string> WhyUnsettledHere(const std::string& family, bool deviates);

// Prints how such a case differs from the measured result (empty: it does not), and why it may.
void ReportUnsettled(const std::string& id, const std::string& difference,
                     const std::string& reason);
