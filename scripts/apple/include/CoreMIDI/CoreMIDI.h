// What tests for macOS alone call besides what platform/ has; by the public documentation.
#pragma once

#include_next <CoreMIDI/CoreMIDI.h>

extern "C" {
extern const CFStringRef kMIDIPropertyOffline;
OSStatus MIDIObjectGetIntegerProperty(MIDIObjectRef obj, CFStringRef propertyID, SInt32* outValue);
}
