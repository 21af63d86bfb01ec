// Attributes of a window, checked for their type: an application may answer with any type.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

// The AXTitle of an entry of a window list, owned by the caller; null when the entry is not an
// element, or its title cannot be read or is not a string.
CFStringRef CopyWindowTitle(CFTypeRef window);

// True, with the structure written to `value` (a CGPoint or a CGSize, as `type` says), when the
// attribute holds an AXValue of that type; else false, with `value` untouched.
bool CopyWindowGeometry(AXUIElementRef window, CFStringRef attribute, AXValueType type,
                        void* value);
