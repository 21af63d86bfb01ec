// What a command line would send, without sending it.
#pragma once

#include <fmt/format.h>

#include <string>
#include <variant>
#include <vector>

#include "tools/Arguments.h"
#include "tools/CommandLine.h"
#include "tools/RequestVerb.h"

namespace krt9ctl {

inline Errand ErrandFor(std::vector<std::string> words) {
    const auto parsed = ParseCommandLine(TheGrammar(), std::move(words));
    const auto& invocation = std::get<Invocation>(parsed);
    return ErrandOf(*invocation.verb, Arguments(*invocation.verb, invocation.given));
}

inline Plan PlanOf(std::vector<std::string> words) {
    return ErrandFor(std::move(words)).plan;
}

// "CODE hex" for each request.
inline std::vector<std::string> SentBy(std::vector<std::string> words) {
    std::vector<std::string> sent;
    for (const Request& request : PlanOf(std::move(words))) {
        sent.push_back(fmt::format("{} {}", FormatCode(request.code), FormatHex(request.body)));
    }
    return sent;
}

// The sentence of the usage error, or "accepted".
inline std::string ComplaintAbout(std::vector<std::string> words) {
    try {
        PlanOf(std::move(words));
        return "accepted";
    } catch (const UsageError& error) {
        return error.what();
    }
}

}  // namespace krt9ctl
