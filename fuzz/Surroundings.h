// The private folder of one fuzz process: its session and the user's home.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace fuzz {

// Made at the first call, removed when the process ends normally; KRT9_SESSION_DIR and HOME name
// folders in it from then on.
const std::filesystem::path& PrivateFolder();

// The folder in which translations are looked for.
std::filesystem::path TranslationFolder();

// Makes the folders of its path that are missing.
void WriteFile(const std::filesystem::path& file, std::span<const std::uint8_t> bytes);

}  // namespace fuzz
