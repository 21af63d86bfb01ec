// Completions of the command line for shells.
#pragma once

#include <string>
#include <vector>

#include "tools/Grammar.h"
#include "tools/terminal/Program.h"

namespace documents {

struct Candidate {
    std::string word;
    std::string meaning;
};

// What can come next after a verb, after the first word of one, or at the start.
struct Place {
    std::string verb;  // the words typed so far, without options
    std::vector<Candidate> words;
    std::vector<Candidate> options;
    bool takesFile = false;
};

struct Completion {
    std::string program;
    std::vector<Place> places;              // the first one is the start
    std::vector<std::string> groups;        // first words that need another one
    std::vector<std::string> valueOptions;  // options that take a value
    std::vector<std::string> fileOptions;   // those whose value is a file
};

Completion CompletionOf(const krt9ctl::Grammar& grammar);
Completion CompletionOf(const terminal::Program& program);

std::string WriteBashCompletion(const Completion& completion);
std::string WriteZshCompletion(const Completion& completion);
std::string WriteFishCompletion(const Completion& completion);

}  // namespace documents
