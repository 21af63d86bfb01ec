// Accessibility elements as objects. Small, because searches make them by the hundred thousand.
#pragma once

#include <ApplicationServices/AXUIElement.h>

#include "platform/DesktopLink/Value.h"

namespace application_services {

// False for null and for objects of other types.
bool IsElement(CFTypeRef object);

// The caller releases it.
AXUIElementRef CreateElement(const desktop_link::ElementReference& reference);

// Of real elements only.
desktop_link::ElementReference ReferenceOf(AXUIElementRef element);

// The element that represents the whole system rather than a control.
bool IsSystemWide(AXUIElementRef element);

// Seconds that a call on this object waits for its answer.
double TimeoutOf(AXUIElementRef element);

}  // namespace application_services
