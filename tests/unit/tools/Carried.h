// Verbs that act on the session's desktop, carried out in the test's own process.
#pragma once

#include <sstream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tests/support/Files.h"
#include "tests/support/Paths.h"
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

// What a verb prints for programs: one object a line.
inline std::vector<Json> ObjectsOf(const std::string& output) {
    std::vector<Json> objects;
    for (const std::string& line : test_support::LinesOf(output)) {
        objects.push_back(Json::parse(line));
    }
    return objects;
}

// The scene of a release of the editor.
inline std::string SceneFileOf(const std::string& version) {
    return std::string(KRT9_SCENES) + "/editor-" + version + ".json";
}

}  // namespace krt9ctl
