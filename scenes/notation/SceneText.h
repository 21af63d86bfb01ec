// The layout of a scene's text: one element a line, so that two dumps can be compared line by line.
// Nothing recurses over the tree of elements, which may have any depth.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "scenes/notation/Json.h"

namespace scene_notation {

// "key": value, "key": value ... of an object, without its braces.
class Members {
  public:
    void Add(const std::string& key, const Json& value);
    const std::string& Text() const { return text_; }

  private:
    std::string text_;
};

// Elements in the order of the tree, each before its content.
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

// The elements below `root`, each with what is in it. A handle names one element of a tree, of
// which `Tree` knows: Children(handle), a vector of handles; HasChildren(handle);
// MembersOf(handle), without the children.
template <typename Handle, typename Tree>
ElementLines LinesBelow(Handle root, Tree& tree) {
    ElementLines lines;
    std::vector<std::pair<Handle, std::size_t>> open = {{root, 0}};  // with the next child
    while (!open.empty()) {
        auto& [parent, next] = open.back();
        const auto& children = tree.Children(parent);
        if (next < children.size()) {
            const Handle child = children[next++];
            lines.Add(tree.MembersOf(child), tree.HasChildren(child));
            if (tree.HasChildren(child)) {
                open.emplace_back(child, 0);
            }
            continue;
        }
        open.pop_back();
        if (!open.empty()) {
            lines.Close();
        }
    }
    return lines;
}

// A whole scene: the session, each key on a line, then the applications.
class SceneText {
  public:
    // Before the applications.
    void Add(const std::string& key, const Json& value);

    // The windows are elements, or what reading them gives instead.
    void AddApplication(const Members& facts, const ElementLines& windows);
    void AddApplication(const Members& facts, const Json& windows);

    // The text; nothing can be added to it.
    std::string Finish();

  private:
    void BeginApplication(const Members& facts);

    std::string text_;
    bool hasApplications_ = false;
};

// The same text without its line breaks. JSON has none within strings, so that every one of them,
// and the blanks after it, is layout.
std::string WithoutLineBreaks(const std::string& text);

}  // namespace scene_notation
