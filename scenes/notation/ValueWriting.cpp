#include "scenes/notation/ValueWriting.h"

#include <cmath>
#include <initializer_list>
#include <string>
#include <utility>

#include "scenes/notation/Hex.h"
#include "scenes/notation/Names.h"

namespace scene_notation {

namespace {

Json Tagged(const char* tag, Json content) {
    Json tagged;
    tagged[tag] = std::move(content);
    return tagged;
}

// JSON has no numbers for these.
Json WriteNonFinite(double number) {
    if (std::isnan(number)) {
        return Tagged(tag::kDouble, "nan");
    }
    return Tagged(tag::kDouble, number > 0 ? "inf" : "-inf");
}

// Keeps its fraction, which tells a floating number from an integer.
Json WriteDouble(double number) {
    return std::isfinite(number) ? Json(number) : WriteNonFinite(number);
}

struct ValueWriter {
    const ElementDescriber& describe;
    std::string_view attribute;  // empty inside another value

    Json operator()(std::monostate) const { return Tagged(tag::kNull, true); }
    Json operator()(bool flag) const { return flag; }
    Json operator()(std::int64_t number) const { return number; }
    Json operator()(double number) const { return WriteDouble(number); }
    Json operator()(const std::string& text) const { return text; }
    Json operator()(const desktop_link::Point& point) const {
        return Structure({point.x, point.y}, tag::kPoint);
    }
    Json operator()(const desktop_link::Size& size) const {
        return Structure({size.width, size.height}, tag::kSize);
    }
    Json operator()(const desktop_link::Rect& rect) const {
        const auto& [origin, size] = rect;
        return Structure({origin.x, origin.y, size.width, size.height}, tag::kRect);
    }
    Json operator()(const desktop_link::Range& range) const {
        return Tagged(tag::kRange, Json::array({range.location, range.length}));
    }
    Json operator()(const desktop_link::ErrorValue& error) const {
        return Tagged(tag::kErrorValue, error.code);
    }
    Json operator()(const desktop_link::ElementReference& reference) const {
        return describe(reference);
    }
    Json operator()(const desktop_link::Bytes& bytes) const {
        return Tagged(tag::kData, FormatHex(bytes.content));
    }
    Json operator()(const desktop_link::Array& array) const {
        Json items = Json::array();
        for (const Value& item : array) {
            items.push_back(Inside(item));
        }
        return PlainArrayMeansSomethingElse(attribute) ? Tagged(tag::kArray, std::move(items))
                                                       : items;
    }
    Json operator()(const desktop_link::Dictionary& dictionary) const {
        Json entries = Json::object();
        for (const auto& [key, value] : dictionary) {
            entries[key] = Inside(value);
        }
        return Tagged(tag::kDictionary, std::move(entries));
    }

    // Untagged where the attribute itself says what an array of numbers is.
    Json Structure(std::initializer_list<double> numbers, const char* tag) const {
        Json written = Json::array();
        for (const double number : numbers) {
            written.push_back(WriteCoordinate(number));
        }
        return TagOfPlainNumbers(attribute) == tag ? written : Tagged(tag, std::move(written));
    }
    Json Inside(const Value& value) const {
        return std::visit(ValueWriter{describe, {}}, value.content);
    }
};

}  // namespace

Json WriteAnswer(const Answer& answer, std::string_view attribute,
                 const ElementDescriber& describe) {
    if (answer.error != 0) {
        return answer.error == kNoValueError ? Json(nullptr) : Tagged(tag::kFailure, answer.error);
    }
    if (answer.nothing) {
        return Tagged(tag::kNothing, true);
    }
    return std::visit(ValueWriter{describe, attribute}, answer.value.content);
}

Json WriteCoordinate(double number) {
    constexpr double kExact = 9007199254740992;  // whole numbers up to 2^53 have one form only
    const bool isNegativeZero = number == 0 && std::signbit(number);
    if (std::trunc(number) == number && std::abs(number) < kExact && !isNegativeZero) {
        return static_cast<std::int64_t>(number);
    }
    return WriteDouble(number);
}

Json WritePosition(const desktop_link::Point& point) {
    return WriteAnswer(Answer::Of({point}), "AXPosition", {});
}

}  // namespace scene_notation
