#include <limits>
#include <utility>
#include <vector>

#include "desktop/JsonFields.h"
#include "desktop/SceneValue.h"
#include "scenes/notation/Names.h"

namespace desktop {

using desktop_link::Array;
using desktop_link::Bytes;
using desktop_link::Dictionary;
using desktop_link::ElementReference;
using desktop_link::ErrorValue;
using desktop_link::Point;
using desktop_link::Range;
using desktop_link::Rect;
using desktop_link::Size;
using nlohmann::json;
namespace tags = scene_notation::tag;

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

Value ReadPoint(const json& source, const std::string& place) {
    const auto numbers = ReadNumbers(source, place, 2);
    return {Point{numbers[0], numbers[1]}};
}

Value ReadSize(const json& source, const std::string& place) {
    const auto numbers = ReadNumbers(source, place, 2);
    return {Size{numbers[0], numbers[1]}};
}

Value ReadRect(const json& source, const std::string& place) {
    const auto numbers = ReadNumbers(source, place, 4);
    return {Rect{{numbers[0], numbers[1]}, {numbers[2], numbers[3]}}};
}

Value ReadRange(const json& source, const std::string& place) {
    if (!source.is_array() || source.size() != 2) {
        throw SceneError(place, "expected an array of 2 whole numbers");
    }
    return {Range{ExpectInteger(source[0], Place(place, 0)),
                  ExpectInteger(source[1], Place(place, 1))}};
}

int HexDigit(char digit) {
    const std::string_view digits = "0123456789abcdef";
    const std::size_t found =
        digits.find(digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit);
    return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

Value ReadBytes(const json& source, const std::string& place) {
    const std::string& text = ExpectText(source, place);
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = HexDigit(text[i]);
        const int low = i + 1 < text.size() ? HexDigit(text[i + 1]) : -1;
        if (high < 0 || low < 0) {
            throw SceneError(place, "expected two hexadecimal digits for each byte");
        }
        bytes.content.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return {std::move(bytes)};
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
    ExpectOnly(source, place, {tags::kElement, "application"});
    const json* application = Field(source, "application");
    if (source[tags::kElement].is_null()) {
        return {resolve("", "", place)};
    }
    return {resolve(ExpectText(source[tags::kElement], Place(place, tags::kElement)),
                    application == nullptr ? std::string()
                                           : ExpectText(*application, Place(place, "application")),
                    place)};
}

Value ReadTagged(const json& source, const std::string& place, const ElementResolver& resolve,
                 std::size_t depth) {
    if (source.contains(tags::kElement)) {
        return ReadElementTag(source, place, resolve);
    }
    if (source.size() != 1) {
        throw SceneError(place, "expected one tag such as {\"point\": [1, 2]}");
    }
    const std::string& tag = source.begin().key();
    const json& content = source.begin().value();
    const std::string inside = Place(place, tag);
    if (tag == tags::kNull) {
        return {std::monostate{}};
    }
    if (tag == tags::kPoint) {
        return ReadPoint(content, inside);
    }
    if (tag == tags::kSize) {
        return ReadSize(content, inside);
    }
    if (tag == tags::kRect) {
        return ReadRect(content, inside);
    }
    if (tag == tags::kRange) {
        return ReadRange(content, inside);
    }
    if (tag == tags::kErrorValue) {
        return {ErrorValue{ExpectErrorCode(content, inside)}};
    }
    if (tag == tags::kData) {
        return ReadBytes(content, inside);
    }
    if (tag == tags::kDouble) {
        return {ExpectNumber(content.is_number() ? content : source, place)};
    }
    if (tag == tags::kArray) {
        return ReadArray(content, inside, resolve, depth);
    }
    if (tag == tags::kDictionary) {
        return ReadDictionary(content, inside, resolve, depth);
    }
    throw SceneError(place, "unknown tag " + ToText(json(tag)));
}

Value ReadValue(const json& source, const std::string& place, const ElementResolver& resolve,
                std::size_t depth) {
    if (depth > scene_notation::kDeepestValue) {
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
        return Answer::Error(kNoValue);
    }
    if (source.is_object() && source.size() == 1) {
        if (const json* error = Field(source, tags::kFailure)) {
            return Answer::Error(ExpectErrorCode(*error, Place(place, tags::kFailure)));
        }
        if (source.contains(tags::kNothing)) {
            return {{}, 0, true};
        }
    }
    if (source.is_array() && attribute == "AXPosition") {
        return Answer::Of(ReadPoint(source, place));
    }
    if (source.is_array() && attribute == "AXSize") {
        return Answer::Of(ReadSize(source, place));
    }
    if (source.is_array() && attribute == "AXFrame") {
        return Answer::Of(ReadRect(source, place));
    }
    return Answer::Of(ReadValue(source, place, resolve, 0));
}

bool MentionsElement(const json& source) {
    std::vector<const json*> open = {&source};
    while (!open.empty()) {
        const json* current = open.back();
        open.pop_back();
        if (current->is_object() && current->contains(tags::kElement)) {
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

}  // namespace desktop
