// Reading the files of a bundle, which may be anybody's.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace bundle {

// The bytes of a regular file. Nothing for what is no regular file, cannot be read, or is longer
// than any property list that somebody wrote; none of them blocks or logs.
std::optional<std::vector<std::uint8_t>> ReadFile(const std::filesystem::path& path);

}  // namespace bundle
