#include "scenes/notation/SceneText.h"

#include <algorithm>
#include <utility>

namespace scene_notation {

void Members::Add(const std::string& key, const Json& value) {
    text_ += text_.empty() ? "" : ", ";
    text_ += OneLine(key) + ": " + OneLine(value);
}

void ElementLines::Add(const Members& members, bool hasChildren) {
    // Deeper than this, indentation would outweigh the elements themselves.
    constexpr std::size_t kDeepestIndentation = 40;
    text_ += hasAny_.back() ? ",\n" : "\n";
    hasAny_.back() = true;
    text_.append(6 + std::min(2 * hasAny_.size(), kDeepestIndentation), ' ');
    text_ += "{ " + members.Text();
    if (hasChildren) {
        text_ += members.Text().empty() ? "\"AXChildren\": [" : ", \"AXChildren\": [";
        hasAny_.push_back(false);
    } else {
        text_ += " }";
    }
}

void ElementLines::Close() {
    hasAny_.pop_back();
    text_ += "] }";
}

void SceneText::Add(const std::string& key, const Json& value) {
    text_ += text_.empty() ? "{ " : ",\n  ";
    text_ += OneLine(key) + ": " + OneLine(value);
}

void SceneText::AddApplication(const Members& facts, const ElementLines& windows) {
    BeginApplication(facts);
    text_ += "[";
    text_ += windows.Text();
    text_ += "] }";
}

void SceneText::AddApplication(const Members& facts, const Json& windows) {
    BeginApplication(facts);
    text_ += OneLine(windows) + " }";
}

void SceneText::BeginApplication(const Members& facts) {
    text_ += hasApplications_ ? ",\n" : ",\n  \"applications\": [\n";
    text_ += "    { " + facts.Text() + ",\n      \"windows\": ";
    hasApplications_ = true;
}

std::string SceneText::Finish() {
    text_ += hasApplications_ ? "\n  ]\n}\n" : ",\n  \"applications\": [\n  ]\n}\n";
    return std::move(text_);
}

std::string WithoutLineBreaks(const std::string& text) {
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\n') {
            line += text[i];
            continue;
        }
        i = std::min(text.find_first_not_of(' ', i + 1), text.size()) - 1;
    }
    return line;
}

}  // namespace scene_notation
