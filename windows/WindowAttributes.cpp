#include "windows/WindowAttributes.h"

#include "VEKCommon/OwnedReference.h"
#include "accessibility/calls/ElementAttributes.h"

CFStringRef CopyWindowTitle(CFTypeRef window) {
    if (!IsElement(window)) {
        return nullptr;
    }
    return CopyStringAttribute(static_cast<AXUIElementRef>(window), kAXTitleAttribute).release();
}

bool CopyWindowGeometry(AXUIElementRef window, CFStringRef attribute, AXValueType type,
                        void* value) {
    const OwnedReference<CFTypeRef> copied = CopyAttribute(window, attribute);
    return copied && CFGetTypeID(copied.get()) == AXValueGetTypeID() &&
           AXValueGetValue(static_cast<AXValueRef>(copied.get()), type, value);
}
