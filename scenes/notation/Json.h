// The JSON of scenes, whose members keep the order in which they were written.
#pragma once

#include <concepts>
#include <nlohmann/json.hpp>
#include <string>

namespace scene_notation {

using Json = nlohmann::ordered_json;

// One line, whatever the JSON holds: bytes that are not UTF-8 become U+FFFD.
std::string OneLine(const Json& json);

// The same of JSON that sorts its members. A template, so that whatever else makes JSON is taken
// for the other one.
template <std::same_as<nlohmann::json> Sorted>
std::string OneLine(const Sorted& json) {
    return json.dump(-1, ' ', false, Sorted::error_handler_t::replace);
}

}  // namespace scene_notation
