#include "workspace/WindowAttributes.h"

CFStringRef CopyWindowTitle(CFTypeRef window) {
    if (CFGetTypeID(window) != AXUIElementGetTypeID()) {
        return nullptr;
    }
    CFTypeRef title = nullptr;
    if (AXUIElementCopyAttributeValue(static_cast<AXUIElementRef>(window), kAXTitleAttribute,
                                      &title) != kAXErrorSuccess) {
        return nullptr;
    }
    if (CFGetTypeID(title) != CFStringGetTypeID()) {
        CFRelease(title);
        return nullptr;
    }
    return static_cast<CFStringRef>(title);
}

bool CopyWindowGeometry(AXUIElementRef window, CFStringRef attribute, AXValueType type,
                        void* value) {
    CFTypeRef copied = nullptr;
    if (AXUIElementCopyAttributeValue(window, attribute, &copied) != kAXErrorSuccess) {
        return false;
    }
    const bool extracted = CFGetTypeID(copied) == AXValueGetTypeID() &&
                           AXValueGetValue(static_cast<AXValueRef>(copied), type, value);
    CFRelease(copied);
    return extracted;
}
