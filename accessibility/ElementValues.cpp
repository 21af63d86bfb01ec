// Siblings in an array of elements, and the values of one element.
#include "VEKCommon/OwnedReference.h"
#include "accessibility/VEK_C_AXUtils.h"
#include "accessibility/calls/AccessibilityCalls.h"
#include "accessibility/calls/ElementAttributes.h"

namespace {

bool HasText(AXUIElementRef element, CFStringRef attribute, CFStringRef text) {
    return SameText(CopyStringAttribute(element, attribute).get(), text);
}

}  // namespace

AXUIElementRef VEK_C_AXUtils::CopySibling(CFArrayRef children, CFStringRef role,
                                          CFStringRef description) {
    for (CFIndex index = 0; index < CountOf(children); ++index) {
        AXUIElementRef element = ElementAt(children, index);
        if (HasText(element, kAXRoleAttribute, role) &&
            HasText(element, kAXDescriptionAttribute, description)) {
            return Retained(element).release();
        }
    }
    return nullptr;
}

AXUIElementRef VEK_C_AXUtils::CopySibling(CFArrayRef children, CFStringRef role) {
    for (CFIndex index = 0; index < CountOf(children); ++index) {
        AXUIElementRef element = ElementAt(children, index);
        if (HasText(element, kAXRoleAttribute, role)) {
            return element;
        }
    }
    return nullptr;
}

// Only numbers count: a text is not converted, even if it consists of digits.
SInt32 VEK_C_AXUtils::IntegerValueForElement(AXUIElementRef element, CFStringRef /*tag*/) {
    OwnedReference<CFNumberRef> value = CopyNumberAttribute(element, kAXValueAttribute);
    return value ? SInt32Value(value.get()) : 0;
}

CFStringRef VEK_C_AXUtils::CopyStringValueForElement(AXUIElementRef element) {
    return CopyStringAttribute(element, kAXValueAttribute).release();
}

// A text field accepts a new value only when it is confirmed.
bool VEK_C_AXUtils::SetStringValueForElement(AXUIElementRef element, CFStringRef text) {
    return SetAttribute(element, kAXValueAttribute, text) &&
           PerformAction(element, kAXConfirmAction);
}

CFStringRef VEK_C_AXUtils::CopyValueDescriptionForElement(AXUIElementRef element) {
    return CopyStringAttribute(element, kAXValueDescriptionAttribute).release();
}

CFStringRef VEK_C_AXUtils::CopyDescriptionForElement(AXUIElementRef element) {
    return CopyStringAttribute(element, kAXDescriptionAttribute).release();
}

// The query fails for a destroyed element; whether the attribute is settable does not matter.
bool VEK_C_AXUtils::ElementIsValid(AXUIElementRef element) {
    return static_cast<bool>(IsAttributeSettable(element, kAXIdentifierAttribute));
}
