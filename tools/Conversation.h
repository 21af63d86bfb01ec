// Sends a plan, prints what came back, and finds the exit code.
#pragma once

#include <functional>

#include "tools/Delivery.h"
#include "tools/ExitCode.h"
#include "tools/Output.h"
#include "tools/Request.h"

namespace krt9ctl {

using Send = std::function<Answer(const Request&)>;

// The exit code of a signal that came; ok while none did.
using Stopped = std::function<ExitCode()>;

// Stops at the first failure, signal, or output that cannot be written, but still sends what lets
// keys and buttons go, unless nothing can have arrived: the button goes up where the pointer is,
// not where the gesture would have ended, which could drop what is dragged there. The exit code is
// that of what came first.
ExitCode Converse(const Plan& plan, const Send& send, const Stopped& stopped, Output& output);

}  // namespace krt9ctl
