// The version in a bundle's information dictionary.
#pragma once

#include <optional>
#include <string>

namespace krt9ctl {

// Nothing when there is no bundle at the path, or none with a version.
std::optional<std::string> VersionOfBundle(const std::string& path);

}  // namespace krt9ctl
