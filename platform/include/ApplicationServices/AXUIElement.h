// Controls of other applications, and the calls on them.
//
// Every call that takes an element and is not said to be local is one message to the element's
// application and waits for its answer, without running the run loop. Results common to all of
// them:
//   kAXErrorIllegalArgument   a null pointer, or an object of a wrong type
//   kAXErrorInvalidUIElement  the element is destroyed, or no process has its process id
//   kAXErrorCannotComplete    no answer within the time-out: the application hangs, or went away
//   kAXErrorAPIDisabled       this process is not trusted
// On failure the caller's variable is not written.
#pragma once

#include <ApplicationServices/AXError.h>
#include <CoreFoundation/CoreFoundation.h>
#include <sys/types.h>

using AXUIElementRef = const struct __AXUIElement*;

// Observers are not part of this layer; the names exist for declarations.
using AXObserverRef = struct __AXObserver*;
using AXObserverCallback = void (*)(AXObserverRef observer, AXUIElementRef element,
                                    CFStringRef notification, void* refcon);
using AXObserverCallbackWithInfo = void (*)(AXObserverRef observer, AXUIElementRef element,
                                            CFStringRef notification, CFDictionaryRef info,
                                            void* refcon);

using AXCopyMultipleAttributeOptions = UInt32;
enum : AXCopyMultipleAttributeOptions { kAXCopyMultipleAttributeOptionStopOnError = 0x1 };

extern "C" {

// Key of AXIsProcessTrustedWithOptions: whether the system may prompt the user.
extern CFStringRef kAXTrustedCheckOptionPrompt;

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options);  // null: no prompt

CFTypeID AXUIElementGetTypeID(void);

// Local: makes no contact, so it returns an object for any process id.
AXUIElementRef AXUIElementCreateApplication(pid_t pid);
AXUIElementRef AXUIElementCreateSystemWide(void);

// Local: the process that the element belongs to, alive or not. 0 for the system-wide element.
AXError AXUIElementGetPid(AXUIElementRef element, pid_t* pid);

AXError AXUIElementCopyAttributeNames(AXUIElementRef element, CFArrayRef* names);
AXError AXUIElementCopyActionNames(AXUIElementRef element, CFArrayRef* names);

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                      CFTypeRef* value);

// One value per name, in order; in place of one that cannot be read, an AXValue with its
// error. With kAXCopyMultipleAttributeOptionStopOnError the first such error is the result instead.
// An application that misbehaves can return fewer values, or none.
AXError AXUIElementCopyMultipleAttributeValues(AXUIElementRef element, CFArrayRef attributes,
                                               AXCopyMultipleAttributeOptions options,
                                               CFArrayRef* values);

AXError AXUIElementIsAttributeSettable(AXUIElementRef element, CFStringRef attribute,
                                       Boolean* settable);
AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                     CFTypeRef value);
AXError AXUIElementPerformAction(AXUIElementRef element, CFStringRef action);

// Local. Seconds; 0 goes back to the default, less is an illegal argument. On the system-wide
// element it applies to the whole process, on another to that object only, not to objects
// equal to it.
AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float timeoutInSeconds);

}  // extern "C"
