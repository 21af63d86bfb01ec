#include "accessibility/calls/ElementAttributes.h"

#include "accessibility/calls/AccessibilityCalls.h"

namespace {

bool IsOfType(CFTypeRef value, CFTypeID type) {
    return value != nullptr && CFGetTypeID(value) == type;
}

template <typename Reference>
OwnedReference<Reference> CopyTypedAttribute(AXUIElementRef element, CFStringRef name,
                                             CFTypeID type) {
    OwnedReference<CFTypeRef> value = CopyAttribute(element, name);
    if (!IsOfType(value.get(), type)) {
        return nullptr;
    }
    return OwnedReference<Reference>(static_cast<Reference>(value.release()));
}

template <typename Reference>
Reference TypedValueAt(CFArrayRef values, CFIndex index, CFTypeID type) {
    CFTypeRef value = ValueAt(values, index);
    return IsOfType(value, type) ? static_cast<Reference>(value) : nullptr;
}

}  // namespace

OwnedReference<CFTypeRef> CopyAttribute(AXUIElementRef element, CFStringRef name) {
    return ReadAttribute(element, name).ValueOrEmpty();
}

OwnedReference<CFStringRef> CopyStringAttribute(AXUIElementRef element, CFStringRef name) {
    return CopyTypedAttribute<CFStringRef>(element, name, CFStringGetTypeID());
}

// CFBoolean is a type of its own: a Boolean does not count as a number here.
OwnedReference<CFNumberRef> CopyNumberAttribute(AXUIElementRef element, CFStringRef name) {
    return CopyTypedAttribute<CFNumberRef>(element, name, CFNumberGetTypeID());
}

OwnedReference<CFArrayRef> CopyArrayAttribute(AXUIElementRef element, CFStringRef name) {
    return CopyTypedAttribute<CFArrayRef>(element, name, CFArrayGetTypeID());
}

OwnedReference<AXUIElementRef> CopyElementAttribute(AXUIElementRef element, CFStringRef name) {
    return CopyTypedAttribute<AXUIElementRef>(element, name, AXUIElementGetTypeID());
}

bool GetPointAttribute(AXUIElementRef element, CFStringRef name, CGPoint& point) {
    OwnedReference<AXValueRef> value =
        CopyTypedAttribute<AXValueRef>(element, name, AXValueGetTypeID());
    return value && AXValueGetValue(value.get(), kAXValueTypeCGPoint, &point);
}

OwnedReference<CFArrayRef> CopyAttributes(AXUIElementRef element, CFArrayRef names) {
    return ReadAttributes(element, names).ValueOrEmpty();
}

CFTypeRef ValueAt(CFArrayRef values, CFIndex index) {
    if (index < 0 || index >= CountOf(values)) {
        return nullptr;
    }
    return CFArrayGetValueAtIndex(values, index);
}

CFStringRef StringAt(CFArrayRef values, CFIndex index) {
    return TypedValueAt<CFStringRef>(values, index, CFStringGetTypeID());
}

CFArrayRef ArrayAt(CFArrayRef values, CFIndex index) {
    return TypedValueAt<CFArrayRef>(values, index, CFArrayGetTypeID());
}

AXUIElementRef ElementAt(CFArrayRef values, CFIndex index) {
    return TypedValueAt<AXUIElementRef>(values, index, AXUIElementGetTypeID());
}

CFIndex CountOf(CFArrayRef values) {
    return values != nullptr ? CFArrayGetCount(values) : 0;
}

bool IsElement(CFTypeRef object) {
    return IsOfType(object, AXUIElementGetTypeID());
}

SInt32 SInt32Value(CFNumberRef number) {
    SInt32 value = 0;
    CFNumberGetValue(number, kCFNumberSInt32Type, &value);
    return value;
}

bool SameText(CFStringRef text, CFStringRef other) {
    return text != nullptr && other != nullptr && CFEqual(text, other);
}
