// Attributes of accessibility elements, with their types checked.
//
// Another application answers these reads: an attribute may be missing, have any type, or be an
// array of anything. A value of another type than the one asked for counts as missing. Null
// arguments are legal and yield nothing.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include "VEKCommon/OwnedReference.h"

// One exchange with the element's application each. Null when the attribute cannot be read.
OwnedReference<CFTypeRef> CopyAttribute(AXUIElementRef element, CFStringRef name);
OwnedReference<CFStringRef> CopyStringAttribute(AXUIElementRef element, CFStringRef name);
OwnedReference<CFNumberRef> CopyNumberAttribute(AXUIElementRef element, CFStringRef name);
OwnedReference<CFArrayRef> CopyArrayAttribute(AXUIElementRef element, CFStringRef name);
OwnedReference<AXUIElementRef> CopyElementAttribute(AXUIElementRef element, CFStringRef name);

// One exchange. False, with `point` untouched, when the attribute is not a point.
bool GetPointAttribute(AXUIElementRef element, CFStringRef name, CGPoint& point);

// One exchange for all of `names`: an array that holds, at the index of each name, its value or a
// placeholder for a missing one. Null when the call fails.
OwnedReference<CFArrayRef> CopyAttributes(AXUIElementRef element, CFArrayRef names);

// The entry of an array at an index, borrowed from it; null when there is no such index.
CFTypeRef ValueAt(CFArrayRef values, CFIndex index);
CFStringRef StringAt(CFArrayRef values, CFIndex index);
CFArrayRef ArrayAt(CFArrayRef values, CFIndex index);
AXUIElementRef ElementAt(CFArrayRef values, CFIndex index);

CFIndex CountOf(CFArrayRef values);  // 0 for null

bool IsElement(CFTypeRef object);  // false for null

// The number as CFNumberGetValue converts it, truncated as it truncates what does not fit.
SInt32 SInt32Value(CFNumberRef number);

// Literal, case-sensitive, whole text. Nothing equals null.
bool SameText(CFStringRef text, CFStringRef other);
