#include <algorithm>

#include "desktop/AttributeReading.h"
#include "desktop/Behaviour.h"
#include "desktop/Selection.h"

namespace desktop {

using desktop_link::Array;
using desktop_link::ElementReference;

namespace {

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool HoldsNumber(const Value& value) {
    return std::holds_alternative<bool>(value.content) ||
           std::holds_alternative<std::int64_t>(value.content) ||
           std::holds_alternative<double>(value.content);
}

bool SameKind(const Value& left, const Value& right) {
    return left.content.index() == right.content.index() ||
           (HoldsNumber(left) && HoldsNumber(right));
}

bool IsText(std::string_view role) {
    return IsOneOf(role, {"AXTextField", "AXTextArea", "AXComboBox"});
}

// Nothing unless the value is an array of children of this table.
std::optional<std::vector<Element*>> RowsIn(Model& model, const Element& table,
                                            const Value& value) {
    const auto* array = std::get_if<Array>(&value.content);
    if (array == nullptr) {
        return std::nullopt;
    }
    std::vector<Element*> rows;
    for (const Value& item : *array) {
        const auto* reference = std::get_if<ElementReference>(&item.content);
        Element* row = reference == nullptr ? nullptr : model.Find(*reference);
        if (row == nullptr || row->parent != &table) {
            return std::nullopt;
        }
        rows.push_back(row);
    }
    return rows;
}

void SelectRow(Element& row, bool selected) {
    if (selected) {
        SetSelectedRows(*row.parent, {&row});
    } else if (row.selected) {
        std::vector<Element*> others = *SelectedRows(*row.parent);
        std::erase(others, &row);
        SetSelectedRows(*row.parent, others);
    }
}

}  // namespace

bool IsSettable(const Application& application, const Element& element,
                std::string_view attribute) {
    if (element.details != nullptr && element.details->settable) {
        const auto& names = *element.details->settable;
        return std::find(names.begin(), names.end(), attribute) != names.end();
    }
    const std::string_view role = element.Role();
    if (attribute == "AXValue") {
        return IsText(role) ||
               IsOneOf(role, {"AXCheckBox", "AXRadioButton", "AXSlider", "AXScrollBar",
                              "AXIncrementor", "AXSplitter", "AXDisclosureTriangle"});
    }
    if (element.parent == nullptr) {
        return attribute == "AXFrontmost";
    }
    if (element.parent == &application.root) {
        return IsOneOf(attribute, {"AXMain", "AXPosition", "AXSize", "AXMinimized", "AXFocused"});
    }
    return attribute == "AXFocused" || attribute == "AXSelectedRows" ||
           (attribute == "AXSelected" && role == "AXRow");
}

std::int32_t CheckSetting(Model& model, const Application& application, const Element& element,
                          std::string_view attribute, const Value& value) {
    const Answer present = ReadAttribute(model, application, element, attribute);
    if (present.error == kAttributeUnsupported || !IsSettable(application, element, attribute)) {
        return kAttributeUnsupported;
    }
    if (attribute == "AXSelectedRows" && element.Stored(attribute) == nullptr) {
        return RowsIn(model, element, value) ? kSuccess : kIllegalArgument;
    }
    return !present.HasValue() || SameKind(present.value, value) ? kSuccess : kIllegalArgument;
}

void Set(Model& model, Application& application, Element& element, std::string_view attribute,
         const Value& value) {
    const Answer* stored = element.Stored(attribute);
    if (attribute == "AXMain" && stored == nullptr) {
        if (NumberIn(value) != 0) {
            application.mainWindow = &element;
        }
        return;
    }
    if (attribute == "AXSelected" && stored == nullptr) {
        SelectRow(element, NumberIn(value) != 0);
        return;
    }
    if (attribute == "AXSelectedRows" && stored == nullptr) {
        SetSelectedRows(element, *RowsIn(model, element, value));
        return;
    }
    if (attribute == "AXValue" && element.Role() == "AXRadioButton" && NumberIn(value) != 0) {
        Perform(model, application, element, "AXPress");
        return;
    }
    if (attribute == "AXValue" && IsText(element.Role()) && stored->HasValue() &&
        !element.Details().unconfirmedFrom) {
        element.Details().unconfirmedFrom = stored->value;
    }
    model.arena.Set(element, attribute, Answer::Of(value));
}

}  // namespace desktop
