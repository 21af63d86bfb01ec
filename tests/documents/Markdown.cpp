#include "tests/documents/Markdown.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <string_view>

#include "tests/support/Files.h"
#include "tests/support/Paths.h"

namespace documents {

namespace {

constexpr std::string_view kFence = "```";
constexpr std::string_view kIndent = "    ";

Mark MarkOf(std::string_view line) {
    constexpr std::string_view notRun = "<!-- not run: ";
    const std::size_t start = line.find(notRun);
    return {start != std::string_view::npos && line.find(" -->", start) > start + notRun.size(),
            line.find("<!-- runs until interrupted -->") != std::string_view::npos};
}

// The code between backticks: as many of them at its end as at its beginning.
std::vector<CodeSpan> SpansOf(std::string_view line) {
    std::vector<CodeSpan> spans;
    std::size_t start = 0;
    std::size_t end = 0;
    while ((start = line.find('`', end)) != std::string_view::npos) {
        if (!spans.empty()) {
            spans.back().after = line.substr(end, start - end);
        }
        const std::size_t code = std::min(line.find_first_not_of('`', start), line.size());
        const std::string_view ticks = line.substr(start, code - start);
        const std::size_t close = line.find(ticks, code);
        if (close == std::string_view::npos) {
            return spans;
        }
        spans.push_back({std::string(line.substr(code, close - code)), ""});
        end = close + ticks.size();
    }
    if (!spans.empty()) {
        spans.back().after = line.substr(end);
    }
    return spans;
}

std::string Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos
               ? ""
               : std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

// The cells of a row, without those of a line that is none. A bar in a span separates nothing.
std::vector<std::string> CellsOf(std::string_view line) {
    std::vector<std::string> cells;
    if (!line.starts_with("|")) {
        return cells;
    }
    bool isCode = false;
    std::string cell;
    for (const char character : line.substr(1)) {
        isCode = isCode != (character == '`');
        if (character == '|' && !isCode) {
            cells.push_back(Trimmed(cell));
            cell.clear();
        } else {
            cell += character;
        }
    }
    return cells;
}

class Reader {
  public:
    explicit Reader(const std::string& name) { document_.name = name; }

    Document Read(const std::string& text) {
        for (const std::string& line : test_support::LinesOf(text)) {
            ++number_;
            Take(line);
            above_ = line;
        }
        if (isFenced_) {
            Complain("a code block has no end");
        }
        return std::move(document_);
    }

  private:
    void Take(const std::string& line);
    void TakeText(const std::string& line);
    void Open(std::string_view fence);
    void Complain(std::string_view what) {
        document_.problems.push_back(fmt::format("{}:{}: {}", document_.name, number_, what));
    }

    Document document_;
    int number_ = 0;
    bool isFenced_ = false;
    std::size_t fenceIndent_ = 0;
    bool isIndented_ = false;
    std::string above_;  // the line above
    std::size_t printsColumn_ = std::string::npos;
};

void Reader::Take(const std::string& line) {
    // The block of an item of a list is indented with the item.
    const std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
    if (indent < kIndent.size() && std::string_view(line).substr(indent).starts_with(kFence)) {
        if (!isFenced_) {
            Open(std::string_view(line).substr(indent + kFence.size()));
            fenceIndent_ = indent;
        }
        isFenced_ = !isFenced_;
        isIndented_ = false;
    } else if (isFenced_) {
        document_.blocks.back().code.push_back(line.substr(std::min(indent, fenceIndent_)));
    } else if (line.starts_with(kIndent) && (isIndented_ || above_.empty())) {
        if (!isIndented_) {
            document_.blocks.push_back({number_, false, "", {}, {}, {}});
        }
        isIndented_ = true;
        document_.blocks.back().code.push_back(line.substr(kIndent.size()));
    } else {
        isIndented_ = false;
        TakeText(line);
    }
}

void Reader::Open(std::string_view fence) {
    CodeBlock block{number_ + 1, true, "", {}, {}, MarkOf(above_)};
    std::istringstream words{std::string(fence)};
    words >> block.language;
    for (std::string word; words >> word;) {
        block.options.push_back(word);
    }
    document_.blocks.push_back(std::move(block));
}

void Reader::TakeText(const std::string& line) {
    const std::vector<std::string> cells = CellsOf(line);
    const bool isFirstRow = !cells.empty() && !above_.starts_with("|");
    if (isFirstRow) {
        printsColumn_ = static_cast<std::size_t>(std::find(cells.begin(), cells.end(), "prints") -
                                                 cells.begin());
    }
    TextLine text{number_, SpansOf(line), MarkOf(line), false, ""};
    if (!cells.empty() && printsColumn_ < cells.size()) {
        text.hasPrints = true;
        text.prints = cells[printsColumn_];
    }
    document_.lines.push_back(std::move(text));
}

}  // namespace

Document ReadDocument(const std::string& name, const std::string& text) {
    return Reader(name).Read(text);
}

std::filesystem::path Checkout() {
    return std::filesystem::path(KRT9_SCENES).parent_path();
}

std::vector<Document> AllDocuments() {
    std::vector<std::string> names = {"CONTRIBUTING.md", "README.md"};
    for (const auto& entry : std::filesystem::directory_iterator(Checkout() / "docs")) {
        if (entry.path().extension() == ".md") {
            names.push_back("docs/" + entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    std::vector<Document> documents;
    for (const std::string& name : names) {
        documents.push_back(ReadDocument(name, test_support::ContentOf(Checkout() / name)));
    }
    return documents;
}

}  // namespace documents
