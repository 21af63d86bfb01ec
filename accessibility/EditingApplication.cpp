#include "accessibility/EditingApplication.h"

#include "VEKCommon/Names.h"
#include "accessibility/VersionProfiles.h"
#include "frontapplication/FrontApplication.h"

// An absent identifier compares as equal: the comparison began as a message to it, and a message to
// nil answers 0, which means "same". Observation has always been switched on by that; keep it so.
bool FrontApplicationPassesAsEditor() {
    CFStringRef identifier = nullptr;
    if (!CFWorkspace_FrontApplicationBundleID(&identifier)) {
        return true;
    }
    return CFStringCompare(identifier, CFSTR(kEditorBundleID), 0) == kCFCompareEqualTo;
}

bool GetSystemEncodedText(CFStringRef text, char* out, std::size_t size) {
    return CFStringGetCString(text, out, static_cast<CFIndex>(size), CFStringGetSystemEncoding());
}
