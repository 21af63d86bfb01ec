// The driver, but for its calls to applications: they wait half a second instead of six. So tests
// see hung applications again and again and are done the same day. Linked with the driver's own
// main, of which this is set before the first line.

#include "accessibility/calls/ApplicationCall.h"

namespace {

[[maybe_unused]] const CallTiming ofTheDriver = SetCallTiming({.timeout = 0.5F});

}  // namespace
