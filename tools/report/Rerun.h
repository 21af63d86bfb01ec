// Performs the steps of a recording against the driver of a private session.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/Output.h"
#include "tools/report/Material.h"
#include "tools/report/PrivateSession.h"

namespace krt9ctl {

struct Difference {
    std::size_t line = 0;  // of the recording; 0 for what is not in it
    std::string what;      // the step, or "message" and its code
    std::string recorded;
    std::string now;
};

struct Comparison {
    std::size_t requests = 0;  // that were sent
    std::size_t messages = 0;  // that were recorded
    std::vector<Difference> differences;
    ExitCode stopped = ExitCode::ok;  // by a signal
};

// `timeout`, in seconds, is that of each request. After a request that is not delivered, the rest
// is not performed. Time passes only as far as messages that are recorded have to be waited for,
// and a second at most for each other step that lets some pass.
//
// Replies are compared where one is recorded. Of messages, each code's are compared in their order;
// of status queries only that there are some, since the driver repeats them until it is answered in
// time. Other outcomes are not compared.
//
// Throws UnfitMaterial for a step that cannot be performed, std::runtime_error when the driver does
// not start.
Comparison Rerun(const Material& material, PrivateSession& session, double timeout, Output& output);

}  // namespace krt9ctl
