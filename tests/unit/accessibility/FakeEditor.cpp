#include "tests/unit/accessibility/FakeEditor.h"

#include <memory>
#include <utility>
#include <variant>

using desktop_link::ErrorValue;
using desktop_link::Operation;
using desktop_link::Reply;
using desktop_link::Request;

namespace {

constexpr std::int32_t kAttributeUnsupported = -25205;

}  // namespace

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

FakeEditor& FakeEditor::Install() {
    auto editor = std::make_unique<FakeEditor>();
    FakeEditor& installed = *editor;
    desktop_link::SetTransport(std::move(editor));
    return installed;
}

ElementReference FakeEditor::Add(const std::string& role, const std::string& identifier,
                                 const std::vector<ElementReference>& children) {
    ElementReference element{kProcess, elements_.size()};
    elements_.emplace_back();
    Set(element, "AXRole", Text(role));
    if (!identifier.empty()) {
        Set(element, "AXIdentifier", Text(identifier));
    }
    if (!children.empty()) {
        Set(element, "AXChildren", Elements(children));
    }
    return element;
}

void FakeEditor::Set(ElementReference element, const std::string& attribute, Value value) {
    elements_.at(element.id)[attribute] = std::move(value);
}

void FakeEditor::Unset(ElementReference element, const std::string& attribute) {
    elements_.at(element.id).erase(attribute);
}

void FakeEditor::SetWindows(const std::vector<ElementReference>& windows) {
    Set(Application(), "AXWindows", Elements(windows));
}

ElementReference FakeEditor::ShowWindow(const std::vector<ElementReference>& children) {
    ElementReference window = Add("AXWindow");
    Set(window, "AXChildren", Elements(children));
    SetWindows({window});
    return window;
}

void FakeEditor::Fail(ElementReference element, std::int32_t error) {
    failing_[element.id] = error;
}

void FakeEditor::Refuse(ElementReference element, const std::string& name, std::int32_t error) {
    refused_[{element.id, name}] = error;
}

void FakeEditor::StopAnswering(bool gone) {
    answers_ = false;
    gone_ = gone;
}

void FakeEditor::BeforeEach(std::function<void(const Request&)> hook) {
    hook_ = std::move(hook);
}

std::optional<Reply> FakeEditor::Exchange(const Request& request, double /*timeout*/) {
    if (request.operation != Operation::hello && hook_) {
        hook_(request);
    }
    if (!answers_) {
        return std::nullopt;
    }
    return Answer(request);
}

Reply FakeEditor::Answer(const Request& request) {
    Reply reply;
    ElementReference element = request.element;
    if (auto failing = failing_.find(element.id); failing != failing_.end()) {
        reply.error = failing->second;
        return reply;
    }
    switch (request.operation) {
        case Operation::hello:
            reply.session.emplace();
            break;
        case Operation::isTrusted:
            reply.flag = true;
            break;
        case Operation::copyAttribute: {
            reads_.push_back(element);
            Value value = Read(element, request.names.at(0));
            if (const auto* error = std::get_if<ErrorValue>(&value.content)) {
                reply.error = error->code;
            } else {
                reply.values.push_back(std::move(value));
            }
            break;
        }
        case Operation::copyAttributes:
            reads_.push_back(element);
            for (const std::string& name : request.names) {
                if (!empty_.contains(element.id)) {
                    reply.values.push_back(Read(element, name));
                }
            }
            break;
        case Operation::isSettable:
            reply.flag = false;
            break;
        case Operation::setAttribute:
            reply.error = Refusal(element, request.names.at(0));
            if (reply.error == 0) {
                const auto* text = std::get_if<std::string>(&request.value.content);
                changes_.push_back("set " + request.names[0] + " " + NameOf(element) + " = " +
                                   (text != nullptr ? *text : "?"));
                Set(element, request.names[0], request.value);
            }
            break;
        case Operation::performAction:
            reply.error = Refusal(element, request.names.at(0));
            if (reply.error == 0) {
                changes_.push_back(request.names[0] + " " + NameOf(element));
            }
            break;
        default:
            reply.error = kAttributeUnsupported;
            break;
    }
    return reply;
}

Value FakeEditor::Read(ElementReference element, const std::string& name) const {
    if (generator_) {
        if (std::optional<Value> generated = generator_(element, name)) {
            return *std::move(generated);
        }
    }
    const Attributes& attributes = elements_.at(element.id);
    auto found = attributes.find(name);
    return found != attributes.end() ? found->second : Failing(kAttributeUnsupported);
}

std::int32_t FakeEditor::Refusal(ElementReference element, const std::string& name) const {
    auto refused = refused_.find({element.id, name});
    return refused != refused_.end() ? refused->second : 0;
}

std::string FakeEditor::NameOf(ElementReference element) const {
    Value value = Read(element, "AXIdentifier");
    const auto* identifier = std::get_if<std::string>(&value.content);
    return identifier != nullptr ? *identifier : "#" + std::to_string(element.id);
}
