#include "tests/documents/Examples.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "scenes/notation/Hex.h"
#include "tests/documents/ConsoleBlock.h"

namespace documents {

namespace {

constexpr std::string_view kScenesDocument = "docs/scenes.md";

bool IsCommand(std::string_view code) {
    return code.starts_with("krt9ctl ") || code.starts_with("$ krt9ctl");
}

bool IsObject(std::string_view code) {
    return code.starts_with("{\"") || code.starts_with("{ \"");
}

bool IsBytes(const std::string& code) {
    static const std::regex bytes("[0-9A-Fa-f]{2}( [0-9A-Fa-f]{2})+");
    return std::regex_match(code, bytes);
}

Bytes BytesOf(std::string digits) {
    digits.erase(std::remove(digits.begin(), digits.end(), ' '), digits.end());
    return scene_notation::ParseHex(digits).value();
}

// "(exit code 4)" at the beginning of a text.
int ExitCodeIn(const std::string& text) {
    static const std::regex exitCode("^ \\(exit code ([0-9]+)\\)");
    std::smatch found;
    return std::regex_search(text, found, exitCode) ? std::stoi(found[1]) : 0;
}

class Finder {
  public:
    Findings Find(const std::vector<Document>& documents) {
        for (const Document& document : documents) {
            document_ = &document;
            findings_.unrecognised.insert(findings_.unrecognised.end(), document.problems.begin(),
                                          document.problems.end());
            std::for_each(document.blocks.begin(), document.blocks.end(),
                          [this](const CodeBlock& block) { TakeBlock(block); });
            std::for_each(document.lines.begin(), document.lines.end(),
                          [this](const TextLine& line) { TakeLine(line); });
        }
        for (const auto& [place, bytes] : bytesInText_) {
            if (exchanged_.count(bytes) == 0) {
                findings_.unrecognised.push_back(place);
            }
        }
        return std::move(findings_);
    }

  private:
    void TakeBlock(const CodeBlock& block);
    void TakeConsole(const CodeBlock& block);
    void TakeOtherBlock(const CodeBlock& block);
    void TakeLine(const TextLine& line);
    void TakeCommand(const TextLine& line, const CodeSpan& span);
    void TakeObject(const TextLine& line, const CodeSpan& span);
    Example& Add(ExampleKind kind, int line, std::vector<std::string> code) {
        findings_.examples.push_back(
            {.kind = kind, .document = document_->name, .line = line, .code = std::move(code)});
        return findings_.examples.back();
    }
    std::string Complaint(int line, std::string_view what) const {
        return fmt::format("{}:{}: {}", document_->name, line, what);
    }
    void Complain(int line, std::string_view what) {
        findings_.unrecognised.push_back(Complaint(line, what));
    }

    const Document* document_ = nullptr;
    Findings findings_;
    std::set<Bytes> exchanged_;                               // in console blocks
    std::vector<std::pair<std::string, Bytes>> bytesInText_;  // with the complaint about them
    bool isCommandInLine_ = false;
};

void Finder::TakeBlock(const CodeBlock& block) {
    const bool isDemo = std::count(block.options.begin(), block.options.end(), "demo") > 0;
    if (block.mark.isNotRun) {
        return;
    }
    if (block.language == "console" && isDemo) {
        Add(ExampleKind::demo, block.line, block.code);
    } else if (block.language == "console") {
        TakeConsole(block);
    } else if (block.language == "json") {
        Add(ExampleKind::scene, block.line, block.code).options = block.options;
    } else {
        TakeOtherBlock(block);
    }
}

void Finder::TakeConsole(const CodeBlock& block) {
    Add(ExampleKind::console, block.line, block.code).options = block.options;
    try {
        for (const Step& step : ReadConsole(block.code, block.line)) {
            exchanged_.insert(step.body);
            exchanged_.insert(step.reply.value_or(Bytes()));
        }
    } catch (const std::exception& error) {
        Complain(block.line, error.what());
    }
}

void Finder::TakeOtherBlock(const CodeBlock& block) {
    if (block.isFenced && block.language != "sh" && block.language != "xml") {
        Complain(block.line - 1, "a block of no language that is known");
    }
    int number = block.line;
    for (const std::string& line : block.code) {
        const std::string text = line.substr(std::min(line.find_first_not_of(' '), line.size()));
        if (IsCommand(text) || IsObject(text) || IsBytes(text)) {
            Complain(number, text);
        }
        ++number;
    }
}

void Finder::TakeLine(const TextLine& line) {
    isCommandInLine_ = false;
    if (line.mark.isNotRun) {
        return;
    }
    for (const CodeSpan& span : line.spans) {
        if (IsCommand(span.code)) {
            TakeCommand(line, span);
        } else if (IsObject(span.code)) {
            TakeObject(line, span);
        } else if (IsBytes(span.code)) {
            bytesInText_.emplace_back(Complaint(line.line, span.code), BytesOf(span.code));
        }
    }
}

void Finder::TakeCommand(const TextLine& line, const CodeSpan& span) {
    Example& example = Add(ExampleKind::command, line.line, {span.code});
    example.exitCode = ExitCodeIn(span.after);
    example.runsUntilInterrupted = line.mark.runsUntilInterrupted;
    // A column is about the first command of its row.
    example.hasPrints = line.hasPrints && !isCommandInLine_;
    example.prints = line.prints;
    if (example.hasPrints && KindsOfOutput().count(line.prints) == 0) {
        Complain(line.line, fmt::format("what is '{}' like?", line.prints));
    }
    isCommandInLine_ = true;
}

void Finder::TakeObject(const TextLine& line, const CodeSpan& span) {
    if (isCommandInLine_) {
        findings_.examples.back().output.push_back(span.code);
    } else if (document_->name == kScenesDocument && nlohmann::json::accept(span.code)) {
        Add(ExampleKind::sceneValue, line.line, {span.code});
    } else {
        Complain(line.line, span.code);
    }
}

}  // namespace

std::string PlaceOf(const Example& example) {
    return fmt::format("{}:{}", example.document, example.line);
}

void PrintTo(const Example& example, std::ostream* out) {
    *out << PlaceOf(example);
}

Findings FindExamples(const std::vector<Document>& documents) {
    return Finder().Find(documents);
}

const std::map<std::string, std::string>& KindsOfOutput() {
    static const std::string number = "-?[0-9]+";
    static const std::string point = number + "," + number;
    static const std::string frame = "at " + point + " size " + number + "x" + number;
    static const std::map<std::string, std::string> kinds = {
        {"", ""},
        {"signed number", number},
        {"index", "[0-9]+"},
        {"X,Y", point},
        {"frame", frame},
        {"candidate and frame", "target [0-9]+ " + frame},
        {"shortest time, median, 99th percentile",
         "[0-9]+ replies: min [0-9.]+ ms, median [0-9.]+ ms, p99 [0-9.]+ ms"},
        {"one line for each", ""},  // of the lines of an empty input
        {"reply, as hex digits when the code is unknown", number + "|([0-9a-f]{2})+"},
    };
    return kinds;
}

}  // namespace documents
