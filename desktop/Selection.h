// The selected rows of a table, outline or list.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "desktop/Element.h"

namespace desktop {

// Selects exactly these children, in any order; the table has the attribute from then on.
void SetSelectedRows(Element& table, const std::vector<Element*>& rows);

// The same by indices into the table's children. Throws SceneError, the selection unchanged.
void SelectRows(Element& table, const nlohmann::json& indices, const std::string& place);

// Null when the table has no such attribute.
const std::vector<Element*>* SelectedRows(const Element& table);

}  // namespace desktop
