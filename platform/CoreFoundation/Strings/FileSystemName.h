// Text as file systems of macOS store names.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace core_foundation {

// Canonically decomposed UTF-8; nothing for an unpaired surrogate.
std::optional<std::string> FileSystemName(std::u16string_view text);

}  // namespace core_foundation
