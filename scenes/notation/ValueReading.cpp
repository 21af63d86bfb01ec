#include "scenes/notation/ValueReading.h"

#include <optional>
#include <utility>
#include <vector>

#include "scenes/notation/Fields.h"
#include "scenes/notation/Hex.h"
#include "scenes/notation/Json.h"
#include "scenes/notation/Names.h"

namespace scene_notation {

using desktop_link::Array;
using desktop_link::Bytes;
using desktop_link::Dictionary;
using desktop_link::ErrorValue;
using desktop_link::Point;
using desktop_link::Range;
using desktop_link::Rect;
using desktop_link::Size;
using nlohmann::json;

namespace {

Value ReadValue(const json& source, const std::string& place, const ElementResolver& resolve,
                std::size_t depth);

std::vector<double> ReadNumbers(const json& source, const std::string& place, std::size_t count) {
    if (!source.is_array() || source.size() != count) {
        throw SceneError(place, "expected an array of " + std::to_string(count) + " numbers");
    }
    std::vector<double> numbers;
    for (std::size_t i = 0; i < count; ++i) {
        numbers.push_back(ExpectNumber(source[i], Place(place, i)));
    }
    return numbers;
}

// Nothing for a tag that does not stand for numbers.
std::optional<Value> ReadStructure(std::string_view name, const json& source,
                                   const std::string& place) {
    if (name == tag::kPoint) {
        const auto numbers = ReadNumbers(source, place, 2);
        return Value{Point{numbers[0], numbers[1]}};
    }
    if (name == tag::kSize) {
        const auto numbers = ReadNumbers(source, place, 2);
        return Value{Size{numbers[0], numbers[1]}};
    }
    if (name == tag::kRect) {
        const auto numbers = ReadNumbers(source, place, 4);
        return Value{Rect{{numbers[0], numbers[1]}, {numbers[2], numbers[3]}}};
    }
    return std::nullopt;
}

Value ReadRange(const json& source, const std::string& place) {
    if (!source.is_array() || source.size() != 2) {
        throw SceneError(place, "expected an array of 2 whole numbers");
    }
    return {Range{ExpectInteger(source[0], Place(place, 0)),
                  ExpectInteger(source[1], Place(place, 1))}};
}

Value ReadBytes(const json& source, const std::string& place) {
    auto bytes = ParseHex(ExpectText(source, place));
    if (!bytes) {
        throw SceneError(place, "expected two hexadecimal digits for each byte");
    }
    return {Bytes{*std::move(bytes)}};
}

Value ReadArray(const json& source, const std::string& place, const ElementResolver& resolve,
                std::size_t depth) {
    Array array;
    for (std::size_t i = 0; i < ExpectArray(source, place).size(); ++i) {
        array.push_back(ReadValue(source[i], Place(place, i), resolve, depth + 1));
    }
    return {std::move(array)};
}

Value ReadDictionary(const json& source, const std::string& place, const ElementResolver& resolve,
                     std::size_t depth) {
    Dictionary dictionary;
    for (const auto& [key, item] : ExpectObject(source, place).items()) {
        dictionary.push_back({key, ReadValue(item, Place(place, key), resolve, depth + 1)});
    }
    return {std::move(dictionary)};
}

Value ReadElementTag(const json& source, const std::string& place, const ElementResolver& resolve) {
    ExpectOnly(source, place, {tag::kElement, tag::kApplication});
    const json* application = Field(source, tag::kApplication);
    if (source[tag::kElement].is_null()) {
        return {resolve("", "", place)};
    }
    return {resolve(ExpectText(source[tag::kElement], Place(place, tag::kElement)),
                    application == nullptr
                        ? std::string()
                        : ExpectText(*application, Place(place, tag::kApplication)),
                    place)};
}

Value ReadTagged(const json& source, const std::string& place, const ElementResolver& resolve,
                 std::size_t depth) {
    if (source.contains(tag::kElement)) {
        return ReadElementTag(source, place, resolve);
    }
    if (source.size() != 1) {
        throw SceneError(place, "expected one tag such as {\"point\": [1, 2]}");
    }
    const std::string& name = source.begin().key();
    const json& content = source.begin().value();
    const std::string inside = Place(place, name);
    if (auto structure = ReadStructure(name, content, inside)) {
        return *std::move(structure);
    }
    if (name == tag::kNull) {
        return {std::monostate{}};
    }
    if (name == tag::kRange) {
        return ReadRange(content, inside);
    }
    if (name == tag::kErrorValue) {
        return {ErrorValue{ExpectErrorCode(content, inside)}};
    }
    if (name == tag::kData) {
        return ReadBytes(content, inside);
    }
    if (name == tag::kDouble) {
        return {ExpectNumber(content.is_number() ? content : source, place)};
    }
    if (name == tag::kArray) {
        return ReadArray(content, inside, resolve, depth);
    }
    if (name == tag::kDictionary) {
        return ReadDictionary(content, inside, resolve, depth);
    }
    throw SceneError(place, "unknown tag " + OneLine(json(name)));
}

Value ReadValue(const json& source, const std::string& place, const ElementResolver& resolve,
                std::size_t depth) {
    if (depth > kDeepestValue) {
        throw SceneError(place, "nested too deep");
    }
    switch (source.type()) {
        case json::value_t::boolean:
            return {source.get<bool>()};
        case json::value_t::number_integer:
        case json::value_t::number_unsigned:
            return {ExpectInteger(source, place)};
        case json::value_t::number_float:
            return {source.get<double>()};
        case json::value_t::string:
            return {source.get<std::string>()};
        case json::value_t::array:
            return ReadArray(source, place, resolve, depth);
        case json::value_t::object:
            return ReadTagged(source, place, resolve, depth);
        default:
            throw SceneError(place,
                             "null is not a value; write {\"null\": true} for the null object");
    }
}

}  // namespace

Answer ReadAnswer(const json& source, std::string_view attribute, const std::string& place,
                  const ElementResolver& resolve) {
    if (source.is_null()) {
        return Answer::Error(kNoValueError);
    }
    if (source.is_object() && source.size() == 1) {
        if (const json* error = Field(source, tag::kFailure)) {
            return Answer::Error(ExpectErrorCode(*error, Place(place, tag::kFailure)));
        }
        if (source.contains(tag::kNothing)) {
            return {{}, 0, true};
        }
    }
    if (source.is_array()) {
        if (auto structure = ReadStructure(TagOfPlainNumbers(attribute), source, place)) {
            return Answer::Of(*std::move(structure));
        }
    }
    return Answer::Of(ReadValue(source, place, resolve, 0));
}

bool MentionsElement(const json& source) {
    std::vector<const json*> open = {&source};
    while (!open.empty()) {
        const json* current = open.back();
        open.pop_back();
        if (current->is_object() && current->contains(tag::kElement)) {
            return true;
        }
        if (current->is_structured()) {
            for (const json& item : *current) {
                open.push_back(&item);
            }
        }
    }
    return false;
}

}  // namespace scene_notation
