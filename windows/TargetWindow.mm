#import <AppKit/AppKit.h>

#include <span>
#include <utility>

#include "VEKCommon/CLanguageSupport.h"
#include "VEKCommon/OwnedReference.h"
#include "driver/CVEK_UserSpaceDriver.h"
#include "windows/WindowAttributes.h"

namespace {

// The translations in the driver's current language, of whose tag only 16 bytes are used.
class CurrentLanguage {
  public:
    CurrentLanguage() : support_(Tag().text) {}

    // The title for a key; null when the key has no translation. Without a dictionary the key is
    // its own title. Not autoreleased: one is copied for every window and every candidate.
    OwnedReference<CFStringRef> CopyTitleForKey(const char* key) {
        const OwnedReference<CFStringRef> keyString(
            CFStringCreateWithCString(kCFAllocatorDefault, key, CFStringGetSystemEncoding()));
        if (!keyString) {
            return nullptr;
        }
        OwnedReference<CFStringRef> title(support_.CopyStringForKey(keyString.get()));
        if (support_.HasDictionary()) {
            static_cast<void>(Retained(title.get()).release());  // borrowed from the dictionary
        }
        const bool isText = title && CFGetTypeID(title.get()) == CFStringGetTypeID();
        return isText ? std::move(title) : nullptr;
    }

  private:
    static constexpr unsigned kTagLength = 16;

    // A tag of 16 bytes or more is copied without its terminator.
    struct Tag {
        Tag() { CVEK_UserSpaceDriver::GetCurrentLanguage(text, kTagLength); }
        char text[kTagLength + 1] = {};
    };

    CLanguageSupport support_;
};

// `targets` is a span or a TargetWindowList.
template <class Targets>
bool FindTarget(CVEK_UserSpaceDriver& driver, NSString* windowTitle, const Targets& targets,
                unsigned* index) {
    CurrentLanguage language;
    *index = 0;
    unsigned i = 0;
    for (const VEK_Driver_TargetWindowInfo& target : targets) {
        const auto title = language.CopyTitleForKey(target.windowName);
        if (title && driver.MatchWindowTitle(windowTitle, (NSString*)title.get(), true)) {
            *index = i;
            return true;
        }
        ++i;
    }
    return false;
}

// The first window of the list that matches any candidate wins; the order of the candidates only
// decides between those that match one window. A window without a readable title ends the search,
// even if a later window would match.
template <class Targets>
bool FindFrame(CVEK_UserSpaceDriver& driver, const Targets& targets, unsigned& index,
               CGPoint& position, CGSize& size) {
    AXUIElementRef found = nullptr;
    for (id window in driver.CopyApplicationWindowList(false, @"")) {
        NSString* title = (NSString*)CopyWindowTitle((CFTypeRef)window);
        if (title == nil) {
            return false;
        }
        unsigned candidate = 0;
        const bool matches = FindTarget(driver, title, targets, &candidate);
        [title release];
        if (matches) {
            index = candidate;
            found = (AXUIElementRef)window;
            break;
        }
    }
    if (found == nullptr) {
        return false;
    }
    if (const VEK_Driver_TargetWindowInfo& target = targets[index]; target.hasSubWindow) {
        // Looked up among all windows, from the start of the list.
        const auto subWindowTitle = CurrentLanguage().CopyTitleForKey(target.subWindowName);
        found = driver.GetWindowElementWithTitle((NSString*)subWindowTitle.get(), true);
    }
    if (found == nullptr) {
        return false;
    }
    CFRetain(found);
    const bool hasFrame = driver.GetPosAndSizeForWindowElement(found, position, size);
    CFRelease(found);
    return hasFrame;
}

}  // namespace

bool CVEK_UserSpaceDriver::GetTargetIndexForWindow(NSString* windowTitle,
                                                   VEK_Driver_TargetWindowInfo* targets,
                                                   unsigned count, unsigned* index) {
    return FindTarget(*this, windowTitle, std::span(targets, count), index);
}

bool CVEK_UserSpaceDriver::GetPosAndSizeForTargetWindow(VEK_Driver_TargetWindowInfo* targets,
                                                        unsigned count, unsigned& index,
                                                        CGPoint& position, CGSize& size) {
    return FindFrame(*this, std::span(targets, count), index, position, size);
}

bool CVEK_UserSpaceDriver::GetPosAndSizeForTargetWindow(const TargetWindowList& targets,
                                                        unsigned& index, CGPoint& position,
                                                        CGSize& size) {
    return FindFrame(*this, targets, index, position, size);
}
