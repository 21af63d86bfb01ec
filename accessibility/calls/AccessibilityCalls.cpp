#include "accessibility/calls/AccessibilityCalls.h"

#include "accessibility/calls/ApplicationCall.h"

namespace {

// kAXErrorSuccess, or the error of `call`, which makes one call on the element.
template <typename Call>
AXError Error(AXUIElementRef element, const Call& call) {
    return element != nullptr ? CallApplication(element, call) : kAXErrorInvalidUIElement;
}

CallResult<Done> DoneOr(AXError error) {
    if (error != kAXErrorSuccess) {
        return FailureOf(error);
    }
    return Done();
}

CallResult<OwnedReference<CFArrayRef>> ReadArray(AXUIElementRef element, CFStringRef name) {
    CallResult<OwnedReference<CFTypeRef>> value = ReadAttribute(element, name);
    if (!value) {
        return value.Failure();
    }
    if (CFGetTypeID((*value).get()) != CFArrayGetTypeID()) {
        return CallFailure{CallFailureKind::wrongType};
    }
    return OwnedReference<CFArrayRef>(static_cast<CFArrayRef>((*value).release()));
}

}  // namespace

CallFailure FailureOf(AXError error) {
    switch (error) {
        case kAXErrorCannotComplete:
            return {CallFailureKind::timedOut, error};
        case kAXErrorInvalidUIElement:
            return {CallFailureKind::elementGone, error};
        case kAXErrorAttributeUnsupported:
        case kAXErrorActionUnsupported:
        case kAXErrorNoValue:
            return {CallFailureKind::notThere, error};
        default:
            return {CallFailureKind::refused, error};
    }
}

OwnedReference<AXUIElementRef> CreateApplicationElement(pid_t process) {
    return OwnedReference<AXUIElementRef>(AXUIElementCreateApplication(process));
}

CallResult<OwnedReference<CFTypeRef>> ReadAttribute(AXUIElementRef element, CFStringRef name) {
    CFTypeRef value = nullptr;
    const AXError error =
        Error(element, [&] { return AXUIElementCopyAttributeValue(element, name, &value); });
    if (error != kAXErrorSuccess) {
        return FailureOf(error);
    }
    if (value == nullptr) {
        return CallFailure{CallFailureKind::notThere};
    }
    return OwnedReference<CFTypeRef>(value);
}

CallResult<OwnedReference<CFArrayRef>> ReadAttributes(AXUIElementRef element, CFArrayRef names) {
    CFArrayRef values = nullptr;
    const AXError error = Error(element, [&] {
        return AXUIElementCopyMultipleAttributeValues(element, names, 0, &values);
    });
    if (error != kAXErrorSuccess) {
        return FailureOf(error);
    }
    return OwnedReference<CFArrayRef>(values);
}

CallResult<OwnedReference<CFArrayRef>> ReadWindows(AXUIElementRef application) {
    return ReadArray(application, kAXWindowsAttribute);
}

CallResult<OwnedReference<CFArrayRef>> ReadChildren(AXUIElementRef element) {
    return ReadArray(element, kAXChildrenAttribute);
}

CallResult<Done> SetAttribute(AXUIElementRef element, CFStringRef name, CFTypeRef value) {
    return DoneOr(
        Error(element, [&] { return AXUIElementSetAttributeValue(element, name, value); }));
}

CallResult<Done> PerformAction(AXUIElementRef element, CFStringRef action) {
    return DoneOr(Error(element, [&] { return AXUIElementPerformAction(element, action); }));
}

CallResult<bool> IsAttributeSettable(AXUIElementRef element, CFStringRef name) {
    Boolean settable = false;
    const AXError error =
        Error(element, [&] { return AXUIElementIsAttributeSettable(element, name, &settable); });
    if (error != kAXErrorSuccess) {
        return FailureOf(error);
    }
    return settable != 0;
}
