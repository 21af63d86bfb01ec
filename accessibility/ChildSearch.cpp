// Searches in a given array of elements, without starting from the front application's windows.
#include <cstddef>
#include <utility>

#include "VEKCommon/Autoreleased.h"
#include "VEKCommon/ConsoleLog.h"
#include "VEKCommon/OwnedReference.h"
#include "accessibility/DepthFirstSearch.h"
#include "accessibility/calls/ApplicationCall.h"
#include "accessibility/calls/ElementAttributes.h"
#include "driver/CVEK_UserSpaceDriver.h"

namespace {

template <std::size_t kCount>
OwnedReference<CFArrayRef> CreateNames(const void* (&names)[kCount]) {
    return OwnedReference<CFArrayRef>(
        CFArrayCreate(kCFAllocatorDefault, names, kCount, &kCFTypeArrayCallBacks));
}

}  // namespace

bool CVEK_UserSpaceDriver::CopyChildWithID(CFArrayRef children, CFStringRef identifier,
                                           AXUIElementRef& element, CFStringRef role,
                                           bool /*passThrough*/, bool debug) {
    const OneWait wait;
    const void* names[] = {kAXRoleAttribute, kAXChildrenAttribute, kAXIdentifierAttribute};
    OwnedReference<CFArrayRef> attributeNames = CreateNames(names);
    TraceInArray trace(identifier);
    OwnedReference<AXUIElementRef> found = FindElement(
        QueryInArray(identifier, role, attributeNames.get()), children, debug ? &trace : nullptr);
    if (!found) {
        return false;
    }
    // The arrays that held the element were released with the walk.
    element = Autoreleased<AXUIElementRef>(std::move(found));
    return true;
}

AXUIElementRef CVEK_UserSpaceDriver::CopyChildWithRoleAndDescription(CFArrayRef children,
                                                                     CFStringRef role,
                                                                     CFStringRef description,
                                                                     bool debug) {
    const OneWait wait;
    const void* names[] = {kAXRoleAttribute, kAXDescriptionAttribute};
    OwnedReference<CFArrayRef> attributeNames = CreateNames(names);
    if (debug && children == nullptr) {
        ConsoleLog(CFSTR("CopyChildWithRoleAndDescription children = NULL"));
    }
    CFIndex childCount = CountOf(children);
    if (debug) {
        ConsoleLog(CFSTR("childCount = %ld"), childCount);
    }
    for (CFIndex index = 0; index < childCount; ++index) {
        if (debug) {
            ConsoleLog(CFSTR(" element %ld = %p"), index, ValueAt(children, index));
        }
        AXUIElementRef child = ElementAt(children, index);
        OwnedReference<CFArrayRef> attributes = CopyAttributes(child, attributeNames.get());
        if (debug && CountOf(attributes.get()) > 0) {
            ConsoleLog(CFSTR("  got multiple values"));
        }
        CFStringRef childRole = StringAt(attributes.get(), 0);
        if (debug && childRole != nullptr) {
            ConsoleLog(CFSTR("   elem %ld: got role %@"), index, childRole);
        }
        if (SameText(childRole, role) && SameText(StringAt(attributes.get(), 1), description)) {
            return Retained(child).release();
        }
    }
    // Logged for every miss, also in an empty array.
    if (debug) {
        ConsoleLog(CFSTR("     something went horribly wrong"));
    }
    return nullptr;
}

void CVEK_UserSpaceDriver::UncachePathToElementID(CFStringRef /*identifier*/) {}
