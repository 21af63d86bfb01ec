#include "events/VEK_EventPoster.h"

#include <syslog.h>

#include "events/ModifierWord.h"

namespace {

void PostAndRelease(CGEventRef event) {
    CGEventPost(kCGHIDEventTap, event);
    CFRelease(event);
}

CGEventRef CreateLeftButtonEvent(CGEventType type, CGPoint where) {
    return CGEventCreateMouseEvent(nullptr, type, where, kCGMouseButtonLeft);
}

}  // namespace

VEK_EventPoster::VEK_EventPoster() {
    // A first, empty event wakes the event system before the first real one.
    if (CGEventRef wakeUp = CGEventCreate(nullptr)) {
        CFRelease(wakeUp);
    }
    source_ = CGEventSourceCreate(kCGEventSourceStatePrivate);
}

VEK_EventPoster::~VEK_EventPoster() {
    if (source_ != nullptr) {
        CFRelease(source_);
    }
}

CGEventFlags VEK_EventPoster::MakeEventFlags(unsigned short modifiers) {
    CGEventFlags flags = 0;
    for (const Modifier& modifier : kModifiers) {
        if ((modifiers & modifier.bit) != 0) {
            flags |= modifier.flag;
        }
    }
    return flags;
}

// The keys go up in the order in which they went down, not reversed. Each key-down event carries
// its own flag only, not those of the modifiers pressed before it.
void VEK_EventPoster::PostModifiers(unsigned short modifiers, bool press) {
    if (source_ == nullptr) {
        return;
    }
    for (const Modifier& modifier : kModifiers) {
        if ((modifiers & modifier.bit) == 0) {
            continue;
        }
        CGEventRef event = CGEventCreateKeyboardEvent(source_, modifier.keyCode, press);
        if (event == nullptr) {
            continue;
        }
        CGEventSetFlags(event, press ? MakeEventFlags(modifier.bit) : 0);
        PostAndRelease(event);
    }
}

// The modifier keys themselves are not pressed: they are flags of the key-down event only.
void VEK_EventPoster::PostKeystroke(unsigned short keyCode, unsigned short modifiers, bool press) {
    CGEventRef event = CGEventCreateKeyboardEvent(source_, keyCode, press);
    if (event == nullptr) {
        syslog(LOG_EMERG,
               press ? "  couldn't make keypress event\n" : "  couldn't make key release event\n");
        return;
    }
    CGEventSetFlags(event, press ? MakeEventFlags(modifiers) : 0);
    PostAndRelease(event);
}

void VEK_EventPoster::PostMouseStartEvent(CGPoint where, unsigned short modifiers, bool click) {
    PostModifiers(modifiers, true);
    // Without this event the gesture does not begin, and the modifier keys stay down until its end
    // request releases them.
    CGEventRef moved = CreateLeftButtonEvent(kCGEventMouseMoved, where);
    if (moved == nullptr) {
        return;
    }
    PostAndRelease(moved);
    if (!click) {
        return;
    }
    if (CGEventRef down = CreateLeftButtonEvent(kCGEventLeftMouseDown, where)) {
        PostAndRelease(down);
    }
}

// A drag is posted for a gesture without a click, too.
void VEK_EventPoster::PostMouseContinueEvent(CGPoint where, unsigned short modifiers, bool) {
    if (CGEventRef dragged = CreateLeftButtonEvent(kCGEventLeftMouseDragged, where)) {
        CGEventSetFlags(dragged, MakeEventFlags(modifiers));
        PostAndRelease(dragged);
    }
}

void VEK_EventPoster::PostMouseEndEvent(CGPoint where, unsigned short modifiers, bool click) {
    if (click) {
        // When the mouse-up event cannot be created, the modifier keys deliberately stay down: they
        // go up with the end request that does end the gesture.
        CGEventRef up = CreateLeftButtonEvent(kCGEventLeftMouseUp, where);
        if (up == nullptr) {
            return;
        }
        CGEventSetFlags(up, MakeEventFlags(modifiers));
        PostAndRelease(up);
    }
    PostModifiers(modifiers, false);
}

void VEK_EventPoster::PostHorizontalScrollWheelContinueEvent(int delta) {
    if (CGEventRef event =
            CGEventCreateScrollWheelEvent(nullptr, kCGScrollEventUnitPixel, 2, 0, delta)) {
        PostAndRelease(event);
    }
}

void VEK_EventPoster::PostVerticalScrollWheelContinueEvent(int delta) {
    if (CGEventRef event =
            CGEventCreateScrollWheelEvent(nullptr, kCGScrollEventUnitPixel, 1, delta)) {
        PostAndRelease(event);
    }
}
