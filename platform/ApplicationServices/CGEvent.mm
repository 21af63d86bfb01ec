#include <ApplicationServices/CGEvent.h>

#import <Foundation/Foundation.h>

#include <cstdarg>
#include <memory>

#include "platform/ApplicationServices/Display.h"
#include "platform/CoreFoundation/Runtime/CFRuntime.h"
#include "platform/DesktopLink/Session.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Variants/EventFaults.h"

using desktop_link::Event;
using platform_testing::EventCreation;
using platform_testing::EventCreationFails;

@interface CGEventSourceObject : NSObject {
  @public
    CGEventSourceStateID _state;
}
@end

@interface CGEventObject : NSObject {
  @public
    Event* _event;      // owned
    BOOL _hasPosition;  // NO: that of the pointer, which is requested when it is needed
}
@end

@implementation CGEventSourceObject

- (CFTypeID)cfTypeID {
    return CGEventSourceGetTypeID();
}

@end

@implementation CGEventObject

- (CFTypeID)cfTypeID {
    return CGEventGetTypeID();
}

- (void)dealloc {
    delete _event;
    [super dealloc];
}

@end

namespace {

CGEventRef Create(CGEventSourceRef source, CGEventType type) {
    CGEventObject* object = [[CGEventObject alloc] init];
    object->_event = new Event;
    object->_event->type = type;
    object->_event->hasSource = source != nullptr;
    if (source != nullptr) {
        object->_event->sourceState = ((CGEventSourceObject*)source)->_state;
    }
    return (CGEventRef)object;
}

Event& EventOf(CGEventRef event) {
    return *((CGEventObject*)event)->_event;
}

// Nothing for a type that is not a mouse event's.
bool IsMouseType(CGEventType type) {
    switch (type) {
        case kCGEventLeftMouseDown:
        case kCGEventLeftMouseUp:
        case kCGEventRightMouseDown:
        case kCGEventRightMouseUp:
        case kCGEventMouseMoved:
        case kCGEventLeftMouseDragged:
        case kCGEventRightMouseDragged:
        case kCGEventOtherMouseDown:
        case kCGEventOtherMouseUp:
        case kCGEventOtherMouseDragged:
            return true;
        default:
            return false;
    }
}

CGMouseButton ButtonOf(CGEventType type, CGMouseButton button) {
    switch (type) {
        case kCGEventOtherMouseDown:
        case kCGEventOtherMouseUp:
        case kCGEventOtherMouseDragged:
            return button;
        case kCGEventRightMouseDown:
        case kCGEventRightMouseUp:
        case kCGEventRightMouseDragged:
            return kCGMouseButtonRight;
        default:
            return kCGMouseButtonLeft;
    }
}

std::int64_t Wheel(const Event& event, size_t axis) {
    return axis < event.wheels.size() ? event.wheels[axis] : 0;
}

bool IsDown(CGEventSourceStateID stateID, desktop_link::Operation operation, std::int64_t number) {
    if (stateID != kCGEventSourceStateCombinedSessionState) {
        return false;
    }
    desktop_link::Request request;
    request.operation = operation;
    request.number = number;
    const auto reply =
        desktop_link::CurrentTransport().Exchange(request, desktop_link::kSystemTimeout);
    return reply && reply->flag;
}

}  // namespace

CFTypeID CGEventGetTypeID() {
    static const CFTypeID type = core_foundation::RegisterType("CGEvent");
    return type;
}

CFTypeID CGEventSourceGetTypeID() {
    static const CFTypeID type = core_foundation::RegisterType("CGEventSource");
    return type;
}

CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID stateID) {
    const bool known = stateID == kCGEventSourceStatePrivate ||
                       stateID == kCGEventSourceStateCombinedSessionState ||
                       stateID == kCGEventSourceStateHIDSystemState;
    if (EventCreationFails(EventCreation::source) || !known) {
        return nullptr;
    }
    CGEventSourceObject* object = [[CGEventSourceObject alloc] init];
    object->_state = stateID;
    return (CGEventSourceRef)object;
}

