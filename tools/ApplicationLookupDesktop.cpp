#include <functional>

#include "tools/ApplicationLookup.h"
#include "tools/DesktopScript.h"

namespace krt9ctl {

namespace {

// The first application of the desktop's state that the condition holds for.
std::optional<ApplicationFacts> Find(const std::function<bool(const Json&)>& isSought) {
    constexpr double kTimeout = 1;  // seconds
    const auto state = AskDesktop({{"command", "state"}}, kTimeout);
    if (!state || !state->contains("applications")) {
        return std::nullopt;
    }
    for (const Json& application : (*state)["applications"]) {
        if (!isSought(application)) {
            continue;
        }
        ApplicationFacts facts;
        facts.pid = application.value("pid", -1);
        const std::string name = application.value("application", "");
        if (!name.starts_with("pid:")) {
            facts.bundleIdentifier = name;
        }
        AddBundleFacts(application.value("bundle", ""), facts);
        return facts;
    }
    return std::nullopt;
}

}  // namespace

std::optional<ApplicationFacts> FindApplication(const std::string& bundleIdentifier) {
    return Find([&bundleIdentifier](const Json& application) {
        return application.value("application", "") == bundleIdentifier;
    });
}

std::optional<ApplicationFacts> FindApplication(pid_t pid) {
    return Find([pid](const Json& application) { return application.value("pid", -1) == pid; });
}

}  // namespace krt9ctl
