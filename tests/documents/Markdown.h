// A document as far as its examples need it: code blocks, and code spans in lines of text.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace documents {

// What a mark in a comment of HTML, which readers do not see, says: <!-- not run: REASON -->.
struct Mark {
    bool isNotRun = false;
    bool runsUntilInterrupted = false;  // <!-- runs until interrupted -->
};

struct CodeBlock {
    int line = 0;           // of its first line of code
    bool isFenced = false;  // or indented
    std::string language;   // the first word after the fence; empty for an indented block
    std::vector<std::string> options;  // the other words
    std::vector<std::string> code;
    Mark mark;  // on the line above it
};

struct CodeSpan {
    std::string code;
    std::string after;  // the text between this span and the next one
};

struct TextLine {
    int line = 0;
    std::vector<CodeSpan> spans;
    Mark mark;
    // Of a row of a table: the text of the column "prints", when it has one.
    bool hasPrints = false;
    std::string prints;
};

struct Document {
    std::string name;  // as the examples are named: docs/krt9ctl.md
    std::vector<CodeBlock> blocks;
    std::vector<TextLine> lines;
    std::vector<std::string> problems;  // "docs/krt9ctl.md:7: what is wrong"
};

Document ReadDocument(const std::string& name, const std::string& text);

// README.md, CONTRIBUTING.md and all of docs/.
std::vector<Document> AllDocuments();

// The folder of the checkout.
std::filesystem::path Checkout();

}  // namespace documents
