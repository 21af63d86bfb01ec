// How long the driver takes to reply: the times of a plan instead of its replies.
#pragma once

#include <chrono>
#include <vector>

#include "tools/Conversation.h"

namespace krt9ctl {

using Milliseconds = std::chrono::duration<double, std::milli>;

struct TimeSummary {
    Milliseconds shortest, median;
    Milliseconds ninetyNinth;  // 99 of 100 are not longer
};

// `times` holds at least one. With an even number of times, the median lies between the middle two.
TimeSummary Summarize(std::vector<Milliseconds> times);

// Sends the plan and prints the summary of its times. Stops at the first failure or signal: after a
// signal it prints the summary of what was measured until then.
ExitCode MeasureReplies(const Plan& plan, const Send& send, const Stopped& stopped, Output& output);

}  // namespace krt9ctl
