#include "desktop/SceneValue.h"
#include "platform/DesktopLink/Messages.h"
#include "scenes/notation/Names.h"
#include "scenes/notation/Values.h"

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

// The link carries values exactly as deep as a scene can hold them.
static_assert(desktop_link::kDeepestValue == scene_notation::kDeepestValue);
static_assert(kNoValue == scene_notation::kNoValueError);

namespace {

struct ValueWriter {
    const ElementDescriber& describe;
    std::string_view attribute;  // empty inside another value

    ordered_json operator()(std::monostate) const { return scene_notation::WriteNull(); }
    ordered_json operator()(bool flag) const { return flag; }
    ordered_json operator()(std::int64_t number) const { return number; }
    ordered_json operator()(double number) const { return scene_notation::WriteDouble(number); }
    ordered_json operator()(const std::string& text) const { return text; }
    ordered_json operator()(const Point& point) const {
        return scene_notation::WritePoint(point.x, point.y, attribute);
    }
    ordered_json operator()(const Size& size) const {
        return scene_notation::WriteSize(size.width, size.height, attribute);
    }
    ordered_json operator()(const Rect& rect) const {
        return scene_notation::WriteRect(rect.origin.x, rect.origin.y, rect.size.width,
                                         rect.size.height, attribute);
    }
    ordered_json operator()(const Range& range) const {
        return scene_notation::WriteRange(range.location, range.length);
    }
    ordered_json operator()(const ErrorValue& error) const {
        return scene_notation::WriteErrorValue(error.code);
    }
    ordered_json operator()(const ElementReference& reference) const { return describe(reference); }
    ordered_json operator()(const Bytes& bytes) const {
        return scene_notation::WriteData(bytes.content);
    }
    ordered_json operator()(const Array& array) const {
        auto items = ordered_json::array();
        for (const Value& item : array) {
            items.push_back(Inside(item));
        }
        return scene_notation::WriteArray(std::move(items), attribute);
    }
    ordered_json operator()(const Dictionary& dictionary) const {
        auto entries = ordered_json::object();
        for (const auto& [key, value] : dictionary) {
            entries[key] = Inside(value);
        }
        return scene_notation::WriteDictionary(std::move(entries));
    }
    ordered_json Inside(const Value& value) const {
        return std::visit(ValueWriter{describe, {}}, value.content);
    }
};

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

ordered_json WritePosition(const Point& point) {
    return scene_notation::WritePoint(point.x, point.y, "AXPosition");
}

ordered_json WriteAnswer(const Answer& answer, std::string_view attribute,
                         const ElementDescriber& describe) {
    if (answer.error != 0) {
        return scene_notation::WriteFailure(answer.error);
    }
    if (answer.nothing) {
        return scene_notation::WriteNothing();
    }
    return std::visit(ValueWriter{describe, attribute}, answer.value.content);
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
