#include <cmath>

#include "desktop/SceneValue.h"

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
using nlohmann::ordered_json;

namespace {

ordered_json Tagged(const char* tag, ordered_json content) {
    ordered_json tagged;
    tagged[tag] = std::move(content);
    return tagged;
}

ordered_json WriteSize(const Size& size) {
    return ordered_json::array({WriteNumber(size.width), WriteNumber(size.height)});
}

ordered_json WriteRect(const Rect& rect) {
    return ordered_json::array({WriteNumber(rect.origin.x), WriteNumber(rect.origin.y),
                                WriteNumber(rect.size.width), WriteNumber(rect.size.height)});
}

std::string Hexadecimal(const Bytes& bytes) {
    const std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes.content) {
        text += digits[byte / 16];
        text += digits[byte % 16];
    }
    return text;
}

struct ValueWriter {
    const ElementDescriber& describe;

    ordered_json operator()(std::monostate) const { return Tagged("null", true); }
    ordered_json operator()(bool flag) const { return flag; }
    ordered_json operator()(std::int64_t number) const { return number; }
    ordered_json operator()(double number) const {
        return std::isfinite(number) ? ordered_json(number) : WriteNumber(number);
    }
    ordered_json operator()(const std::string& text) const { return text; }
    ordered_json operator()(const Point& point) const { return Tagged("point", WritePoint(point)); }
    ordered_json operator()(const Size& size) const { return Tagged("size", WriteSize(size)); }
    ordered_json operator()(const Rect& rect) const { return Tagged("rect", WriteRect(rect)); }
    ordered_json operator()(const Range& range) const {
        return Tagged("range", ordered_json::array({range.location, range.length}));
    }
    ordered_json operator()(const ErrorValue& error) const { return Tagged("axerror", error.code); }
    ordered_json operator()(const ElementReference& reference) const { return describe(reference); }
    ordered_json operator()(const Bytes& bytes) const { return Tagged("data", Hexadecimal(bytes)); }
    ordered_json operator()(const Array& array) const {
        auto items = ordered_json::array();
        for (const Value& item : array) {
            items.push_back(std::visit(*this, item.content));
        }
        return items;
    }
    ordered_json operator()(const Dictionary& dictionary) const {
        auto entries = ordered_json::object();
        for (const auto& [key, value] : dictionary) {
            entries[key] = std::visit(*this, value.content);
        }
        return Tagged("dictionary", std::move(entries));
    }
};

bool PlainArrayMeansSomethingElse(std::string_view attribute) {
    return attribute == "AXPosition" || attribute == "AXSize" || attribute == "AXFrame" ||
           attribute == "AXChildren" || attribute == "AXSelectedRows" || attribute == "AXWindows";
}

void WriteOccasions(const Rule& rule, ordered_json& json) {
    if (rule.skip != 0) {
        json["after"] = rule.skip;
    }
    if (rule.times) {
        json["times"] = *rule.times;
    }
}

ordered_json WriteReadRule(const ReadRule& rule, const ElementDescriber& describe) {
    auto json = ordered_json::object();
    if (rule.answer) {
        json["answer"] = WriteAnswer(*rule.answer, rule.name, describe);
    }
    WriteOccasions(rule, json);
    if (!rule.commands.empty()) {
        json["then"] = rule.commands;
    }
    return json;
}

ordered_json WriteEffectRules(const std::vector<EffectRule>& rules) {
    auto json = ordered_json::object();
    for (const EffectRule& rule : rules) {
        auto& written = json[rule.name] = ordered_json::object();
        written["error"] = rule.error;
        written["works"] = rule.works;
        if (rule.delay > 0) {
            written["delay"] = rule.delay;
        }
        WriteOccasions(rule, written);
    }
    return json;
}

}  // namespace

ordered_json WriteNumber(double number) {
    if (std::isnan(number)) {
        return Tagged("double", "nan");
    }
    if (std::isinf(number)) {
        return Tagged("double", number > 0 ? "inf" : "-inf");
    }
    constexpr double kExact = 9007199254740992;  // whole numbers up to 2^53 have one form only
    if (std::trunc(number) == number && std::abs(number) < kExact &&
        !(number == 0 && std::signbit(number))) {
        return static_cast<std::int64_t>(number);
    }
    return number;
}

ordered_json WritePoint(const Point& point) {
    return ordered_json::array({WriteNumber(point.x), WriteNumber(point.y)});
}

ordered_json WriteAnswer(const Answer& answer, std::string_view attribute,
                         const ElementDescriber& describe) {
    if (answer.error == kNoValue) {
        return nullptr;
    }
    if (answer.error != 0) {
        return Tagged("error", answer.error);
    }
    if (answer.nothing) {
        return Tagged("nothing", true);
    }
    const Value& value = answer.value;
    if (const auto* point = std::get_if<Point>(&value.content);
        point && attribute == "AXPosition") {
        return WritePoint(*point);
    }
    if (const auto* size = std::get_if<Size>(&value.content); size && attribute == "AXSize") {
        return WriteSize(*size);
    }
    if (const auto* rect = std::get_if<Rect>(&value.content); rect && attribute == "AXFrame") {
        return WriteRect(*rect);
    }
    ordered_json json = std::visit(ValueWriter{describe}, value.content);
    if (json.is_array() && PlainArrayMeansSomethingElse(attribute)) {
        return Tagged("array", std::move(json));
    }
    return json;
}

ordered_json WriteMisbehaviour(const Misbehaviour& misbehaviour, const ElementDescriber& describe) {
    auto json = ordered_json::object();
    if (!misbehaviour.reads.empty()) {
        auto& reads = json["read"] = ordered_json::object();
        for (const ReadRule& rule : misbehaviour.reads) {
            reads[rule.name] = WriteReadRule(rule, describe);
        }
    }
    if (!misbehaviour.sets.empty()) {
        json["set"] = WriteEffectRules(misbehaviour.sets);
    }
    if (!misbehaviour.actions.empty()) {
        json["action"] = WriteEffectRules(misbehaviour.actions);
    }
    return json;
}

}  // namespace desktop
