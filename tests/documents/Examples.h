// Which parts of the documents are run, and what remains that looks like an example and is not.
#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/documents/Markdown.h"

namespace documents {

enum class ExampleKind {
    console,     // a console block
    demo,        // an excerpt of what scripts/demo prints
    scene,       // a block of JSON that krt9-desktop must load
    command,     // a krt9ctl command in a line of text
    sceneValue,  // an object in a line of docs/scenes.md: the value of an attribute
};

struct Example {
    ExampleKind kind = ExampleKind::console;
    std::string document;
    int line = 0;
    std::vector<std::string> options;
    std::vector<std::string> code;
    // Of a command in a line of text.
    int exitCode = 0;
    bool runsUntilInterrupted = false;
    bool hasPrints = false;
    std::string prints;               // the kind of what it prints, see KindsOfOutput
    std::vector<std::string> output;  // an object that it prints, as a pattern
};

// "docs/krt9ctl.md:16"
std::string PlaceOf(const Example& example);
void PrintTo(const Example& example, std::ostream* out);

struct Findings {
    std::vector<Example> examples;
    // One line for each part that looks like an example, is neither run nor marked, with its place.
    std::vector<std::string> unrecognised;
};

Findings FindExamples(const std::vector<Document>& documents);

// What the column "prints" of a table may say, and the form of the output: a regular expression.
const std::map<std::string, std::string>& KindsOfOutput();

}  // namespace documents
