// Verbs that act on the session's desktop, carried out in the test's own process.
#pragma once

#include <sstream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tools/Arguments.h"
#include "tools/CommandLine.h"
#include "tools/Run.h"

namespace krt9ctl {

struct Outcome {
    ExitCode code = ExitCode::ok;
    std::string out, err;
};

// Carries out a verb that acts on its own. Throws UsageError.
inline Outcome Carried(std::vector<std::string> words, bool json = false) {
    const auto parsed = ParseCommandLine(TheGrammar(), std::move(words));
    const auto& invocation = std::get<Invocation>(parsed);
    std::ostringstream out, err;
    Output output({out, err}, json);
    Context context{output, invocation.timeout};
    const ExitCode code = std::get<Act>(invocation.verb->work)(
        Arguments(*invocation.verb, invocation.given), context);
    return {code, out.str(), err.str()};
}

}  // namespace krt9ctl
