// Requests to elements.

#include "desktop/Address.h"
#include "desktop/AttributeReading.h"
#include "desktop/Behaviour.h"
#include "desktop/Desktop.h"
#include "desktop/Script.h"
#include "platform/Variants/Variants.h"
#include "scenes/notation/ValueWriting.h"

namespace desktop {

using namespace scene_notation;
using desktop_link::ElementReference;
using desktop_link::ErrorValue;
using desktop_link::Operation;
using desktop_link::Reply;
using desktop_link::Request;
using nlohmann::ordered_json;

namespace {

Reply ErrorReply(std::int32_t error) {
    Reply reply;
    reply.error = error;
    return reply;
}

std::vector<Value> Texts(std::vector<std::string> texts) {
    std::vector<Value> values;
    values.reserve(texts.size());
    for (std::string& text : texts) {
        values.push_back({std::move(text)});
    }
    return values;
}

// The rule of the element itself, else that of its application.
template <typename RuleType>
RuleType* FindRule(std::vector<RuleType> Misbehaviour::*kind, Element& element,
                   Application& application, std::string_view name) {
    for (Element* bearer : {&element, &application.root}) {
        if (bearer->details == nullptr) {
            continue;
        }
        if (RuleType* rule = ApplyRule(bearer->details->misbehaviour.*kind, name)) {
            return rule;
        }
        if (&element == &application.root) {
            break;
        }
    }
    return nullptr;
}

// None, so that the caller waits for its time-out; under the variant, the time-out's error at once.
std::optional<Reply> ReplyOfHung() {
    if (platform_testing::IsOn(platform_testing::Variant::hangAtOnce)) {
        return ErrorReply(kCannotComplete);
    }
    return std::nullopt;
}

}  // namespace

std::optional<Reply> Desktop::AnswerAccessibility(const Request& request) {
    if (!model_.trusted) {
        return ErrorReply(kAPIDisabled);
    }
    Application* application = model_.ApplicationWithPid(request.element.pid);
    if (application == nullptr || application->dead) {
        return ErrorReply(kInvalidElement);
    }
    if (application->hung) {
        return ReplyOfHung();
    }
    Element* element = model_.Find(request.element);
    if (element == nullptr) {
        return ErrorReply(kInvalidElement);
    }
    Reply reply = AnswerElement(request, {application, element});
    // Commands that ran inside a read may have made the application hang.
    application = model_.ApplicationWithPid(request.element.pid);
    if (application != nullptr && application->hung) {
        return ReplyOfHung();
    }
    return reply;
}

Reply Desktop::AnswerElement(const Request& request, Target target) {
    Reply reply;
    if (request.operation == Operation::attributeNames) {
        reply.values = Texts(AttributeNames(model_, *target.application, *target.element));
        return reply;
    }
    if (request.operation == Operation::actionNames) {
        reply.values = Texts(ActionNames(*target.element));
        return reply;
    }
    if (request.operation == Operation::copyAttributes) {
        return CopyAttributes(request);
    }
    if (request.names.size() != 1) {
        return ErrorReply(kIllegalArgument);
    }
    switch (request.operation) {
        case Operation::copyAttribute: {
            desktop::Answer answer = Read(request.element, request.names[0]);
            reply.error = answer.error;
            if (answer.HasValue()) {
                reply.values.push_back(std::move(answer.value));
            }
            return reply;
        }
        case Operation::isSettable: {
            const desktop::Answer answer = Read(request.element, request.names[0]);
            if (answer.error != 0 && answer.error != kNoValue) {
                return ErrorReply(answer.error);
            }
            target = {model_.ApplicationWithPid(request.element.pid), model_.Find(request.element)};
            if (target.application == nullptr || target.element == nullptr) {
                return ErrorReply(kInvalidElement);
            }
            reply.flag = IsSettable(*target.application, *target.element, request.names[0]);
            return reply;
        }
        case Operation::setAttribute:
            return SetAttribute(request, target);
        case Operation::performAction:
            return PerformAction(request, target);
        default:
            return ErrorReply(kIllegalArgument);
    }
}

Reply Desktop::CopyAttributes(const Request& request) {
    Reply reply;
    {
        Application& application = *model_.ApplicationWithPid(request.element.pid);
        Element& element = *model_.Find(request.element);
        const ReadRule* rule = FindRule(&Misbehaviour::reads, element, application, kMultiple);
        if (rule != nullptr && rule->answer) {
            reply.error = rule->answer->error;
            if (const auto* array =
                    std::get_if<desktop_link::Array>(&rule->answer->value.content)) {
                reply.values = *array;
            }
            return reply;
        }
    }
    for (const std::string& name : request.names) {
        desktop::Answer answer = Read(request.element, name);
        if (model_.Find(request.element) == nullptr) {
            return ErrorReply(kInvalidElement);
        }
        if (answer.error != 0 && request.flag) {
            return ErrorReply(answer.error);
        }
        reply.values.push_back(answer.error != 0 ? Value{ErrorValue{answer.error}}
                                                 : std::move(answer.value));
    }
    return reply;
}

desktop::Answer Desktop::Read(const ElementReference& reference, const std::string& name) {
    ++attributesRead_;
    if (onRead) {
        onRead(reference, name);
    }
    Application* application = model_.ApplicationWithPid(reference.pid);
    Element* element = model_.Find(reference);
    if (application == nullptr || element == nullptr) {
        return desktop::Answer::Error(kInvalidElement);
    }
    const ReadRule* rule = FindRule(&Misbehaviour::reads, *element, *application, name);
    desktop::Answer answer = rule != nullptr && rule->answer
                                 ? *rule->answer
                                 : ReadAttribute(model_, *application, *element, name);
    if (rule != nullptr) {
        const auto commands = rule->commands;  // they may remove the rule
        for (const nlohmann::json& command : commands) {
            Script(*this).RunPlanned(command);
        }
    }
    return answer;
}

// {"set": "AXValue", "application": ..., "element": "/0/3", "identifier": ...}
ordered_json Desktop::Named(const char* what, const std::string& name, const Element& element) {
    ordered_json entry = {{what, name},
                          {"application", model_.ApplicationWithPid(element.pid)->Key()},
                          {"element", AddressOf(element)}};
    if (const auto identifier = element.Text("AXIdentifier"); !identifier.empty()) {
        entry["identifier"] = identifier;
    }
    return entry;
}

Reply Desktop::SetAttribute(const Request& request, Target target) {
    const std::string& name = request.names[0];
    Element& element = *target.element;
    const EffectRule* rule = FindRule(&Misbehaviour::sets, element, *target.application, name);
    const std::int32_t check =
        CheckSetting(model_, *target.application, element, name, request.value);
    const std::int32_t error = rule != nullptr ? rule->error : check;
    const bool works = check == kSuccess && (rule == nullptr || rule->works);
    ordered_json entry = Named("set", name, element);
    entry["value"] = WriteAnswer(Answer::Of(request.value), name, [&](const auto& reference) {
        return DescribeElement(model_, target.application, reference);
    });
    entry["error"] = error;
    entry["works"] = works;
    log_.Add(std::move(entry));
    if (works && rule != nullptr && rule->delay > 0) {
        schedule_.After(rule->delay, [this, element = request.element, name,
                                      value = request.value] { SetNow(element, name, value); });
    } else if (works) {
        SetNow(request.element, name, request.value);
    }
    return ErrorReply(error);
}

void Desktop::SetNow(const ElementReference& reference, const std::string& attribute,
                     const Value& value) {
    Application* application = model_.ApplicationWithPid(reference.pid);
    Element* element = model_.Find(reference);
    if (element == nullptr ||
        CheckSetting(model_, *application, *element, attribute, value) != kSuccess) {
        return;  // destroyed or changed while the setting was in progress
    }
    if (element == &application->root && attribute == "AXFrontmost") {
        if (NumberIn(value) != 0) {
            Activate(application, model_.activationGap);
        }
        return;
    }
    Set(model_, *application, *element, attribute, value);
}

Reply Desktop::PerformAction(const Request& request, Target target) {
    const std::string& name = request.names[0];
    Element& element = *target.element;
    const EffectRule* rule = FindRule(&Misbehaviour::actions, element, *target.application, name);
    const auto supported = ActionNames(element);
    const bool supports = std::find(supported.begin(), supported.end(), name) != supported.end();
    const std::int32_t error =
        rule != nullptr ? rule->error : (supports ? kSuccess : kActionUnsupported);
    const bool works = supports && (rule == nullptr || rule->works);
    ordered_json entry = Named("action", name, element);
    entry["error"] = error;
    entry["works"] = works;
    const bool delayed = works && rule != nullptr && rule->delay > 0;
    if (delayed) {
        entry["delay"] = rule->delay;
        schedule_.After(rule->delay,
                        [this, element = request.element, name] { PerformNow(element, name); });
    } else if (works) {
        PerformNow(request.element, name);
    }
    if (element.details != nullptr && name == "AXPress") {
        entry["presses"] = element.details->presses;
    }
    log_.Add(std::move(entry));
    return ErrorReply(error);
}

void Desktop::PerformNow(const ElementReference& reference, const std::string& action) {
    Application* application = model_.ApplicationWithPid(reference.pid);
    Element* element = model_.Find(reference);
    if (element != nullptr) {
        Perform(model_, *application, *element, action);
    }
}

}  // namespace desktop
