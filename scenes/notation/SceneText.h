// The layout of a scene's text: one element a line, so that two dumps can be compared line by line.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "scenes/notation/Values.h"

namespace scene_notation {

// One line, whatever the JSON holds: bytes that are not UTF-8 become U+FFFD.
std::string OneLine(const Json& json);

// "key": value, "key": value ... of an object, without its braces.
class Members {
  public:
    void Add(const std::string& key, const Json& value);
    const std::string& Text() const { return text_; }

  private:
    std::string text_;
};

// Elements in the order of the tree, each before its content. Nothing recurses, so that a tree
// may have any depth.
class ElementLines {
  public:
    // The next child of the element that is open, or the next window. It is open itself when it has
    // the list of children.
    void Add(const Members& members, bool hasChildren);
    // After the last child of the element that is open.
    void Close();

    // The text between the brackets of the list of windows.
    const std::string& Text() const { return text_; }

  private:
    std::string text_;
    std::vector<bool> hasAny_ = {false};  // for each list that is open, the windows' first
};

// The same text without its line breaks. JSON has none within strings, so that every one of them,
// and the blanks after it, is layout.
std::string WithoutLineBreaks(const std::string& text);

}  // namespace scene_notation
