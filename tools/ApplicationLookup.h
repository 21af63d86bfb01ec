// Running applications by their bundle identifiers and process ids. The two systems have no common
// call for this: one source for each.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "tools/FrontApplication.h"

namespace krt9ctl {

// Nothing when no such application runs.
std::optional<ApplicationFacts> FindApplication(const std::string& bundleIdentifier);
std::optional<ApplicationFacts> FindApplication(pid_t pid);

}  // namespace krt9ctl
