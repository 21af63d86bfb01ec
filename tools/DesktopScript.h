// Commands to the simulated desktop, and its replies.
#pragma once

#include <optional>

#include "tools/Output.h"

namespace krt9ctl {

// The reply: an object with "ok", or with "error" and one line of text. Nothing when no desktop
// runs or it does not reply within `timeout` seconds.
std::optional<Json> AskDesktop(const Json& command, double timeout);

}  // namespace krt9ctl
