// Sends a plan, prints what came back, and finds the exit code.
#pragma once

#include <functional>

#include "tools/Delivery.h"
#include "tools/ExitCode.h"
#include "tools/Output.h"
#include "tools/Request.h"

namespace krt9ctl {

using Send = std::function<Answer(const Request&)>;

// Stops at the first failure or interruption, but still sends what lets keys and buttons go, unless
// nothing can have arrived. The exit code is that of the first failure.
ExitCode Converse(const Plan& plan, const Send& send, const std::function<bool()>& interrupted,
                  Output& output);

}  // namespace krt9ctl
