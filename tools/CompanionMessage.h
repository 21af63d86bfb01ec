// Messages that the driver sends to the companion, decoded.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "companion/KRT9Companion.h"
#include "tools/Bytes.h"
#include "tools/Output.h"

namespace krt9ctl {

using krt9::ControllerStatus;

struct CompanionMessage {
    MessageCode code = 0;
    Bytes body;
    std::chrono::system_clock::time_point time;
    std::optional<ControllerStatus> answer;  // to a status query
};

// {"time" (UTC), "code", and one of: "text"; "body" (hex digits) with "malformed" when the code
// has another form; "units" and "channels", the answer to a status query}.
Json MessageObject(const CompanionMessage& message);

// One line with the local time.
std::string DescribeMessage(const CompanionMessage& message);

}  // namespace krt9ctl
