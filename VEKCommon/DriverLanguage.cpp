// The driver's language tag: taken from its own bundle, reported to the companion once.

#include <cstring>

#include "VEKCommon/MessageCodes.h"
#include "driver/CVEK_UserSpaceDriver.h"

// The result does not depend on whether the companion received the tag.
bool CVEK_UserSpaceDriver::GetLocale() {
    CFStringRef tag = CFBundleCopyLocalizedString(CFBundleGetMainBundle(), CFSTR("VEKLanguage"),
                                                  CFSTR("VEKLanguage"), nullptr);
    if (tag == nullptr) {
        return false;
    }
    char text[sizeof language];
    const bool converted = CFStringGetCString(tag, text, sizeof text, CFStringGetSystemEncoding());
    CFRelease(tag);
    if (converted) {
        memcpy(language, text, strlen(text) + 1);
        SendMessage(kJSLg, reinterpret_cast<unsigned char*>(text), strlen(text) + 1, false,
                    nullptr);
    }
    return converted;
}

void CVEK_UserSpaceDriver::GetCurrentLanguage(char* out, unsigned length) {
    if (sSelf != nullptr) {
        strncpy(out, sSelf->language, length);
    }
}
