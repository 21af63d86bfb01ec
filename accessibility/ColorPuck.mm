// Finds a puck of the editing application's color board: a button on a fixed path of roles.
#import <Foundation/Foundation.h>

#include <span>
#include <utility>

#include "VEKCommon/Autoreleased.h"
#include "VEKCommon/OwnedReference.h"
#include "accessibility/calls/ApplicationCall.h"
#include "accessibility/calls/ElementAttributes.h"
#include "driver/CVEK_UserSpaceDriver.h"

namespace {

// The first element, depth-first, that is reached from `parent` by one child of each role in turn
// and has the identifier.
OwnedReference<AXUIElementRef> FindOnPath(AXUIElementRef parent, std::span<const CFStringRef> roles,
                                          CFStringRef identifier) {
    OwnedReference<CFArrayRef> children = CopyArrayAttribute(parent, kAXChildrenAttribute);
    for (CFIndex index = 0; index < CountOf(children.get()); ++index) {
        AXUIElementRef child = ElementAt(children.get(), index);
        if (!SameText(CopyStringAttribute(child, kAXRoleAttribute).get(), roles.front())) {
            continue;
        }
        if (roles.size() > 1) {
            if (auto found = FindOnPath(child, roles.subspan(1), identifier)) {
                return found;
            }
        } else if (SameText(CopyStringAttribute(child, kAXIdentifierAttribute).get(), identifier)) {
            return Retained(child);
        }
    }
    return nullptr;
}

}  // namespace

AXUIElementRef CVEK_UserSpaceDriver::GetColorPuckWithID(NSString* identifier) {
    const OneWait wait;
    const CFStringRef roles[] = {kAXSplitGroupRole, kAXGroupRole, kAXButtonRole};
    CFArrayRef windows = (CFArrayRef)CopyApplicationWindowList(false, @"");
    for (CFIndex index = 0; index < CountOf(windows); ++index) {
        if (auto found = FindOnPath(ElementAt(windows, index), roles, (CFStringRef)identifier)) {
            return Autoreleased<AXUIElementRef>(std::move(found));
        }
    }
    return nullptr;
}
