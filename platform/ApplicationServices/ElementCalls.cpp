#include <ApplicationServices/AXUIElement.h>

#include <algorithm>
#include <utility>

#include "platform/ApplicationServices/Element.h"
#include "platform/ApplicationServices/ValueConversion.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Variants/Variants.h"

using application_services::CreateArray;
using application_services::CreateObject;
using application_services::IsElement;
using application_services::TextOf;
using desktop_link::ErrorValue;
using desktop_link::Operation;
using desktop_link::Reply;
using desktop_link::Request;
using desktop_link::Value;

namespace {

struct Answer {
    AXError error = kAXErrorSuccess;
    Reply reply;
};

// The system-wide element exists for its time-out only: it has no attributes and no actions.
AXError ErrorOfSystemWide(Operation operation) {
    return operation == Operation::performAction ? kAXErrorActionUnsupported
                                                 : kAXErrorAttributeUnsupported;
}

// One exchange. The desktop treats a process id that no application has like a destroyed element;
// without a desktop no process is trusted.
Answer Ask(AXUIElementRef element, Request& request) {
    if (application_services::IsSystemWide(element)) {
        return {ErrorOfSystemWide(request.operation), {}};
    }
    request.element = application_services::ReferenceOf(element);
    platform_testing::InterruptOnce(platform_testing::Variant::interruptInCall);
    desktop_link::Transport& transport = desktop_link::CurrentTransport();
    double timeout = application_services::TimeoutOf(element);
    if (platform_testing::IsOn(platform_testing::Variant::hangForASecond)) {
        timeout = std::min(timeout, 1.0);
    }
    std::optional<Reply> reply = transport.Exchange(request, timeout);
    if (!reply) {
        return {transport.Unreachable() ? kAXErrorAPIDisabled : kAXErrorCannotComplete, {}};
    }
    const auto error = static_cast<AXError>(reply->error);
    return {error, *std::move(reply)};
}

// For the calls that name one attribute or action.
Answer AskAbout(Operation operation, AXUIElementRef element, CFStringRef name) {
    std::optional<std::string> text = TextOf(name);
    if (!IsElement(element) || !text) {
        return {kAXErrorIllegalArgument, {}};
    }
    Request request;
    request.operation = operation;
    request.names.push_back(*std::move(text));
    return Ask(element, request);
}

AXError CopyNames(Operation operation, AXUIElementRef element, CFArrayRef* names) {
    if (!IsElement(element) || names == nullptr) {
        return kAXErrorIllegalArgument;
    }
    Request request;
    request.operation = operation;
    const Answer answer = Ask(element, request);
    if (answer.error == kAXErrorSuccess) {
        *names = CreateArray(answer.reply.values);
    }
    return answer.error;
}

// The attribute's value, if there is one.
AXError ValueIn(const Answer& answer, const Value*& value) {
    if (answer.error != kAXErrorSuccess) {
        return answer.error;
    }
    if (answer.reply.values.size() != 1) {
        return kAXErrorFailure;
    }
    value = &answer.reply.values.front();
    const auto* error = std::get_if<ErrorValue>(&value->content);
    return error != nullptr ? static_cast<AXError>(error->code) : kAXErrorSuccess;
}

std::optional<std::vector<std::string>> TextsOf(CFArrayRef array) {
    if (array == nullptr || CFGetTypeID(array) != CFArrayGetTypeID()) {
        return std::nullopt;
    }
    const CFIndex count = CFArrayGetCount(array);
    std::vector<std::string> texts;
    texts.reserve(static_cast<std::size_t>(count));
    for (CFIndex index = 0; index < count; ++index) {
        std::optional<std::string> text = TextOf(CFArrayGetValueAtIndex(array, index));
        if (!text) {
            return std::nullopt;
        }
        texts.push_back(*std::move(text));
    }
    return texts;
}

}  // namespace

AXError AXUIElementCopyAttributeNames(AXUIElementRef element, CFArrayRef* names) {
    return CopyNames(Operation::attributeNames, element, names);
}

AXError AXUIElementCopyActionNames(AXUIElementRef element, CFArrayRef* names) {
    return CopyNames(Operation::actionNames, element, names);
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                      CFTypeRef* value) {
    if (value == nullptr) {
        return kAXErrorIllegalArgument;
    }
    const Answer answer = AskAbout(Operation::copyAttribute, element, attribute);
    const Value* found = nullptr;
    if (const AXError error = ValueIn(answer, found); error != kAXErrorSuccess) {
        return error;
    }
    const CFTypeRef object = CreateObject(*found);
    if (object == nullptr) {
        return kAXErrorFailure;
    }
    *value = object;
    return kAXErrorSuccess;
}

AXError AXUIElementCopyMultipleAttributeValues(AXUIElementRef element, CFArrayRef attributes,
                                               AXCopyMultipleAttributeOptions options,
                                               CFArrayRef* values) {
    std::optional<std::vector<std::string>> names = TextsOf(attributes);
    if (!IsElement(element) || values == nullptr || !names) {
        return kAXErrorIllegalArgument;
    }
    Request request;
    request.operation = Operation::copyAttributes;
    request.names = *std::move(names);
    request.flag = (options & kAXCopyMultipleAttributeOptionStopOnError) != 0;
    Answer answer = Ask(element, request);
    if (answer.error != kAXErrorSuccess) {
        return answer.error;
    }
    std::vector<Value>& found = answer.reply.values;
    if (request.flag) {
        for (const Value& value : found) {
            if (const auto* error = std::get_if<ErrorValue>(&value.content)) {
                return static_cast<AXError>(error->code);
            }
        }
    }
    if (platform_testing::IsOn(platform_testing::Variant::missingIsNull)) {
        for (Value& value : found) {
            if (std::holds_alternative<ErrorValue>(value.content)) {
                value = Value{};
            }
        }
    }
    // Passed on as the application answered: some applications return fewer values.
    *values = CreateArray(found);
    return kAXErrorSuccess;
}

AXError AXUIElementIsAttributeSettable(AXUIElementRef element, CFStringRef attribute,
                                       Boolean* settable) {
    if (settable == nullptr) {
        return kAXErrorIllegalArgument;
    }
    const Answer answer = AskAbout(Operation::isSettable, element, attribute);
    if (answer.error == kAXErrorSuccess) {
        *settable = answer.reply.flag;
    }
    return answer.error;
}

AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                     CFTypeRef value) {
    std::optional<std::string> name = TextOf(attribute);
    std::optional<Value> sent = application_services::ValueOf(value);
    if (!IsElement(element) || !name || !sent) {
        return kAXErrorIllegalArgument;
    }
    Request request;
    request.operation = Operation::setAttribute;
    request.names.push_back(*std::move(name));
    request.value = *std::move(sent);
    return Ask(element, request).error;
}

AXError AXUIElementPerformAction(AXUIElementRef element, CFStringRef action) {
    return AskAbout(Operation::performAction, element, action).error;
}
