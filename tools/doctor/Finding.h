// What doctor finds out about one possible cause.
#pragma once

#include <string>
#include <string_view>

#include "tools/ExitCode.h"
#include "tools/Output.h"

namespace krt9ctl::doctor {

enum class State { ok, fails, unknown };

struct Finding {
    std::string_view check;  // in JSON, and before the sentence
    State state = State::ok;
    std::string evidence;           // one sentence without full stop
    ExitCode code = ExitCode::ok;   // of doctor, when this is the first that fails
    std::string command = {};       // to type; only of one that fails
    Json details = Json::object();  // more, in JSON
};

inline Finding Fine(std::string_view check, std::string evidence, Json details = Json::object()) {
    return {check, State::ok, std::move(evidence), ExitCode::ok, {}, std::move(details)};
}

inline Finding Failing(std::string_view check, ExitCode code, std::string evidence,
                       std::string command, Json details = Json::object()) {
    return {check, State::fails, std::move(evidence), code, std::move(command), std::move(details)};
}

// `reason` says why it cannot be known.
inline Finding Unknown(std::string_view check, std::string reason, Json details = Json::object()) {
    return {check, State::unknown, std::move(reason), ExitCode::ok, {}, std::move(details)};
}

// {"check", "state": "ok", "fails" or "cannot-tell", "evidence", and what it has of "command",
// "error" and details}
Json FindingObject(const Finding& finding);

std::string FindingLine(const Finding& finding);

}  // namespace krt9ctl::doctor