CGEventRef CGEventCreate(CGEventSourceRef source) {
    if (EventCreationFails(EventCreation::empty)) {
        return nullptr;
    }
    return Create(source, kCGEventNull);
}

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef source, CGKeyCode virtualKey, bool keyDown) {
    if (EventCreationFails(EventCreation::keyboard)) {
        return nullptr;
    }
    const CGEventRef event = Create(source, keyDown ? kCGEventKeyDown : kCGEventKeyUp);
    EventOf(event).keyCode = virtualKey;
    return event;
}

CGEventRef CGEventCreateMouseEvent(CGEventSourceRef source, CGEventType mouseType,
                                   CGPoint mouseCursorPosition, CGMouseButton mouseButton) {
    if (EventCreationFails(EventCreation::mouse) || !IsMouseType(mouseType)) {
        return nullptr;
    }
    const CGEventRef event = Create(source, mouseType);
    ((CGEventObject*)event)->_hasPosition = YES;
    EventOf(event).position = {mouseCursorPosition.x, mouseCursorPosition.y};
    EventOf(event).button = ButtonOf(mouseType, mouseButton);
    return event;
}

CGEventRef CGEventCreateScrollWheelEvent(CGEventSourceRef source, CGScrollEventUnit units,
                                         std::uint32_t wheelCount, std::int32_t wheel1, ...) {
    if (EventCreationFails(EventCreation::scroll) || wheelCount < 1 || wheelCount > 3) {
        return nullptr;
    }
    const CGEventRef event = Create(source, kCGEventScrollWheel);
    EventOf(event).scrollUnit = units;
    EventOf(event).wheels.push_back(wheel1);
    va_list further;
    va_start(further, wheel1);
    for (std::uint32_t axis = 1; axis < wheelCount; ++axis) {
        // The analyzer does not recognise va_start in Objective-C++.
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
        EventOf(event).wheels.push_back(va_arg(further, std::int32_t));
    }
    va_end(further);
    return event;
}

void CGEventSetFlags(CGEventRef event, CGEventFlags flags) {
    if (event != nullptr) {
        EventOf(event).flags = flags;
        EventOf(event).flagsWereSet = true;
    }
}

CGEventFlags CGEventGetFlags(CGEventRef event) {
    return event != nullptr ? EventOf(event).flags : 0;
}

CGEventType CGEventGetType(CGEventRef event) {
    return event != nullptr ? static_cast<CGEventType>(EventOf(event).type) : kCGEventNull;
}

CGPoint CGEventGetLocation(CGEventRef event) {
    if (event == nullptr) {
        return CGPointMake(0, 0);
    }
    CGEventObject* object = (CGEventObject*)event;
    if (!object->_hasPosition) {
        object->_event->position = application_services::CurrentPointer().location;
        object->_hasPosition = YES;
    }
    return CGPointMake(object->_event->position.x, object->_event->position.y);
}

std::int64_t CGEventGetIntegerValueField(CGEventRef event, CGEventField field) {
    if (event == nullptr) {
        return 0;
    }
    switch (field) {
        case kCGMouseEventButtonNumber:
            return EventOf(event).button;
        case kCGKeyboardEventKeycode:
            return EventOf(event).keyCode;
        case kCGScrollWheelEventPointDeltaAxis1:
            return Wheel(EventOf(event), 0);
        case kCGScrollWheelEventPointDeltaAxis2:
            return Wheel(EventOf(event), 1);
        case kCGScrollWheelEventPointDeltaAxis3:
            return Wheel(EventOf(event), 2);
    }
    return 0;
}

bool CGEventSourceKeyState(CGEventSourceStateID stateID, CGKeyCode key) {
    return IsDown(stateID, desktop_link::Operation::keyState, key);
}

bool CGEventSourceButtonState(CGEventSourceStateID stateID, CGMouseButton button) {
    return IsDown(stateID, desktop_link::Operation::buttonState, button);
}

void CGEventPost(CGEventTapLocation tap, CGEventRef event) {
    if (event == nullptr) {
        return;
    }
    desktop_link::Request request;
    request.operation = desktop_link::Operation::postEvent;
    request.event = EventOf(event);
    request.event.tap = tap;
    desktop_link::CurrentTransport().Exchange(request, desktop_link::kSystemTimeout);
}
