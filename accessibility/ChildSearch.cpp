// Searches in a given array of elements, without starting from the front application's windows.
#include <syslog.h>

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

constexpr CFIndex kIdentifierIndex = 2;

template <std::size_t kCount>
OwnedReference<CFArrayRef> CreateNames(const void* (&names)[kCount]) {
    return OwnedReference<CFArrayRef>(
        CFArrayCreate(kCFAllocatorDefault, names, kCount, &kCFTypeArrayCallBacks));
}

// Text fields are not among them, unlike in the search from the windows: the sets differ on
// purpose.
bool IsControlOfSearch(CFStringRef role) {
    return SameText(role, kAXButtonRole) || SameText(role, kAXCheckBoxRole) ||
           SameText(role, kAXTableRole) || SameText(role, kAXRadioGroupRole);
}

class SearchInArray : public DepthFirstSearch {
  public:
    SearchInArray(CFArrayRef attributeNames, CFStringRef identifier, CFStringRef role, bool debug)
        : DepthFirstSearch(attributeNames),
          identifier_(identifier),
          role_(role),
          anyValidRole_(SameText(role, kVEK_AXRole_AllValidRoles)),
          debug_(debug) {}

  private:
    void BeginLevel() override {
        if (debug_) {
            ConsoleLog(CFSTR("CopyChildWithID %@"), identifier_);
        }
    }

    void EndLevel(bool found) override {
        if (debug_ && !found) {
            ConsoleLog(CFSTR(" didn't find element with ID %@"), identifier_);
        }
    }

    void BeginChild(CFIndex /*index*/) override {}

    bool IsSought(AXUIElementRef /*child*/, CFIndex index, CFStringRef role,
                  CFArrayRef attributes) override {
        if (!(anyValidRole_ ? IsControlOfSearch(role) : SameText(role, role_))) {
            return false;
        }
        if (debug_) {
            ConsoleLog(CFSTR(" child with ID %@ role = %@"), ValueAt(attributes, kIdentifierIndex),
                       role);
        }
        CFStringRef identifier = StringAt(attributes, kIdentifierIndex);
        if (debug_ && identifier != nullptr) {
            ConsoleLog(CFSTR("  id = %@"), identifier);
        }
        bool sought = SameText(identifier, identifier_);
        if (debug_ && sought) {
            ConsoleLog(CFSTR("  returning element with id = %@ at index %ld"), identifier, index);
        }
        return sought;
    }

    void Found(AXUIElementRef /*element*/, CFIndex /*index*/) override {}

    void BeginDescent(CFStringRef role) override {
        if (debug_) {
            ConsoleLog(CFSTR("  found elem with role %@"), role);
        }
    }

    // This one line goes to the system log, at the emergency level.
    void ChildrenRead(CFIndex /*count*/) override {
        if (debug_) {
            syslog(LOG_EMERG, "  got children");
        }
    }

    void FoundBelow() override {
        if (debug_) {
            ConsoleLog(CFSTR("   recursion found element with id %@"), identifier_);
        }
    }

    CFStringRef identifier_;
    CFStringRef role_;
    bool anyValidRole_;
    bool debug_;
};

}  // namespace

bool CVEK_UserSpaceDriver::CopyChildWithID(CFArrayRef children, CFStringRef identifier,
                                           AXUIElementRef& element, CFStringRef role,
                                           bool /*passThrough*/, bool debug) {
    const OneWait wait;
    const void* names[] = {kAXRoleAttribute, kAXChildrenAttribute, kAXIdentifierAttribute};
    OwnedReference<CFArrayRef> attributeNames = CreateNames(names);
    SearchInArray search(attributeNames.get(), identifier, role, debug);
    OwnedReference<AXUIElementRef> found = search.Find(children);
    if (!found) {
        return false;
    }
    // The arrays that held the element are gone with the walk.
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
    // Written for every miss, that in an empty array included.
    if (debug) {
        ConsoleLog(CFSTR("     something went horribly wrong"));
    }
    return nullptr;
}

void CVEK_UserSpaceDriver::UncachePathToElementID(CFStringRef /*identifier*/) {}
