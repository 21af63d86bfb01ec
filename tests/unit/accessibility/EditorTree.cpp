#include "tests/unit/accessibility/EditorTree.h"

#include <utility>
#include <variant>

#include "scenes/notation/ValueWriting.h"

using desktop_link::ErrorValue;
using desktop_link::Operation;
using nlohmann::json;

Value Text(const std::string& text) {
    return Value{text};
}
Value Number(std::int64_t number) {
    return Value{number};
}
Value Real(double number) {
    return Value{number};
}
Value Truth(bool truth) {
    return Value{truth};
}
Value PointAt(double x, double y) {
    return Value{desktop_link::Point{x, y}};
}
Value Failing(std::int32_t error) {
    return Value{ErrorValue{error}};
}
Value Null() {
    return Value{};
}
Value List(std::vector<Value> values) {
    return Value{std::move(values)};
}

Value Elements(const std::vector<ElementReference>& elements) {
    desktop_link::Array values;
    for (const ElementReference& element : elements) {
        values.push_back(Value{element});
    }
    return Value{std::move(values)};
}

EditorTree::EditorTree(test_support::ScriptedDesktop& desktop) : desktop_(desktop) {}

std::string EditorTree::Scene() {
    return R"({"front": "com.apple.FinalCut", "applications": [
        {"bundleID": "com.apple.FinalCut", "pid": 501, "windows": {"error": -25205}}]})";
}

ElementReference EditorTree::Add(const std::string& role, const std::string& identifier,
                                 const std::vector<ElementReference>& children) {
    json element = {{"AXRole", role}};
    if (!identifier.empty()) {
        element["AXIdentifier"] = identifier;
    }
    const ElementReference added = AddTree(element);
    if (!children.empty()) {
        Set(added, "AXChildren", Elements(children));
    }
    return added;
}

ElementReference EditorTree::AddTree(const json& element) {
    const std::size_t place = places_.size();
    Run({{"command", "insert"}, {"parent", "/"}, {"element", element}});
    const ElementReference added = desktop_->Find("", "/" + std::to_string(place));
    places_[added.id] = place;
    return added;
}

void EditorTree::Set(ElementReference element, const std::string& attribute, const Value& value) {
    Run({{"command", "set"},
         {"element", AddressOf(element)},
         {"attribute", attribute},
         {"value", Written(value, attribute)}});
}

void EditorTree::Unset(ElementReference element, const std::string& attribute) {
    Run({{"command", "remove"}, {"element", AddressOf(element)}, {"attribute", attribute}});
}

void EditorTree::SetWindows(const std::vector<ElementReference>& windows) {
    Set(Application(), "AXWindows", Elements(windows));
}

ElementReference EditorTree::ShowWindow(const std::vector<ElementReference>& children) {
    ElementReference window = Add("AXWindow");
    Set(window, "AXChildren", Elements(children));
    SetWindows({window});
    return window;
}

void EditorTree::Fail(ElementReference element, std::int32_t error) {
    const json failure = {{"error", error}};
    misbehaviour_[element.id] = {{"read", {{"multiple", failure}, {"*", failure}}},
                                 {"set", {{"*", failure}}},
                                 {"action", {{"*", failure}}}};
    Misbehave(element);
}

void EditorTree::Refuse(ElementReference element, const std::string& name, std::int32_t error) {
    for (const char* kind : {"set", "action"}) {
        misbehaviour_[element.id][kind][name] = {{"error", error}};
    }
    Misbehave(element);
}

void EditorTree::AnswerEmpty(ElementReference element) {
    misbehaviour_[element.id]["read"]["multiple"] = {{"answer", {{"array", json::array()}}}};
    Misbehave(element);
}

void EditorTree::StartAnew() {
    desktop_.Load(Scene());
    places_.clear();
    misbehaviour_.clear();
}

void EditorTree::Hang() {
    Run({{"command", "hang"}, {"application", "com.apple.FinalCut"}});
}

void EditorTree::Die() {
    Run({{"command", "kill"}, {"application", "com.apple.FinalCut"}});
}

std::vector<ElementReference> EditorTree::Reads() const {
    std::vector<ElementReference> reads;
    for (const test_support::Exchange& exchange : desktop_.Exchanges()) {
        if (exchange.request.operation == Operation::copyAttribute ||
            exchange.request.operation == Operation::copyAttributes) {
            reads.push_back(exchange.request.element);
        }
    }
    return reads;
}

std::vector<std::string> EditorTree::Changes() const {
    std::vector<std::string> changes;
    for (const std::string& line : desktop_->Log().LinesSince(0)) {
        const json entry = json::parse(line);
        std::string change = entry.value("action", "");
        if (entry.contains("set")) {
            change = "set " + entry.value("set", "");
        }
        if (change.empty()) {
            continue;
        }
        change += " " + entry.value("identifier", "");
        if (entry.contains("set")) {
            const json& value = entry["value"];
            change += " = " + (value.is_string() ? value.get<std::string>() : value.dump());
        }
        changes.push_back(change + (entry.value("error", 0) != 0 ? " failed" : ""));
    }
    return changes;
}

std::string EditorTree::AddressOf(ElementReference element) const {
    return element.id == 0 ? "/" : "/" + std::to_string(places_.at(element.id));
}

json EditorTree::Written(const Value& value, const std::string& attribute) const {
    using scene_notation::Answer;
    const auto* error = std::get_if<ErrorValue>(&value.content);
    return scene_notation::WriteAnswer(
        error != nullptr ? Answer::Error(error->code) : Answer::Of(value), attribute,
        [this](const ElementReference& element) {
            return scene_notation::Json{{"element", AddressOf(element)}};
        });
}

void EditorTree::Misbehave(ElementReference element) {
    Run({{"command", "misbehave"},
         {"element", AddressOf(element)},
         {"misbehaviour", misbehaviour_[element.id]}});
}

// In the middle of a call, too: its process learns nothing.
void EditorTree::Run(const json& command) {
    desktop_.RunUnnoticed(command.dump());
}
