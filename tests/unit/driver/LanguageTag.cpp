#include "tests/unit/driver/LanguageTag.h"

LanguageTag& LanguageTag::Current() {
    static LanguageTag current;
    return current;
}

extern "C" CFStringRef CFBundleCopyLocalizedString(CFBundleRef, CFStringRef, CFStringRef,
                                                   CFStringRef) {
    LanguageTag& current = LanguageTag::Current();
    current.asked.push_back(CFAbsoluteTimeGetCurrent());
    if (current.whenAsked) {
        current.whenAsked();
    }
    return current.text ? CFStringCreateWithCString(kCFAllocatorDefault, current.text->c_str(),
                                                    kCFStringEncodingUTF8)
                        : nullptr;
}
