// Messages that the driver sends to the companion, decoded.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tools/Bytes.h"
#include "tools/Output.h"

namespace krt9ctl {

// What the companion replies to a status query.
struct ControllerStatus {
    std::uint32_t units = 1;
    std::uint32_t channels = 8;
};

// Seven 32-bit words, most significant byte first: units, channels and five zeros.
Bytes StatusReply(const ControllerStatus& status);

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
