// A simulated desktop in the test's own process, and verbs that act on it.
#pragma once

#include <memory>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "desktop/Desktop.h"
#include "desktop/InProcessTransport.h"
#include "platform/DesktopLink/Transport.h"
#include "tools/Arguments.h"
#include "tools/CommandLine.h"
#include "tools/Run.h"

namespace krt9ctl {

class DesktopSession {
  public:
    explicit DesktopSession(const std::string& scene) : desktop(scene) {
        desktop_link::SetTransport(std::make_unique<desktop::InProcessTransport>(desktop));
    }
    ~DesktopSession() { desktop_link::SetTransport(nullptr); }
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;

    desktop::Desktop desktop;
};

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
