// Attributes of a window, checked for their type: an application can answer with anything.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

// The AXTitle of an entry of a window list, owned by the caller; null when the entry is no element
// or its title cannot be read or is no text.
CFStringRef CopyWindowTitle(CFTypeRef window);

// Writes `value` only when the attribute holds an AXValue of that type.
bool CopyWindowGeometry(AXUIElementRef window, CFStringRef attribute, AXValueType type,
                        void* value);
