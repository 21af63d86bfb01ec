// The exchanges between a process and the desktop. Every framework call that is one message to
// another process on macOS is one Request and one Reply here; that makes their number the true cost
// of an operation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/DesktopLink/Value.h"

namespace desktop_link {

enum class Operation : std::uint8_t {
    hello = 1,          // first request of a connection -> Reply::session
    isTrusted,          // flag: may prompt -> Reply::flag
    copyAttribute,      // element, names[0] -> values[0]
    copyAttributes,     // element, names, flag: stop on error -> one value or ErrorValue per name
    attributeNames,     // element -> values of text
    actionNames,        // element -> values of text
    isSettable,         // element, names[0] -> Reply::flag
    setAttribute,       // element, names[0], value
    performAction,      // element, names[0]
    postEvent,          // event
    keyState,           // number: a key code -> Reply::flag: it is down
    buttonState,        // number: of a mouse button -> Reply::flag: it is down
    pointerLocation,    // -> a Point, origin at the top left of the first screen, and, when there
                        //    is one, that screen's Rect
    screens,            // -> values, a Rect each, the screen at the origin first, its top left the
                        //    origin; and the index of the screen with the key window
    midiDevices,        // -> Reply::text, the bus as JSON (see desktop/MidiBus.h)
    midiConnectSource,  // number: unique id of the source
    script,             // text: one JSON command -> Reply::text, JSON
};

// What an event tap sees. Positions are global display coordinates, origin top left.
struct Event {
    std::uint32_t type = 0;  // numbers as in CGEventType
    Point position;
    std::uint64_t flags = 0;       // as in CGEventFlags
    std::int64_t keyCode = 0;      // keyboard events
    std::int64_t button = 0;       // mouse events
    std::int32_t sourceState = 0;  // as in CGEventSourceStateID
    bool hasSource = false;
    bool flagsWereSet = false;  // false: the flags are what the event was created with
    std::uint32_t tap = 0;      // as in CGEventTapLocation
    std::uint32_t scrollUnit = 0;
    std::vector<std::int32_t> wheels;  // scroll events: vertical, horizontal, third axis
    friend bool operator==(const Event&, const Event&) = default;
};

struct Application {
    std::int32_t pid = -1;
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> bundlePath;  // absolute path of X.app on disk
    std::string name;
    friend bool operator==(const Application&, const Application&) = default;
};

struct Request {
    Operation operation = Operation::hello;
    ElementReference element;
    std::vector<std::string> names;
    bool flag = false;
    std::int64_t number = 0;
    Value value;
    Event event;
    std::string text;
    friend bool operator==(const Request&, const Request&) = default;
};

// What a process learns when it connects.
struct Session {
    std::optional<Application> frontApplication;
    double messagingTimeout = 6.0;  // seconds, of one accessibility call
    friend bool operator==(const Session&, const Session&) = default;
};

struct Reply {
    std::int32_t error = 0;  // numbers as in AXError (or OSStatus for MIDI); 0 is success
    bool flag = false;
    std::vector<Value> values;
    std::string text;
    std::optional<Session> session;
    friend bool operator==(const Reply&, const Reply&) = default;
};

// Sent by the desktop without a request.
struct Notification {
    std::optional<Application> activated;  // none: nothing is in front any more
    friend bool operator==(const Notification&, const Notification&) = default;
};

// Encoding: MessagePack; the null object stands in place of values that nest deeper than
// kDeepestValue. Decoding refuses a message with deeper ones, and returns nothing for bytes that
// are not exactly one well-formed message; nothing is allocated beyond what the bytes justify.
std::vector<std::uint8_t> Encode(const Request& request);
std::vector<std::uint8_t> Encode(const Reply& reply);
std::vector<std::uint8_t> Encode(const Notification& notification);
std::optional<Request> DecodeRequest(const std::uint8_t* bytes, std::size_t length);
std::optional<Reply> DecodeReply(const std::uint8_t* bytes, std::size_t length);
std::optional<Notification> DecodeNotification(const std::uint8_t* bytes, std::size_t length);

}  // namespace desktop_link
