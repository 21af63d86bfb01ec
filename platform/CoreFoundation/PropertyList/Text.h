// From a text document's bytes to UTF-16.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace property_list {

// The encoding is that of the byte order mark; without one, that which an XML declaration names;
// else UTF-8. Nothing when the bytes are not valid in it, or when the declared encoding is unknown.
std::optional<std::u16string> DecodeText(std::span<const std::uint8_t> bytes);

}  // namespace property_list
