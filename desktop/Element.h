// The accessibility trees of all applications: elements in one flat arena. Nothing here recurses,
// so trees of any depth can be built, walked and destroyed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "desktop/Answer.h"
#include "desktop/Misbehaviour.h"

namespace desktop {

using ElementId = std::uint64_t;  // 0 is an application's root

struct Attribute {
    const std::string* name;  // owned by the arena
    Answer answer;
};

struct Element;

// What only few elements have.
struct ElementDetails {
    std::optional<std::vector<std::string>> actions;   // in place of those of its role
    std::optional<std::vector<std::string>> settable;  // in place of those of its role
    std::optional<Value> unconfirmedFrom;  // AXValue before the setting that awaits AXConfirm
    std::uint64_t presses = 0;
    std::optional<std::vector<Element*>> selectedRows;  // children, in their order
    Misbehaviour misbehaviour;
};

struct Element {
    ElementId id = 0;
    std::int32_t pid = 0;
    bool hasChildren = false;       // also without any child: the attribute is there
    bool childrenNumbered = true;   // the two positions below are up to date in all children
    bool selected = false;          // among its parent's selected rows
    std::uint32_t position = 0;     // among its parent's children
    std::uint32_t rowPosition = 0;  // the same, counting rows only
    Element* parent = nullptr;      // null: an application's root, or not in a tree
    std::vector<Element*> children;
    std::vector<Attribute> attributes;
    std::unique_ptr<ElementDetails> details;

    const Answer* Stored(std::string_view name) const;
    Answer* Stored(std::string_view name);
    // The text of a stored attribute; empty when it is missing or not a text.
    std::string_view Text(std::string_view name) const;
    std::string_view Role() const { return Text("AXRole"); }
    ElementDetails& Details();
    const Misbehaviour* OwnMisbehaviour() const {
        return details == nullptr ? nullptr : &details->misbehaviour;
    }
    desktop_link::ElementReference Reference() const { return {pid, id}; }
};

class ElementArena {
  public:
    // A new element in no tree.
    Element& Create(std::int32_t pid);

    // Null when it was destroyed or never existed.
    Element* Find(ElementId id);

    // An id that no element has or will have.
    ElementId UnusedId() { return ++lastId_; }

    void Set(Element& element, std::string_view name, Answer answer);
    void Remove(Element& element, std::string_view name);

    // Puts the element into a tree; a position beyond the end is the end.
    static void Insert(Element& parent, std::size_t position, Element& child);

    // Takes the element out of its tree and destroys it with all below it.
    void Destroy(Element& element);
    void DestroyChildren(Element& element);

    std::size_t Count() const { return elements_.size(); }

  private:
    void DestroyDetached(std::vector<Element*> doomed);

    std::unordered_map<ElementId, Element> elements_;
    std::unordered_set<std::string> names_;
    ElementId lastId_ = 0;
};

// Positions among the parent's children, and among its rows. The element must be in a tree.
std::size_t PositionInParent(const Element& element);
std::size_t RowPositionInParent(const Element& element);

// Takes the element out of its parent's children without destroying it.
void Detach(Element& element);

// The element after this one in pre-order below `root` (itself not included); null at the end.
const Element* NextInPreOrder(const Element& element, const Element& root);
inline Element* NextInPreOrder(Element& element, const Element& root) {
    return const_cast<Element*>(NextInPreOrder(static_cast<const Element&>(element), root));
}

// The child of the root that contains the element; null for the root.
const Element* TopLevel(const Element& element);

}  // namespace desktop
