// References within keyed archives: objects that only property lists have, and that have no public
// accessor.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <optional>

// Its number; nothing for any other object.
std::optional<std::uint32_t> ArchiverUIDValue(CFTypeRef object);
