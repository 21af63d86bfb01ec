#include "tools/ElementLine.h"

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>

#include "tools/Text.h"

namespace krt9ctl {

namespace {

constexpr std::size_t kMostCharacters = 40;  // of a text

// Levels that are indented. Deeper ones have their depth in front, so that a line stays a line.
constexpr std::size_t kMostIndented = 32;

class Line {
  public:
    explicit Line(bool inColour) : inColour_(inColour) {}

    void Add(const std::string& word, const fmt::text_style& style = {}) {
        text_ += text_.empty() || text_.back() == ' ' ? "" : " ";
        text_ += inColour_ ? fmt::format(style, "{}", word) : word;
    }
    void AddBlanks(std::size_t count) { text_.append(count, ' '); }
    const std::string& Text() const { return text_; }

  private:
    bool inColour_;
    std::string text_;
};

void AddPlace(const ElementList& list, std::size_t place, const LineStyle& style, Line& line) {
    if (!style.asTree) {
        line.Add(AddressOf(list, place));
        return;
    }
    const std::size_t depth = list[place].depth;
    line.AddBlanks(2 * std::min(depth, kMostIndented));
    if (depth > kMostIndented) {
        line.Add(fmt::format("({})", depth));
    }
}

void AddTexts(const ListedElement& element, Line& line) {
    if (element.title && !element.title->empty()) {
        line.Add(fmt::format("\"{}\"", ShortText(*element.title)));
    }
    if (element.description && !element.description->empty()) {
        line.Add(fmt::format("({})", ShortText(*element.description)));
    }
    if (const auto value = ValueText(element)) {
        line.Add("= " + (value->empty() ? "\"\"" : ShortText(*value)));
    }
}

}  // namespace

std::string ShortText(const std::string& text) {
    std::size_t end = 0;
    std::size_t characters = 0;
    for (; end < text.size(); ++end) {
        const bool begins = (static_cast<unsigned char>(text[end]) & 0xC0) != 0x80;
        characters += begins ? 1 : 0;
        if (characters > kMostCharacters) {
            return Printable(text.substr(0, end)) + "...";
        }
    }
    return Printable(text);
}

std::string ElementLine(const ElementList& list, std::size_t place, const Judgement& judgement,
                        const LineStyle& style) {
    const ListedElement& element = list[place];
    const bool isReached = judgement.reach == Reach::reached;
    const auto mark = fmt::fg(isReached ? fmt::terminal_color::green : fmt::terminal_color::red);
    Line line(style.inColour);
    if (judgement.reach == Reach::nameless) {
        line.AddBlanks(2);
    } else {
        line.Add(isReached ? "+" : "-", mark);
        line.AddBlanks(1);
    }
    AddPlace(list, place, style, line);
    line.Add(element.role.empty() ? "(no role)" : ShortText(element.role));
    if (element.identifier) {
        line.Add(ShortText(*element.identifier), mark);
    }
    AddTexts(element, line);
    if (const std::string reason = ReasonOf(judgement, list); !reason.empty()) {
        line.Add("[" + reason + "]", mark);
    }
    return line.Text();
}

Json ElementObject(const ElementList& list, std::size_t place, const Judgement& judgement) {
    const ListedElement& element = list[place];
    Json object{{"path", AddressOf(list, place)}, {"depth", element.depth}};
    const auto add = [&object](const char* name, const std::optional<std::string>& text) {
        if (text) {
            object[name] = *text;
        }
    };
    object["role"] = element.role.empty() ? Json(nullptr) : Json(element.role);
    if (!element.subrole.empty()) {
        object["subrole"] = element.subrole;
    }
    add("identifier", element.identifier);
    add("title", element.title);
    add("description", element.description);
    if (element.value) {
        object["value"] = *element.value;
    }
    object["reach"] = ReachName(judgement.reach);
    if (judgement.reach == Reach::inside) {
        object["inside"] = AddressOf(list, judgement.cause);
        object["insideRole"] = list[judgement.cause].role;
    }
    if (judgement.reach == Reach::shadowed) {
        object["behind"] = AddressOf(list, judgement.cause);
    }
    return object;
}

}  // namespace krt9ctl
