// What became of a request on its way to the driver and back.
#pragma once

#include <cstdint>
#include <string_view>

#include "companion/KRT9Companion.h"
#include "tools/ExitCode.h"

namespace krt9ctl {

using krt9::kPortMissing;

struct DeliveryRow {
    std::int32_t status;
    ExitCode code;
    std::string_view sentence;
};

// The row of kPortMissing or of a result of CFMessagePortSendRequest. Any other number is a
// transport error.
const DeliveryRow& DeliveryOf(std::int32_t status);

// An empty reply is one that the driver sent empty.
using Answer = krt9::Delivery;

}  // namespace krt9ctl
