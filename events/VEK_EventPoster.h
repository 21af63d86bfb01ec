// Turns requests for keystrokes and mouse gestures into events of the system's input stream.
//
// The modifier word is the classic one: 0x0100 Command, 0x0200 Shift, 0x0800 Option, 0x1000
// Control; all other bits are ignored, 0x0400 for Caps Lock among them. Positions are global
// display coordinates, origin at the top left of the main screen. Failures are not reported to the
// caller.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

class VEK_EventPoster {
  public:
    VEK_EventPoster();
    virtual ~VEK_EventPoster();
    VEK_EventPoster(const VEK_EventPoster&) = delete;
    VEK_EventPoster& operator=(const VEK_EventPoster&) = delete;

    CGEventFlags MakeEventFlags(unsigned short modifiers);

    // The keys of the modifiers themselves, down or up.
    void PostModifiers(unsigned short modifiers, bool press);

    // One key down or up, by its virtual key code. Logs a line when the event cannot be created.
    void PostKeystroke(unsigned short keyCode, unsigned short modifiers, bool press);

    // A gesture is a start, any number of continues, and an end, all with the same modifier word
    // and click flag: the poster does not remember which modifier keys it holds down.
    void PostMouseStartEvent(CGPoint where, unsigned short modifiers, bool click);
    void PostMouseContinueEvent(CGPoint where, unsigned short modifiers, bool click);
    void PostMouseEndEvent(CGPoint where, unsigned short modifiers, bool click);

    void PostHorizontalScrollWheelContinueEvent(int delta);  // pixels
    void PostVerticalScrollWheelContinueEvent(int delta);    // pixels

  private:
    CGEventSourceRef source_;  // owned; null when it could not be made
};
