// Reading the files of a bundle, which may come from anyone.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace bundle {

// The bytes of a regular file. Nothing for a file that is not regular, cannot be read, or is longer
// than the limit for property lists; none of them blocks or logs.
std::optional<std::vector<std::uint8_t>> ReadFile(const std::filesystem::path& path);

}  // namespace bundle
