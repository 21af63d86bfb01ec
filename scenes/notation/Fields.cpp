#include "scenes/notation/Fields.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "scenes/notation/Json.h"
#include "scenes/notation/Names.h"

namespace scene_notation {

using nlohmann::json;

namespace {

[[noreturn]] void Refuse(const json& json, const std::string& place, const char* expected) {
    throw SceneError(place, std::string("expected ") + expected + ", got " + json.type_name());
}

// Places in very deep trees are cut in the middle, so that the message stays one readable line.
constexpr std::size_t kLongestPlace = 200;

std::string Shortened(std::string place) {
    if (place.size() > kLongestPlace) {
        place.replace(kLongestPlace / 2, place.size() - kLongestPlace, "...");
    }
    return place;
}

}  // namespace

std::string Place(const std::string& base, std::string_view key) {
    return Shortened(base.empty() ? std::string(key) : base + "." + std::string(key));
}

std::string Place(const std::string& base, std::size_t index) {
    return Shortened(base + "[" + std::to_string(index) + "]");
}

const json& ExpectObject(const json& json, const std::string& place) {
    if (!json.is_object()) {
        Refuse(json, place, "an object");
    }
    return json;
}

const json& ExpectArray(const json& json, const std::string& place) {
    if (!json.is_array()) {
        Refuse(json, place, "an array");
    }
    return json;
}

const std::string& ExpectText(const json& json, const std::string& place) {
    if (!json.is_string()) {
        Refuse(json, place, "a text");
    }
    return json.get_ref<const std::string&>();
}

bool ExpectBoolean(const json& json, const std::string& place) {
    if (!json.is_boolean()) {
        Refuse(json, place, "true or false");
    }
    return json.get<bool>();
}

std::int64_t ExpectInteger(const json& json, const std::string& place, std::int64_t smallest,
                           std::int64_t largest) {
    if (!json.is_number_integer()) {
        Refuse(json, place, "a whole number");
    }
    const bool tooLarge =
        json.is_number_unsigned() &&
        json.get<std::uint64_t>() > std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    const auto number = json.get<std::int64_t>();
    if (tooLarge || number < smallest || number > largest) {
        throw SceneError(place, "the number " + json.dump() + " is out of range");
    }
    return number;
}

double ExpectNumber(const json& json, const std::string& place) {
    if (json.is_number()) {
        return json.get<double>();
    }
    const auto* text = json.is_object() && json.size() == 1 ? Field(json, tag::kDouble) : nullptr;
    if (text != nullptr && *text == "nan") {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (text != nullptr && *text == "inf") {
        return std::numeric_limits<double>::infinity();
    }
    if (text != nullptr && *text == "-inf") {
        return -std::numeric_limits<double>::infinity();
    }
    Refuse(json, place, "a number");
}

double ExpectDuration(const json& json, const std::string& place) {
    constexpr double kDay = 86400;
    const double seconds = ExpectNumber(json, place);
    if (!(seconds >= 0 && seconds <= kDay)) {
        throw SceneError(place, "expected seconds between 0 and 86400");
    }
    return seconds;
}

std::int32_t ExpectErrorCode(const json& json, const std::string& place) {
    return static_cast<std::int32_t>(ExpectInteger(json, place,
                                                   std::numeric_limits<std::int32_t>::min(),
                                                   std::numeric_limits<std::int32_t>::max()));
}

void ExpectOnly(const json& object, const std::string& place,
                std::initializer_list<std::string_view> keys) {
    for (const auto& [key, value] : ExpectObject(object, place).items()) {
        if (key != "comment" && std::find(keys.begin(), keys.end(), key) == keys.end()) {
            throw SceneError(place, "unknown key " + OneLine(json(key)));
        }
    }
}

const json* Field(const json& object, const char* key) {
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

const json& Required(const json& object, const char* key, const std::string& place) {
    if (const json* field = Field(object, key)) {
        return *field;
    }
    throw SceneError(place, std::string("\"") + key + "\" is missing");
}

void ExpectShallow(const json& json, const std::string& place) {
    std::vector<std::pair<const nlohmann::json*, std::size_t>> open = {{&json, 0}};
    while (!open.empty()) {
        const auto [current, depth] = open.back();
        open.pop_back();
        if (!current->is_structured()) {
            continue;
        }
        if (depth >= kDeepestJson) {
            throw SceneError(place, "nested too deep");
        }
        for (const auto& item : *current) {
            open.emplace_back(&item, depth + 1);
        }
    }
}

json ParseJson(std::string_view text, const std::string& place) {
    try {
        return json::parse(text);
    } catch (const json::exception& error) {
        constexpr std::size_t kLongestProblem = 200;
        // "[json.exception.parse_error.101] parse error at line 1, column 2: ..." without its tag.
        std::string problem = error.what();
        problem.erase(0, problem.find("] ") + 2);
        if (problem.size() > kLongestProblem) {  // it quotes the text, which may be long
            problem.resize(kLongestProblem);
            problem += "...";
        }
        throw SceneError(place, problem);
    }
}

}  // namespace scene_notation
