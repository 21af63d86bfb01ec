// The driver, except that its calls to applications wait half a second instead of six. So tests
// can meet hung applications many times in a short time. Linked with the driver's own
// main, of which this is set before the first line.

#include "accessibility/calls/ApplicationCall.h"

namespace {

[[maybe_unused]] const CallTiming ofTheDriver = SetCallTiming({.timeout = 0.5F});

}  // namespace
