// What became of a request on its way to the driver and back.
#pragma once

#include <cstdint>
#include <string_view>

#include "tools/Bytes.h"
#include "tools/ExitCode.h"

namespace krt9ctl {

// Distinct from the results of CFMessagePortSendRequest, none of which is positive.
inline constexpr std::int32_t kPortMissing = 1;

struct DeliveryRow {
    std::int32_t status;
    ExitCode code;
    std::string_view sentence;
};

// The row of kPortMissing or of a result of CFMessagePortSendRequest. Any other number is a
// transport error.
const DeliveryRow& DeliveryOf(std::int32_t status);

struct Answer {
    std::int32_t status = 0;  // as for DeliveryOf
    Bytes reply;              // empty: the driver sent an empty reply
};

}  // namespace krt9ctl
