// Requests of a companion that the input decides: mostly known codes with complete bodies that name
// elements and windows which the scripted desktop may have, but also bodies cut short or made of
// any bytes, and codes of any value.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "fuzz/Choices.h"

namespace fuzz {

struct CompanionRequest {
    SInt32 code = 0;
    std::optional<std::vector<std::uint8_t>> body;  // none: the message has no data at all
};

CompanionRequest NextRequest(Choices& choices);

// A property list with translations of window titles, or any bytes.
std::vector<std::uint8_t> NextPropertyList(Choices& choices);

}  // namespace fuzz
