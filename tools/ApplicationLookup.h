// Running applications by their bundle identifiers. The two systems have no common call for this:
// one source for each.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace krt9ctl {

// Nothing when no such application runs.
std::optional<pid_t> FindApplication(const std::string& bundleIdentifier);

}  // namespace krt9ctl
