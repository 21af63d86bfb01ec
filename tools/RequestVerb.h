// A verb that sends requests, from its plan to its exit code.
#pragma once

#include "tools/Arguments.h"
#include "tools/Conversation.h"
#include "tools/Grammar.h"

namespace krt9ctl {

// A plan and what must become so after it.
struct Errand {
    Plan plan;
    std::optional<Expectation> expectation;
    bool isMeasured = false;  // its times are printed in place of its replies

    // Whether it is one request and nothing else, so that a signal may end the process at once.
    bool IsSingleRequest() const { return plan.size() == 1 && !expectation; }
};

// The verb must be one that plans requests. Throws UsageError.
Errand ErrandOf(const Verb& verb, const Arguments& arguments);

ExitCode RunErrand(const Errand& errand, const Send& send, const Stopped& stopped, Output& output);

}  // namespace krt9ctl
