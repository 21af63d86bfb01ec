// Lets a test make the creation of MIDI clients and ports fail, as when the MIDI server does not
// start.
#pragma once

namespace platform_testing {

enum class MidiCreation { client, inputPort, outputPort };

// The n-th creation of that kind from now on (1: the next one) returns kMIDIServerStartErr.
// Failures add up until ForgetMidiFaults().
void FailMidiCreation(MidiCreation kind, unsigned long nth);

void ForgetMidiFaults();

// For the creators: whether this creation is to fail. Counts it.
bool MidiCreationFails(MidiCreation kind);

}  // namespace platform_testing
