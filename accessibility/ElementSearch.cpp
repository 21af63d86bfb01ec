// The search from the front application's windows down to one element.
#include "VEKCommon/ConsoleLog.h"
#include "VEKCommon/OwnedReference.h"
#include "accessibility/DepthFirstSearch.h"
#include "accessibility/VEK_C_AXUtils.h"
#include "accessibility/calls/ApplicationCall.h"
#include "accessibility/calls/ElementAttributes.h"
#include "frontapplication/FrontApplication.h"

namespace {

constexpr pid_t kNoFrontProcess = -1;

// Where sMultipleAttributes holds what DepthFirstSearch leaves to the search.
constexpr CFIndex kIdentifierIndex = 2;
constexpr CFIndex kSubroleIndex = 3;

bool HasFrontBundleIdentifier() {
    CFStringRef identifier = nullptr;
    return CFWorkspace_FrontApplicationBundleID(&identifier);
}

bool IsRequestableControl(CFStringRef role) {
    return SameText(role, kAXButtonRole) || SameText(role, kAXCheckBoxRole) ||
           SameText(role, kAXTableRole) || SameText(role, kAXTextFieldRole) ||
           SameText(role, kAXRadioGroupRole);
}

class SearchByIdentifierAndRole : public DepthFirstSearch {
  public:
    SearchByIdentifierAndRole(CFArrayRef attributeNames, CFStringRef identifier, CFStringRef role,
                              unsigned int& level, bool debug)
        : DepthFirstSearch(attributeNames),
          identifier_(identifier),
          role_(role),
          anyValidRole_(SameText(role, kVEK_AXRole_AllValidRoles)),
          level_(level),
          debug_(debug) {}

  private:
    void BeginLevel() override {
        if (debug_) {
            ConsoleLog(CFSTR("CopyChild (%@, %@) level = %d"), identifier_, role_, level_);
        }
        ++level_;
    }

    void EndLevel(bool /*found*/) override { --level_; }

    void BeginChild(CFIndex index) override {
        if (debug_) {
            ConsoleLog(CFSTR("  got Child %lu"), index);
        }
    }

    bool IsSought(AXUIElementRef /*child*/, CFIndex index, CFStringRef role,
                  CFArrayRef attributes) override {
        if (!IsCandidate(role, attributes)) {
            if (debug_) {
                ConsoleLog(CFSTR("        role %@ is not valid"), role);
            }
            return false;
        }
        if (debug_) {
            ConsoleLog(CFSTR("        role %@ is valid"), role);
        }
        return HasSoughtIdentifier(index, StringAt(attributes, kIdentifierIndex));
    }

    // A search field is never meant, whichever role is asked for.
    bool IsCandidate(CFStringRef role, CFArrayRef attributes) const {
        bool requested = anyValidRole_ ? IsRequestableControl(role) : SameText(role, role_);
        return requested && !(SameText(role, kAXTextFieldRole) &&
                              SameText(StringAt(attributes, kSubroleIndex), kAXSearchFieldSubrole));
    }

    bool HasSoughtIdentifier(CFIndex index, CFStringRef identifier) const {
        if (identifier == nullptr) {
            if (debug_) {
                ConsoleLog(CFSTR("            child has no ID"));
            }
            return false;
        }
        if (debug_) {
            ConsoleLog(CFSTR("          checking id %@"), identifier);
        }
        bool same = SameText(identifier, identifier_);
        if (same && debug_) {
            ConsoleLog(CFSTR("  returning element with id = %@ at index %ld"), identifier, index);
        }
        return same;
    }

    void Found(AXUIElementRef element, CFIndex index) override {
        if (debug_) {
            ConsoleLog(CFSTR("  returning element with id = %@ at index %ld retain count = %ld"),
                       identifier_, index, CFGetRetainCount(element));
        }
    }

    void BeginDescent(CFStringRef /*role*/) override {
        if (debug_) {
            ConsoleLog(CFSTR("            wrong element- checking children"));
        }
    }

