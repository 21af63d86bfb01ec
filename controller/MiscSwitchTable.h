// Published data of the controller; nothing in this program reads it.
#pragma once

// 1 where the miscellaneous switch of that index responds to MIDI, else 0.
extern const unsigned char kMiscSwitchRespondsToMIDI[64];
