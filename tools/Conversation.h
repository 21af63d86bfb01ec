// Sends a plan, prints the replies, and determines the exit code.
#pragma once

#include <functional>

#include "tools/Delivery.h"
#include "tools/ExitCode.h"
#include "tools/Output.h"
#include "tools/Request.h"

namespace krt9ctl {

using Send = std::function<Answer(const Request&)>;

// The exit code for a signal that has arrived; ok while there is none.
using Stopped = std::function<ExitCode()>;

// Stops at the first failure, signal, or output that cannot be written, but still sends what
// releases keys and buttons, unless nothing can have arrived: the button goes up at the pointer,
// not where the gesture would have ended, which could drop what is dragged there. The exit code is
// that of the first of these.
ExitCode Converse(const Plan& plan, const Send& send, const Stopped& stopped, Output& output);

}  // namespace krt9ctl