    void ChildrenRead(CFIndex count) override {
        if (debug_) {
            ConsoleLog(CFSTR("             there are %ld children"), count);
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
    unsigned int& level_;
    bool debug_;
};

}  // namespace

CFArrayRef VEK_C_AXUtils::copyFrontApplicationWindowList(bool debug, const char* tag) {
    if (debug) {
        ConsoleLog(CFSTR("copyFrontApplicationWindowList %s"), tag);
    }
    if (!HasFrontBundleIdentifier()) {
        return nullptr;
    }
    if (debug) {
        ConsoleLog(CFSTR("%s rebuilding list"), tag);
    }
    pid_t process = CFWorkspace_CurrentFrontApplicationPID();
    if (process == kNoFrontProcess) {
        return nullptr;
    }
    OwnedReference<AXUIElementRef> application(AXUIElementCreateApplication(process));
    if (!application) {
        if (debug) {
            ConsoleLog(CFSTR("CopyApplicationWindowList %s couldn't create application\n"), tag);
        }
        return nullptr;
    }
    CFTypeRef value = nullptr;
    AXError error = CallApplication(application.get(), [&] {
        return AXUIElementCopyAttributeValue(application.get(), kAXWindowsAttribute, &value);
    });
    if (error != kAXErrorSuccess) {
        if (debug) {
            ConsoleLog(CFSTR("CopyApplicationWindowList %s AXUIElementCopyAttributeValue err = "
                             "%.8x\n"),
                       tag, error);
        }
        return nullptr;
    }
    OwnedReference<CFTypeRef> windows(value);
    bool isArray = windows && CFGetTypeID(windows.get()) == CFArrayGetTypeID();
    return isArray ? static_cast<CFArrayRef>(windows.release()) : nullptr;
}

AXUIElementRef VEK_C_AXUtils::CopyElement(CFStringRef identifier, CFStringRef role, bool debug,
                                          const char* tag) {
    if (debug) {
        ConsoleLog(CFSTR("(%s) copyElement(%@)"), tag, identifier);
    }
    searchLevel_ = 0;
    if (!HasFrontBundleIdentifier()) {
        return nullptr;
    }
    OwnedReference<CFArrayRef> windows(copyFrontApplicationWindowList(false, ""));
    if (!windows) {
        if (debug) {
            ConsoleLog(CFSTR("  couldn't get application windows (%@)"), identifier);
        }
        return nullptr;
    }
    if (debug) {
        ConsoleLog(CFSTR("  rebuilding path"));
    }
    AXUIElementRef element = CopyElementInWindows(windows.get(), identifier, role, debug);
    // Released before the line below: the count it tells is then the caller's reference, and those
    // of whoever else keeps the element.
    windows.reset();
    if (debug && element != nullptr) {
        ConsoleLog(CFSTR("    ***FOUND IT (%@)  retain count %ld***"), identifier,
                   CFGetRetainCount(element));
    }
    if (debug && element == nullptr) {
        ConsoleLog(CFSTR("   element %@ not found!!!"), identifier);
    }
    return element;
}

AXUIElementRef VEK_C_AXUtils::CopyElementInWindows(CFArrayRef windows, CFStringRef identifier,
                                                   CFStringRef role, bool debug) {
    for (CFIndex index = 0; index < CFArrayGetCount(windows); ++index) {
        OwnedReference<CFArrayRef> children =
            CopyArrayAttribute(ElementAt(windows, index), kAXChildrenAttribute);
        AXUIElementRef element = nullptr;
        if (children && CopyChild(element, identifier, role, children.get(), false, debug)) {
            return element;
        }
    }
    return nullptr;
}

AXUIElementRef VEK_C_AXUtils::CopyElement(CFStringRef, CFStringRef, CFStringRef, bool,
                                          const char*) {
    return nullptr;
}

bool VEK_C_AXUtils::CopyChild(AXUIElementRef& out, CFStringRef identifier, CFStringRef role,
                              CFArrayRef children, bool /*passThrough*/, bool debug) {
    SearchByIdentifierAndRole search(sMultipleAttributes, identifier, role, searchLevel_, debug);
    OwnedReference<AXUIElementRef> found = search.Find(children);
    if (!found) {
        return false;
    }
    out = found.release();
    return true;
}

AXUIElementRef VEK_C_AXUtils::CopyChild(signed long index, CFStringRef /*unused*/,
                                        CFStringRef identifier, CFStringRef role) {
    if (!HasFrontBundleIdentifier()) {
        return nullptr;
    }
    OwnedReference<AXUIElementRef> element(CopyElement(identifier, role, false, ""));
    OwnedReference<CFArrayRef> children = CopyArrayAttribute(element.get(), kAXChildrenAttribute);
    return Retained(ElementAt(children.get(), index)).release();
}
