// What callers rely on at compile time, checked from C++ and from Objective-C++ alike: the
// signatures, types and constants of the real frameworks.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <type_traits>

#define HAS_SIGNATURE(function, ...) static_assert(std::is_same_v<decltype(function), __VA_ARGS__>)

HAS_SIGNATURE(AXIsProcessTrustedWithOptions, Boolean(CFDictionaryRef));
HAS_SIGNATURE(AXUIElementCreateApplication, AXUIElementRef(pid_t));
HAS_SIGNATURE(AXUIElementCreateSystemWide, AXUIElementRef());
HAS_SIGNATURE(AXUIElementCopyAttributeValue, AXError(AXUIElementRef, CFStringRef, CFTypeRef*));
HAS_SIGNATURE(AXUIElementCopyMultipleAttributeValues,
              AXError(AXUIElementRef, CFArrayRef, AXCopyMultipleAttributeOptions, CFArrayRef*));
HAS_SIGNATURE(AXUIElementSetAttributeValue, AXError(AXUIElementRef, CFStringRef, CFTypeRef));
HAS_SIGNATURE(AXUIElementIsAttributeSettable, AXError(AXUIElementRef, CFStringRef, Boolean*));
HAS_SIGNATURE(AXUIElementPerformAction, AXError(AXUIElementRef, CFStringRef));
HAS_SIGNATURE(AXUIElementCopyAttributeNames, AXError(AXUIElementRef, CFArrayRef*));
HAS_SIGNATURE(AXUIElementCopyActionNames, AXError(AXUIElementRef, CFArrayRef*));
HAS_SIGNATURE(AXUIElementGetPid, AXError(AXUIElementRef, pid_t*));
HAS_SIGNATURE(AXUIElementSetMessagingTimeout, AXError(AXUIElementRef, float));
HAS_SIGNATURE(AXUIElementGetTypeID, CFTypeID());
HAS_SIGNATURE(AXValueCreate, AXValueRef(AXValueType, const void*));
HAS_SIGNATURE(AXValueGetValue, Boolean(AXValueRef, AXValueType, void*));
HAS_SIGNATURE(AXValueGetType, AXValueType(AXValueRef));
HAS_SIGNATURE(AXValueGetTypeID, CFTypeID());

HAS_SIGNATURE(CGEventCreate, CGEventRef(CGEventSourceRef));
HAS_SIGNATURE(CGEventSourceCreate, CGEventSourceRef(CGEventSourceStateID));
HAS_SIGNATURE(CGEventCreateKeyboardEvent, CGEventRef(CGEventSourceRef, CGKeyCode, bool));
HAS_SIGNATURE(CGEventCreateMouseEvent,
              CGEventRef(CGEventSourceRef, CGEventType, CGPoint, CGMouseButton));
HAS_SIGNATURE(CGEventCreateScrollWheelEvent,
              CGEventRef(CGEventSourceRef, CGScrollEventUnit, std::uint32_t, std::int32_t, ...));
HAS_SIGNATURE(CGEventSetFlags, void(CGEventRef, CGEventFlags));
HAS_SIGNATURE(CGEventGetFlags, CGEventFlags(CGEventRef));
HAS_SIGNATURE(CGEventPost, void(CGEventTapLocation, CGEventRef));
HAS_SIGNATURE(CGEventGetType, CGEventType(CGEventRef));
HAS_SIGNATURE(CGEventGetLocation, CGPoint(CGEventRef));
HAS_SIGNATURE(CGEventGetIntegerValueField, std::int64_t(CGEventRef, CGEventField));
HAS_SIGNATURE(CGEventSourceKeyState, bool(CGEventSourceStateID, CGKeyCode));
HAS_SIGNATURE(CGEventSourceButtonState, bool(CGEventSourceStateID, CGMouseButton));
HAS_SIGNATURE(CGEventGetTypeID, CFTypeID());
HAS_SIGNATURE(CGEventSourceGetTypeID, CFTypeID());

#undef HAS_SIGNATURE

// Elements and values are references to constant structures, so array entries cast to them; events
// are not.
template <typename Reference>
inline constexpr bool kIsConstant = std::is_const_v<std::remove_pointer_t<Reference>>;
static_assert(kIsConstant<AXUIElementRef> && kIsConstant<AXValueRef>);
static_assert(!kIsConstant<AXObserverRef> && !kIsConstant<CGEventRef> &&
              !kIsConstant<CGEventSourceRef>);
static_assert(std::is_same_v<AXObserverCallback,
                             void (*)(AXObserverRef, AXUIElementRef, CFStringRef, void*)>);
static_assert(
    std::is_same_v<AXObserverCallbackWithInfo,
                   void (*)(AXObserverRef, AXUIElementRef, CFStringRef, CFDictionaryRef, void*)>);
static_assert(std::is_same_v<decltype(kAXTrustedCheckOptionPrompt), CFStringRef>);

