// XML property lists.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace desktop {

// Texts, numbers, booleans, arrays and objects. Throws SceneError for null and for characters that
// XML cannot contain. The JSON must be shallow.
std::string PropertyList(const nlohmann::json& root, const std::string& place);

}  // namespace desktop
