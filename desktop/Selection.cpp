#include "desktop/Selection.h"

#include <algorithm>

#include "scenes/notation/Fields.h"

namespace desktop {

using namespace scene_notation;

void SetSelectedRows(Element& table, const std::vector<Element*>& rows) {
    auto& selection = table.Details().selectedRows;
    for (Element* row : selection ? *selection : std::vector<Element*>()) {
        row->selected = false;
    }
    selection.emplace();
    for (Element* row : rows) {
        if (!row->selected) {
            row->selected = true;
            selection->push_back(row);
        }
    }
    std::sort(selection->begin(), selection->end(), [](const Element* left, const Element* right) {
        return PositionInParent(*left) < PositionInParent(*right);
    });
}

void SelectRows(Element& table, const nlohmann::json& indices, const std::string& place) {
    std::vector<Element*> rows;
    for (std::size_t i = 0; i < ExpectArray(indices, place).size(); ++i) {
        const auto index = static_cast<std::size_t>(ExpectInteger(indices[i], Place(place, i), 0));
        if (index >= table.children.size()) {
            throw SceneError(Place(place, i), "there is no child " + std::to_string(index));
        }
        rows.push_back(table.children[index]);
    }
    SetSelectedRows(table, rows);
}

const std::vector<Element*>* SelectedRows(const Element& table) {
    return table.details == nullptr || !table.details->selectedRows ? nullptr
                                                                    : &*table.details->selectedRows;
}

}  // namespace desktop
