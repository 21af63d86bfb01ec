// The slice of CoreMIDI that the driver calls.
#pragma once

#include <CoreMIDI/MIDIServices.h>
