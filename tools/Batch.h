// Command lines carried out one after the other, over one connection.
#pragma once

#include <functional>

#include "tools/Conversation.h"
#include "tools/Run.h"

namespace krt9ctl {

// Sends a request by `send`, and may take note of it.
using Carrier = std::function<Answer(const Request& request, const Send& send)>;

// Carries out the lines of the standard input until its end, a signal, output that cannot be
// written or, on demand, the first line that fails. Prints one line for each. The exit code is that
// of the first failure, or of the signal, which the caller must have made a flag (Interruption.h).
ExitCode RunBatch(Context& context, bool stopsAtFailure, const Carrier& carrier);

}  // namespace krt9ctl
