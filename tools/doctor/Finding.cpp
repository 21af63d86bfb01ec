#include "tools/doctor/Finding.h"

#include <fmt/format.h>

namespace krt9ctl::doctor {

namespace {

std::string_view StateName(State state) {
    switch (state) {
        case State::ok:
            return "ok";
        case State::fails:
            return "fails";
        default:
            return "cannot-tell";
    }
}

}  // namespace

Json FindingObject(const Finding& finding) {
    Json object{{"check", finding.check},
                {"state", StateName(finding.state)},
                {"evidence", finding.evidence}};
    if (finding.state == State::fails) {
        object["error"] = ExitCodeName(finding.code);
        object["command"] = finding.command;
    }
    object.update(finding.details);
    return object;
}

std::string FindingLine(const Finding& finding) {
    const std::string line =
        fmt::format("{:<11}  {}: {}", StateName(finding.state), finding.check, finding.evidence);
    return finding.command.empty() ? line : fmt::format("{}. Type: {}", line, finding.command);
}

}  // namespace krt9ctl::doctor
