// The elements of an application as people look at them: in the order of the tree, each with the
// few attributes that tell what it is. They come from the application or from a scene file.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "scenes/notation/Answer.h"
#include "tools/AccessibilityTree.h"
#include "tools/Output.h"

namespace krt9ctl {

struct ListedElement {
    std::string role, subrole;  // empty when there is none
    std::optional<std::string> identifier, title, description;
    std::optional<Json> value;                // as a scene writes it
    std::optional<desktop_link::Rect> frame;  // global display coordinates, finite numbers
    std::size_t parent = 0;                   // index in the list; the application's own for itself
    std::size_t position = 0;                 // among its parent's children
    std::size_t depth = 0;                    // 0 for the application, 1 for a window
    std::size_t head = 0;             // for AddressOf: the element above it, or itself, where the
                                      // beginning of a long address ends
    std::vector<std::size_t> alsoIn;  // other elements that list it among their children
};

// The first one is the application; each other one comes after its parent and before its parent's
// next child.
using ElementList = std::vector<ListedElement>;

ElementList ListElements(const AccessibilityTree& tree);

// Adds the element, whose parent and position are set, after all others.
void AddElement(ElementList& list, ListedElement element);

// The value that a scene's answer holds, if it is of this type.
template <typename Content>
std::optional<Content> ContentOf(const scene_notation::Answer& answer) {
    const auto* content = std::get_if<Content>(&answer.value.content);
    return answer.HasValue() && content != nullptr ? std::optional(*content) : std::nullopt;
}

// The frame that position and size make, or else AXFrame; nothing without numbers that are finite.
std::optional<desktop_link::Rect> MakeFrame(const std::optional<desktop_link::Point>& position,
                                            const std::optional<desktop_link::Size>& size,
                                            const std::optional<desktop_link::Rect>& frame);

// The value that a scene's answer holds; nothing for an error in its place.
std::optional<Json> ListedValue(const scene_notation::Answer& answer);

// The value as a text: a text as it is, anything else as a scene writes it. Nothing for no value.
std::optional<std::string> ValueText(const ListedElement& element);

// The element's address in a scene, "/0/3/1"; the middle of a very long one is left out, and not
// looked at, so that trees of any depth can be listed.
std::string AddressOf(const ElementList& list, std::size_t place);

// The address made of positions, from the window down.
std::string AddressText(const std::vector<std::size_t>& positions);

}  // namespace krt9ctl
