// Reading the fields of scenes and commands, with errors that name the place.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "scenes/notation/SceneError.h"

namespace scene_notation {

// "applications[0].name" from "applications[0]" and "name".
std::string Place(const std::string& base, std::string_view key);
std::string Place(const std::string& base, std::size_t index);

// Each throws SceneError when the JSON is of another kind.
const nlohmann::json& ExpectObject(const nlohmann::json& json, const std::string& place);
const nlohmann::json& ExpectArray(const nlohmann::json& json, const std::string& place);
const std::string& ExpectText(const nlohmann::json& json, const std::string& place);
bool ExpectBoolean(const nlohmann::json& json, const std::string& place);
std::int64_t ExpectInteger(const nlohmann::json& json, const std::string& place,
                           std::int64_t smallest = std::numeric_limits<std::int64_t>::min(),
                           std::int64_t largest = std::numeric_limits<std::int64_t>::max());
// A number, or {"double": "nan" | "inf" | "-inf"}.
double ExpectNumber(const nlohmann::json& json, const std::string& place);
// Seconds, not negative, at most a day.
double ExpectDuration(const nlohmann::json& json, const std::string& place);
std::int32_t ExpectErrorCode(const nlohmann::json& json, const std::string& place);

// Throws when the object has a key that is not listed. "comment" is allowed everywhere.
void ExpectOnly(const nlohmann::json& object, const std::string& place,
                std::initializer_list<std::string_view> keys);

// Null when the object has no such key.
const nlohmann::json* Field(const nlohmann::json& object, const char* key);

// The field; throws when there is none.
const nlohmann::json& Required(const nlohmann::json& object, const char* key,
                               const std::string& place);

// Throws when arrays and objects nest deeper than in any value: what is kept as JSON is
// copied and written by functions that recurse.
void ExpectShallow(const nlohmann::json& json, const std::string& place);

// Parses a text; throws SceneError with line and column. `place` may be empty.
nlohmann::json ParseJson(std::string_view text, const std::string& place);

}  // namespace scene_notation
