// Attributes of accessibility elements, with their types checked.
//
// Another application answers these reads: an attribute may be missing, of any type, or an array of
// anything. What is not of the type asked for counts as not there. Null arguments are legal and
// yield nothing.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include "VEKCommon/OwnedReference.h"

// One exchange with the element's application each. Null when the attribute cannot be had.
OwnedReference<CFTypeRef> CopyAttribute(AXUIElementRef element, CFStringRef name);
OwnedReference<CFStringRef> CopyStringAttribute(AXUIElementRef element, CFStringRef name);
OwnedReference<CFNumberRef> CopyNumberAttribute(AXUIElementRef element, CFStringRef name);
OwnedReference<CFArrayRef> CopyArrayAttribute(AXUIElementRef element, CFStringRef name);
OwnedReference<AXUIElementRef> CopyElementAttribute(AXUIElementRef element, CFStringRef name);

// One exchange. False, and `point` untouched, when the attribute is no point.
bool GetPointAttribute(AXUIElementRef element, CFStringRef name, CGPoint& point);

// One exchange for all of `names`: an array with a value, or what stands for a missing one, at the
// index of each name. Null when the call fails.
OwnedReference<CFArrayRef> CopyAttributes(AXUIElementRef element, CFArrayRef names);

// What an array holds at an index, borrowed from it; null when there is no such index.
CFTypeRef ValueAt(CFArrayRef values, CFIndex index);
CFStringRef StringAt(CFArrayRef values, CFIndex index);
CFArrayRef ArrayAt(CFArrayRef values, CFIndex index);
AXUIElementRef ElementAt(CFArrayRef values, CFIndex index);

CFIndex CountOf(CFArrayRef values);  // 0 for null

// The number as CFNumberGetValue converts it; what does not fit is cut as it cuts it.
SInt32 SInt32Value(CFNumberRef number);

// Literal, case-sensitive, whole text. Nothing equals null.
bool SameText(CFStringRef text, CFStringRef other);
