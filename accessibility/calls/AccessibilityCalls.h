// Every accessibility call that the driver makes. Each is one exchange with the application that
// the element belongs to, under the rule for applications that hang (ApplicationCall.h).
//
// A null element fails as elementGone, without an exchange. Main thread only.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>
#include <sys/types.h>

#include "VEKCommon/OwnedReference.h"
#include "accessibility/calls/CallResult.h"

// The element that stands for a process, whether the process exists or not: no exchange. Null when
// the platform cannot create it.
OwnedReference<AXUIElementRef> CreateApplicationElement(pid_t process);

// The attribute's value, of any type and never null.
CallResult<OwnedReference<CFTypeRef>> ReadAttribute(AXUIElementRef element, CFStringRef name);

// One exchange for all of `names`: an array that holds, at the index of each name, its value or a
// placeholder for a missing one.
CallResult<OwnedReference<CFArrayRef>> ReadAttributes(AXUIElementRef element, CFArrayRef names);

// The windows of an application, in its order. The entries may be of any type.
CallResult<OwnedReference<CFArrayRef>> ReadWindows(AXUIElementRef application);

// The children of an element, in its order. The entries may be of any type.
CallResult<OwnedReference<CFArrayRef>> ReadChildren(AXUIElementRef element);

CallResult<Done> SetAttribute(AXUIElementRef element, CFStringRef name, CFTypeRef value);
CallResult<Done> PerformAction(AXUIElementRef element, CFStringRef action);
CallResult<bool> IsAttributeSettable(AXUIElementRef element, CFStringRef name);
