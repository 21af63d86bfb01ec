// Events of the system's input stream.
//
// Events and sources are local objects; posting one is a message to the window server. Positions
// are global display coordinates, origin at the top left of the main screen. Creators return null
// on failure; the caller releases what they return. A null source is allowed everywhere.
#pragma once

#include <ApplicationServices/CGEventTypes.h>
#include <CoreFoundation/CGGeometry.h>
#include <CoreFoundation/CoreFoundation.h>

extern "C" {

CFTypeID CGEventGetTypeID(void);
CFTypeID CGEventSourceGetTypeID(void);

CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID stateID);

// An event of type null at the pointer's position.
CGEventRef CGEventCreate(CGEventSourceRef source);

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef source, CGKeyCode virtualKey, bool keyDown);

// `mouseButton` counts only for the OtherMouse types.
CGEventRef CGEventCreateMouseEvent(CGEventSourceRef source, CGEventType mouseType,
                                   CGPoint mouseCursorPosition, CGMouseButton mouseButton);

// One to three axes (vertical, horizontal, third); the further ones are int32_t arguments.
CGEventRef CGEventCreateScrollWheelEvent(CGEventSourceRef source, CGScrollEventUnit units,
                                         std::uint32_t wheelCount, std::int32_t wheel1, ...);

// Replaces all flags. An event whose flags were never set takes those held when it is posted.
void CGEventSetFlags(CGEventRef event, CGEventFlags flags);
CGEventFlags CGEventGetFlags(CGEventRef event);
CGEventType CGEventGetType(CGEventRef event);
CGPoint CGEventGetLocation(CGEventRef event);
std::int64_t CGEventGetIntegerValueField(CGEventRef event, CGEventField field);

// Whether a key, or a mouse button (0 to 31), is down in the state that all events of the log-in
// session make. False for every other state: the layer has no hardware, and a private state belongs
// to its source. Whether keys of a private source count is not documented.
bool CGEventSourceKeyState(CGEventSourceStateID stateID, CGKeyCode key);
bool CGEventSourceButtonState(CGEventSourceStateID stateID, CGMouseButton button);

// Doesn't consume the event. Null is ignored; so is an event of a process that is not trusted.
void CGEventPost(CGEventTapLocation tap, CGEventRef event);

}  // extern "C"
