#include "desktop/AttributeReading.h"

#include <algorithm>
#include <array>
#include <optional>

#include "desktop/Selection.h"
#include "scenes/notation/Names.h"

namespace desktop {

using desktop_link::Array;
using desktop_link::Point;
using desktop_link::Rect;
using desktop_link::Size;

namespace {

struct Subject {
    const Model& model;
    const Application& application;
    const Element& element;

    bool IsApplication() const { return element.parent == nullptr; }
    bool IsWindow() const { return element.parent == &application.root; }
    bool IsRow() const { return element.Role() == "AXRow"; }
};

using Result = std::optional<Answer>;  // none: not an attribute of this element

Answer References(const std::vector<Element*>& elements, std::string_view role = {}) {
    Array array;
    array.reserve(elements.size());
    for (const Element* element : elements) {
        if (role.empty() || element->Role() == role) {
            array.push_back({element->Reference()});
        }
    }
    return Answer::Of({std::move(array)});
}

Answer ReferenceOrNoValue(const Element* element) {
    return element == nullptr ? Answer::Error(kNoValue) : Answer::Of({element->Reference()});
}

Result Role(const Subject& subject) {
    return subject.IsApplication() ? Result(Answer::Of({std::string("AXApplication")})) : Result();
}

Result Title(const Subject& subject) {
    return subject.IsApplication() ? Result(Answer::Of({subject.application.name})) : Result();
}

Result Frontmost(const Subject& subject) {
    return subject.IsApplication()
               ? Result(Answer::Of({subject.model.front == &subject.application}))
               : Result();
}

Result Windows(const Subject& subject) {
    return subject.IsApplication() ? Result(References(subject.element.children)) : Result();
}

Result MainWindow(const Subject& subject) {
    return subject.IsApplication() ? Result(ReferenceOrNoValue(subject.application.mainWindow))
                                   : Result();
}

Result Main(const Subject& subject) {
    return subject.IsWindow()
               ? Result(Answer::Of({subject.application.mainWindow == &subject.element}))
               : Result();
}

Result Parent(const Subject& subject) {
    return subject.IsApplication() ? Result() : ReferenceOrNoValue(subject.element.parent);
}

Result Window(const Subject& subject) {
    return subject.IsApplication() || subject.IsWindow()
               ? Result()
               : ReferenceOrNoValue(TopLevel(subject.element));
}

Result Frame(const Subject& subject) {
    const Answer* position = subject.element.Stored("AXPosition");
    const Answer* size = subject.element.Stored("AXSize");
    const auto* point = position ? std::get_if<Point>(&position->value.content) : nullptr;
    const auto* extent = size ? std::get_if<Size>(&size->value.content) : nullptr;
    return point && extent ? Result(Answer::Of({Rect{*point, *extent}})) : Result();
}

Result Index(const Subject& subject) {
    return subject.IsRow() ? Result(Answer::Of(
                                 {static_cast<std::int64_t>(RowPositionInParent(subject.element))}))
                           : Result();
}

Result Selected(const Subject& subject) {
    return subject.IsRow() ? Result(Answer::Of({subject.element.selected})) : Result();
}

bool HasRows(const Element& element) {
    return element.Role() == "AXTable" || element.Role() == "AXOutline";
}

Result SelectedRowsOf(const Subject& subject) {
    if (const auto* rows = SelectedRows(subject.element)) {
        return References(*rows);
    }
    return HasRows(subject.element) ? Result(References({})) : Result();
}

Result Rows(const Subject& subject) {
    return HasRows(subject.element) ? Result(References(subject.element.children, "AXRow"))
                                    : Result();
}

Result Children(const Subject& subject) {
    return subject.element.hasChildren ? Result(References(subject.element.children)) : Result();
}

struct ComputedAttribute {
    std::string_view name;
    Result (*read)(const Subject&);
};

constexpr std::array kComputedAttributes = {
    ComputedAttribute{"AXRole", Role},
    ComputedAttribute{"AXTitle", Title},
    ComputedAttribute{"AXFrontmost", Frontmost},
    ComputedAttribute{"AXMain", Main},
    ComputedAttribute{"AXMainWindow", MainWindow},
    ComputedAttribute{"AXFocusedWindow", MainWindow},
    ComputedAttribute{"AXParent", Parent},
    ComputedAttribute{"AXWindow", Window},
    ComputedAttribute{"AXTopLevelUIElement", Window},
    ComputedAttribute{"AXFrame", Frame},
    ComputedAttribute{"AXIndex", Index},
    ComputedAttribute{"AXSelected", Selected},
    ComputedAttribute{"AXSelectedRows", SelectedRowsOf},
    ComputedAttribute{"AXRows", Rows},
    ComputedAttribute{"AXVisibleRows", Rows},
    ComputedAttribute{"AXChildren", Children},
    ComputedAttribute{"AXWindows", Windows},
};

}  // namespace

Answer ReadAttribute(const Model& model, const Application& application, const Element& element,
                     std::string_view name) {
    if (const Answer* stored = element.Stored(name)) {
        return *stored;
    }
    for (const auto& [computed, read] : kComputedAttributes) {
        if (computed == name) {
            return read({model, application, element})
                .value_or(Answer::Error(kAttributeUnsupported));
        }
    }
    return Answer::Error(kAttributeUnsupported);
}

std::vector<std::string> AttributeNames(const Model& model, const Application& application,
                                        const Element& element) {
    std::vector<std::string> names;
    for (const Attribute& attribute : element.attributes) {
        names.push_back(*attribute.name);
    }
    for (const auto& [name, read] : kComputedAttributes) {
        if (element.Stored(name) == nullptr && read({model, application, element})) {
            names.emplace_back(name);
        }
    }
    std::sort(names.begin(), names.end(), scene_notation::AttributeComesBefore);
    return names;
}

}  // namespace desktop
