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

// Sends the requests one after the other until the first failure, signal, or output that cannot be
// written, which also decides the exit code. Requests that release keys and buttons are sent even
// after it, unless no earlier request can have reached the driver. The button is then released
// where the pointer is: at the end of the gesture, what is being dragged could be dropped.
ExitCode Converse(const Plan& plan, const Send& send, const Stopped& stopped, Output& output);

// Releases what earlier requests have pressed, with requests as Unreleased makes them: a gesture
// ends where the pointer is, or where its last step went if the driver does not tell. All are sent.
// Returns the exit code of the first failure.
ExitCode Release(const Plan& releases, const Send& send, Output& output);

// ok for a request that the driver replied to; otherwise the exit code of the reported problem.
ExitCode ReportDelivery(const Request& request, const Answer& answer, Output& output);

void ReportSignal(ExitCode signal, Output& output);

}  // namespace krt9ctl
