#import <AppKit/AppKit.h>

#include "VEKCommon/CLanguageSupport.h"
#include "driver/CVEK_UserSpaceDriver.h"
#include "workspace/WindowAttributes.h"

namespace {

// The dictionary of the driver's current language, of whose tag the first 16 bytes count.
class CurrentLanguage {
  public:
    CurrentLanguage() : support_(Tag().text) {}

    // The title for a key, autoreleased; nil when the key has no translation. Without a dictionary
    // the key is its own title.
    NSString* TitleForKey(const char* key) {
        CFStringRef keyString =
            CFStringCreateWithCString(kCFAllocatorDefault, key, CFStringGetSystemEncoding());
        if (keyString == nullptr) {
            return nil;
        }
        id title = (id)support_.CopyStringForKey(keyString);
        CFRelease(keyString);
        if (support_.HasDictionary()) {
            [title retain];  // borrowed from the dictionary, which ends with this object
        }
        [title autorelease];
        return [title isKindOfClass:[NSString class]] ? title : nil;
    }

  private:
    static constexpr unsigned kTagLength = 16;

    // A tag of 16 bytes or more comes without its terminator.
    struct Tag {
        Tag() { CVEK_UserSpaceDriver::GetCurrentLanguage(text, kTagLength); }
        char text[kTagLength + 1] = {};
    };

    CLanguageSupport support_;
};

}  // namespace

bool CVEK_UserSpaceDriver::GetTargetIndexForWindow(NSString* windowTitle,
                                                   VEK_Driver_TargetWindowInfo* targets,
                                                   unsigned count, unsigned* index) {
    CurrentLanguage language;
    *index = 0;
    for (unsigned i = 0; i < count; ++i) {
        NSString* title = language.TitleForKey(targets[i].windowName);
        if (title != nil && MatchWindowTitle(windowTitle, title, true)) {
            *index = i;
            return true;
        }
    }
    return false;
}

// The first window of the list that matches any candidate wins; the order of the candidates only
// decides between those that match one window. One window without a readable title ends the search,
// even if a later window would match.
bool CVEK_UserSpaceDriver::GetPosAndSizeForTargetWindow(VEK_Driver_TargetWindowInfo* targets,
                                                        unsigned count, unsigned& index,
                                                        CGPoint& position, CGSize& size) {
    AXUIElementRef found = nullptr;
    for (id window in CopyApplicationWindowList(false, @"")) {
        NSString* title = (NSString*)CopyWindowTitle((CFTypeRef)window);
        if (title == nil) {
            return false;
        }
        unsigned candidate = 0;
        const bool matches = GetTargetIndexForWindow(title, targets, count, &candidate);
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
    if (targets[index].hasSubWindow) {
        // Looked up among all windows, from the start of the list.
        NSString* subWindowTitle = CurrentLanguage().TitleForKey(targets[index].subWindowName);
        found = GetWindowElementWithTitle(subWindowTitle, true);
    }
    if (found == nullptr) {
        return false;
    }
    CFRetain(found);
    const bool hasFrame = GetPosAndSizeForWindowElement(found, position, size);
    CFRelease(found);
    return hasFrame;
}
