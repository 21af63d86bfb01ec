// What the help and the manual page say of a program, as data.
#pragma once

#include <string_view>
#include <vector>

#include "tools/terminal/Parameter.h"

namespace terminal {

// A name and what it means: an exit status, a file, a variable of the environment.
struct Term {
    std::string_view name;
    std::string_view meaning;
};

struct Program {
    std::string_view name;
    int section = 1;           // of the manual
    std::string_view summary;  // half a sentence, small letter, no full stop
    std::string_view description;
    std::vector<Parameter> parameters;
    std::vector<Term> statuses;
    std::vector<Term> environment;
    std::vector<Term> files;
    std::vector<Term> signals;
    std::string_view example;
    std::vector<std::string_view> seeAlso;
};

}  // namespace terminal
