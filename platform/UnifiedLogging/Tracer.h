// The one who looks at the signposts of this session's processes: it listens under a name of the
// session, and each process that has signposts connects to it.
//
// A process notices the tracer within a quarter of a second, by looking for the file of its socket;
// between two looks, asking costs a look at the clock, without a system call. A tracer that does
// not read loses signposts; one that ends is forgotten. Neither makes the process wait. Any thread.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "platform/UnifiedLogging/TracerName.h"

namespace unified_logging {

bool TracerListens();

// One signpost as a JSON object in one line. What could not be sent is counted, and the tracer told
// of it: {"eventType":"lossEvent","lossCount":N}.
void SendToTracer(std::string_view line);

// The clock by which looks are timed, for tests; null for the usual one. Forgets the tracer.
using Clock = std::chrono::nanoseconds (*)();
void UseClock(Clock clock);

}  // namespace unified_logging
