#include "accessibility/EditingApplication.h"

#include "VEKCommon/Names.h"
#include "accessibility/VersionProfiles.h"
#include "frontapplication/FrontApplication.h"

// An absent identifier deliberately compares as equal and switches observation on: the comparison
// stands for a message to the identifier, and a message to nil returns 0, which means "same".
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
