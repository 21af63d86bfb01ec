// What requests do to one control of the front application, named by its identifier.
#include "VEKCommon/Autoreleased.h"
#include "VEKCommon/OwnedReference.h"
#include "accessibility/VersionProfiles.h"
#include "accessibility/calls/AccessibilityCalls.h"
#include "accessibility/calls/ElementAttributes.h"
#include "driver/CVEK_UserSpaceDriver.h"

namespace {

// The point reported for a control lies this far right of and below its top left corner, in points.
constexpr double kOffsetIntoElement = 17.0;

OwnedReference<AXUIElementRef> FindElement(VEK_C_AXUtils& axUtils, CFStringRef identifier,
                                           CFStringRef role) {
    return OwnedReference<AXUIElementRef>(axUtils.CopyElement(identifier, role, false, ""));
}

bool Press(AXUIElementRef element) {
    return static_cast<bool>(PerformAction(element, kAXPressAction));
}

}  // namespace

CFStringRef CVEK_UserSpaceDriver::GetStringValueOfElementWithID(CFStringRef identifier) {
    auto element = FindElement(axUtils, identifier, kVEK_AXRole_AllValidRoles);
    if (!element) {
        return nullptr;
    }
    return Autoreleased<CFStringRef>(
        OwnedReference<CFStringRef>(axUtils.CopyStringValueForElement(element.get())));
}

// The result of setting the value is deliberately discarded: false does not mean failure.
bool CVEK_UserSpaceDriver::SetIntValueAsStringOfElementWithID(CFStringRef identifier, int value) {
    auto element = FindElement(axUtils, identifier, kAXTextFieldRole);
    if (element) {
        OwnedReference<CFStringRef> text(
            CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%d"), value));
        axUtils.SetStringValueForElement(element.get(), text.get());
    }
    return false;
}

bool CVEK_UserSpaceDriver::GetValueOfElementWithID(CFStringRef identifier, unsigned& value) {
    auto element = FindElement(axUtils, identifier, kVEK_AXRole_AllValidRoles);
    if (!element) {
        return false;
    }
    value = static_cast<unsigned>(axUtils.IntegerValueForElement(element.get(), CFSTR("")));
    return true;
}

bool CVEK_UserSpaceDriver::GetPositionOfElementWithID(CFStringRef identifier, CGPoint& point) {
    axUtils.SetDebugLevel(0);
    auto element = FindElement(axUtils, identifier, kVEK_AXRole_AllValidRoles);
    CGPoint position;
    if (!GetPointAttribute(element.get(), kAXPositionAttribute, position)) {
        return false;
    }
    // This one control is addressed at its corner, from 10.3 on.
    bool atCorner = fcpxProfile >= kProfile10_3 && SameText(identifier, CFSTR("_NS:128"));
    if (!atCorner) {
        position.x += kOffsetIntoElement;
        position.y += kOffsetIntoElement;
    }
    point = position;
    return true;
}

bool CVEK_UserSpaceDriver::PressButtonWithID(CFStringRef identifier) {
    auto element = FindElement(axUtils, identifier, kVEK_AXRole_AllValidRoles);
    return element && Press(element.get());
}

bool CVEK_UserSpaceDriver::GetValueOfAXRadioGroupWithID(CFStringRef identifier, unsigned& value) {
    auto group = FindElement(axUtils, identifier, kAXRadioGroupRole);
    OwnedReference<CFArrayRef> children = CopyArrayAttribute(group.get(), kAXChildrenAttribute);
    for (CFIndex index = 0; index < CountOf(children.get()); ++index) {
        OwnedReference<CFNumberRef> selected =
            CopyNumberAttribute(ElementAt(children.get(), index), kAXValueAttribute);
        if (selected && SInt32Value(selected.get()) != 0) {
            value = static_cast<unsigned>(index);
            return true;
        }
    }
    return false;
}

// Deliberately releases neither the radio group nor its children, on any path.
bool CVEK_UserSpaceDriver::SetValueOfAXRadioGroupWithID(CFStringRef identifier, unsigned index) {
    AXUIElementRef group = FindElement(axUtils, identifier, kAXRadioGroupRole).release();
    CFArrayRef children = CopyArrayAttribute(group, kAXChildrenAttribute).release();
    AXUIElementRef child = ElementAt(children, static_cast<CFIndex>(index));
    return child != nullptr && Press(child);
}

bool CVEK_UserSpaceDriver::GetParentPositionOfElementWithID(CFStringRef identifier,
                                                            CGPoint& point) {
    auto element = FindElement(axUtils, identifier, kVEK_AXRole_AllValidRoles);
    OwnedReference<AXUIElementRef> parent = CopyElementAttribute(element.get(), kAXParentAttribute);
    return GetPointAttribute(parent.get(), kAXPositionAttribute, point);
}
