// Turns the words of a command line into one verb and its arguments, and writes the help.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "tools/Arguments.h"
#include "tools/Grammar.h"

namespace krt9ctl {

inline constexpr double kUsualTimeout = 1.0;  // seconds

// A command line that names a verb.
struct Invocation {
    const Verb* verb = nullptr;
    GivenTexts given;
    bool json = false;
    double timeout = kUsualTimeout;  // seconds
    bool hasTimeout = false;         // the line has one of its own
};

// A command line that asks for the help or the version.
struct Information {
    std::string text;  // lines of any length
    bool isVersion = false;
};

// The words without the program's name. The invocation points into the grammar. Throws UsageError.
std::variant<Invocation, Information> ParseCommandLine(const Grammar& grammar,
                                                       std::vector<std::string> words);

// Whether the words ask for JSON, also when they are otherwise wrong.
bool AsksForJson(const std::vector<std::string>& words);

}  // namespace krt9ctl
