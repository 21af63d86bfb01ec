// Message data as Core Foundation objects, and the console line for a port that cannot be created.
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFString.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace message_port {

// Refers to the bytes without copying them: valid as long as they are. The caller releases.
CFDataRef CreateView(std::span<const std::uint8_t> bytes);

// A copy. The caller releases.
CFDataRef CreateCopy(std::span<const std::uint8_t> bytes);

// The bytes of a data object; none for null.
std::span<const std::uint8_t> BytesOf(CFDataRef data);

// The name under which a port is registered: UTF-8, cut at 128 bytes. Nothing for a name that
// is invalid: empty, with a NUL inside, or not Unicode text.
std::optional<std::string> RegisteredName(CFStringRef name);

void LogProblem(const std::string& name, const std::string& problem);

}  // namespace message_port
