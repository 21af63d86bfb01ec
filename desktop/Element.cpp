#include "desktop/Element.h"

#include <algorithm>
#include <utility>

namespace desktop {

namespace {

void NumberChildren(const Element& parent) {
    // Positions are a cache: a tree that is only read may still fill it.
    std::uint32_t position = 0;
    std::uint32_t row = 0;
    for (Element* child : parent.children) {
        child->position = position++;
        child->rowPosition = row;
        row += child->Role() == "AXRow" ? 1 : 0;
    }
    const_cast<Element&>(parent).childrenNumbered = true;
}

const Element& Numbered(const Element& element) {
    if (!element.parent->childrenNumbered) {
        NumberChildren(*element.parent);
    }
    return element;
}

}  // namespace

const Answer* Element::Stored(std::string_view name) const {
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [&](const Attribute& each) { return *each.name == name; });
    return found == attributes.end() ? nullptr : &found->answer;
}

Answer* Element::Stored(std::string_view name) {
    return const_cast<Answer*>(std::as_const(*this).Stored(name));
}

std::string_view Element::Text(std::string_view name) const {
    const Answer* answer = Stored(name);
    if (answer == nullptr || !answer->HasValue()) {
        return {};
    }
    const auto* text = std::get_if<std::string>(&answer->value.content);
    return text == nullptr ? std::string_view() : std::string_view(*text);
}

ElementDetails& Element::Details() {
    if (details == nullptr) {
        details = std::make_unique<ElementDetails>();
    }
    return *details;
}

Element& ElementArena::Create(std::int32_t pid) {
    const ElementId id = UnusedId();
    Element& element = elements_[id];
    element.id = id;
    element.pid = pid;
    return element;
}

Element* ElementArena::Find(ElementId id) {
    const auto found = elements_.find(id);
    return found == elements_.end() ? nullptr : &found->second;
}

void ElementArena::Set(Element& element, std::string_view name, Answer answer) {
    if (Answer* stored = element.Stored(name)) {
        *stored = std::move(answer);
    } else {
        element.attributes.push_back({&*names_.emplace(name).first, std::move(answer)});
    }
    if (name == "AXRole" && element.parent != nullptr) {
        element.parent->childrenNumbered = false;
    }
}

void ElementArena::Remove(Element& element, std::string_view name) {
    std::erase_if(element.attributes, [&](const Attribute& each) { return *each.name == name; });
    if (name == "AXRole" && element.parent != nullptr) {
        element.parent->childrenNumbered = false;
    }
}

void ElementArena::Insert(Element& parent, std::size_t position, Element& child) {
    auto& siblings = parent.children;
    position = std::min(position, siblings.size());
    siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(position), &child);
    child.parent = &parent;
    parent.hasChildren = true;
    parent.childrenNumbered = false;
}

void Detach(Element& element) {
    Element& parent = *element.parent;
    const std::size_t position = PositionInParent(element);
    if (element.selected) {
        std::erase(*parent.details->selectedRows, &element);
        element.selected = false;
    }
    parent.children.erase(parent.children.begin() + static_cast<std::ptrdiff_t>(position));
    parent.childrenNumbered = false;
    element.parent = nullptr;
}

void ElementArena::Destroy(Element& element) {
    if (element.parent != nullptr) {
        Detach(element);
    }
    DestroyDetached({&element});
}

void ElementArena::DestroyChildren(Element& element) {
    DestroyDetached(std::exchange(element.children, {}));
    element.childrenNumbered = true;
}

void ElementArena::DestroyDetached(std::vector<Element*> doomed) {
    while (!doomed.empty()) {
        Element* element = doomed.back();
        doomed.pop_back();
        doomed.insert(doomed.end(), element->children.begin(), element->children.end());
        elements_.erase(element->id);
    }
}

std::size_t PositionInParent(const Element& element) {
    return Numbered(element).position;
}

std::size_t RowPositionInParent(const Element& element) {
    return Numbered(element).rowPosition;
}

const Element* NextInPreOrder(const Element& element, const Element& root) {
    if (!element.children.empty()) {
        return element.children.front();
    }
    const Element* current = &element;
    while (current != &root) {
        const std::size_t next = PositionInParent(*current) + 1;
        if (next < current->parent->children.size()) {
            return current->parent->children[next];
        }
        current = current->parent;
    }
    return nullptr;
}

const Element* TopLevel(const Element& element) {
    if (element.parent == nullptr) {
        return nullptr;
    }
    const Element* current = &element;
    while (current->parent->parent != nullptr) {
        current = current->parent;
    }
    return current;
}

}  // namespace desktop