// Enumerations need a cast from an integer; option sets are integers.
template <typename Enumeration, typename Underlying>
inline constexpr bool kIsEnumeration =
    std::is_enum_v<Enumeration>&& std::is_same_v<std::underlying_type_t<Enumeration>, Underlying>;
static_assert(kIsEnumeration<AXError, SInt32>);
static_assert(kIsEnumeration<AXValueType, UInt32>);
static_assert(kIsEnumeration<CGEventType, std::uint32_t>);
static_assert(kIsEnumeration<CGMouseButton, std::uint32_t>);
static_assert(kIsEnumeration<CGEventTapLocation, std::uint32_t>);
static_assert(kIsEnumeration<CGScrollEventUnit, std::uint32_t>);
static_assert(kIsEnumeration<CGEventSourceStateID, std::int32_t>);
static_assert(kIsEnumeration<CGEventField, std::uint32_t>);
static_assert(std::is_same_v<AXCopyMultipleAttributeOptions, UInt32>);
static_assert(std::is_same_v<CGEventFlags, std::uint64_t>);
static_assert(std::is_same_v<CGKeyCode, std::uint16_t>);

static_assert(kAXErrorSuccess == 0);
static_assert(kAXErrorFailure == -25200);
static_assert(kAXErrorIllegalArgument == -25201);
static_assert(kAXErrorInvalidUIElement == -25202);
static_assert(kAXErrorInvalidUIElementObserver == -25203);
static_assert(kAXErrorCannotComplete == -25204);
static_assert(kAXErrorAttributeUnsupported == -25205);
static_assert(kAXErrorActionUnsupported == -25206);
static_assert(kAXErrorNotificationUnsupported == -25207);
static_assert(kAXErrorNotImplemented == -25208);
static_assert(kAXErrorNotificationAlreadyRegistered == -25209);
static_assert(kAXErrorNotificationNotRegistered == -25210);
static_assert(kAXErrorAPIDisabled == -25211);
static_assert(kAXErrorNoValue == -25212);
static_assert(kAXErrorParameterizedAttributeUnsupported == -25213);
static_assert(kAXErrorNotEnoughPrecision == -25214);

static_assert(kAXValueTypeIllegal == 0 && kAXValueTypeCGPoint == 1 && kAXValueTypeCGSize == 2 &&
              kAXValueTypeCGRect == 3 && kAXValueTypeCFRange == 4 && kAXValueTypeAXError == 5);
static_assert(kAXValueIllegalType == 0 && kAXValueCGPointType == 1 && kAXValueCGSizeType == 2 &&
              kAXValueCGRectType == 3 && kAXValueCFRangeType == 4 && kAXValueAXErrorType == 5);
static_assert(std::is_same_v<decltype(kAXValueCGPointType), const UInt32>);
static_assert(kAXCopyMultipleAttributeOptionStopOnError == 1);

static_assert(kCGEventNull == 0 && kCGEventLeftMouseDown == 1 && kCGEventLeftMouseUp == 2 &&
              kCGEventRightMouseDown == 3 && kCGEventRightMouseUp == 4 && kCGEventMouseMoved == 5 &&
              kCGEventLeftMouseDragged == 6 && kCGEventRightMouseDragged == 7 &&
              kCGEventKeyDown == 10 && kCGEventKeyUp == 11 && kCGEventFlagsChanged == 12 &&
              kCGEventScrollWheel == 22 && kCGEventOtherMouseDown == 25 &&
              kCGEventOtherMouseUp == 26 && kCGEventOtherMouseDragged == 27);
static_assert(kCGEventFlagMaskAlphaShift == 0x00010000 && kCGEventFlagMaskShift == 0x00020000 &&
              kCGEventFlagMaskControl == 0x00040000 && kCGEventFlagMaskAlternate == 0x00080000 &&
              kCGEventFlagMaskCommand == 0x00100000);
static_assert(kCGMouseButtonLeft == 0 && kCGMouseButtonRight == 1 && kCGMouseButtonCenter == 2);
static_assert(kCGHIDEventTap == 0 && kCGSessionEventTap == 1 && kCGAnnotatedSessionEventTap == 2);
static_assert(kCGScrollEventUnitPixel == 0 && kCGScrollEventUnitLine == 1);
static_assert(kCGEventSourceStatePrivate == -1 && kCGEventSourceStateCombinedSessionState == 0 &&
              kCGEventSourceStateHIDSystemState == 1);
static_assert(kCGMouseEventButtonNumber == 3 && kCGKeyboardEventKeycode == 9 &&
              kCGScrollWheelEventPointDeltaAxis1 == 96 &&
              kCGScrollWheelEventPointDeltaAxis2 == 97 && kCGScrollWheelEventPointDeltaAxis3 == 98);

static_assert(sizeof(CGPoint) == 16 && sizeof(CGSize) == 16 && sizeof(CGRect) == 32);
static_assert(sizeof(CFRange) == 16 && sizeof(AXError) == 4);
