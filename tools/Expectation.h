// What must become so for a verb to have succeeded: a number that the driver reads of a control.
#pragma once

#include <cstdint>
#include <optional>

#include "tools/Conversation.h"

namespace krt9ctl {

struct Expectation {
    Request question;          // of one control, as `number` says; its reply is one integer
    std::int64_t element = 0;  // the control's number
    std::int64_t number = 0;   // the reply that is expected
    double within = 0;         // seconds
    // What was so before shows nothing: the verb that is to bring it about is then not carried out.
    bool mustBeNews = false;
};

// Asks before the verb is carried out. The exit code says whether it may be: `unmet`, reported,
// when it must be news and is not; that of another problem, which is reported as well.
ExitCode CheckThatItIsNews(const Expectation& expectation, const Send& send, Output& output);

// Asks again and again until the reply is the number, the time has passed or a signal has arrived.
// Asks at least once. A driver that does not find the control, or does not reply in time, is asked
// again; any other problem ends the waiting.
ExitCode AwaitNumber(const Expectation& expectation, const Send& send, const Stopped& stopped,
                     Output& output);

}  // namespace krt9ctl
