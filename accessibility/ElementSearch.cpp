// The search from the front application's windows down to one element.
#include <utility>

#include "VEKCommon/ConsoleLog.h"
#include "VEKCommon/OwnedReference.h"
#include "accessibility/DepthFirstSearch.h"
#include "accessibility/VEK_C_AXUtils.h"
#include "accessibility/calls/AccessibilityCalls.h"
#include "accessibility/calls/ElementAttributes.h"
#include "frontapplication/FrontApplication.h"

namespace {

constexpr pid_t kNoFrontProcess = -1;

bool HasFrontBundleIdentifier() {
    CFStringRef identifier = nullptr;
    return CFWorkspace_FrontApplicationBundleID(&identifier);
}

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
    const OwnedReference<AXUIElementRef> application = CreateApplicationElement(process);
    if (!application) {
        if (debug) {
            ConsoleLog(CFSTR("CopyApplicationWindowList %s couldn't create application\n"), tag);
        }
        return nullptr;
    }
    CallResult<OwnedReference<CFArrayRef>> windows = ReadWindows(application.get());
    if (!windows && windows.Failure().error != kAXErrorSuccess && debug) {
        ConsoleLog(CFSTR("CopyApplicationWindowList %s AXUIElementCopyAttributeValue err = %.8x\n"),
                   tag, windows.Failure().error);
    }
    return std::move(windows).ValueOrEmpty().release();
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
    TraceFromWindows trace(identifier, role, searchLevel_);
    AXUIElementRef element =
        FindElementInWindows(QueryFromWindows(identifier, role, sMultipleAttributes), windows.get(),
                             debug ? &trace : nullptr)
            .release();
    // Released first, so that the retain count that is logged does not include the list's
    // references.
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

AXUIElementRef VEK_C_AXUtils::CopyElement(CFStringRef, CFStringRef, CFStringRef, bool,
                                          const char*) {
    return nullptr;
}

bool VEK_C_AXUtils::CopyChild(AXUIElementRef& out, CFStringRef identifier, CFStringRef role,
                              CFArrayRef children, bool /*passThrough*/, bool debug) {
    TraceFromWindows trace(identifier, role, searchLevel_);
    OwnedReference<AXUIElementRef> found =
        FindElement(QueryFromWindows(identifier, role, sMultipleAttributes), children,
                    debug ? &trace : nullptr);
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
