// The driver's calls of the MIDI system, each handed on to the layer and remembered; and two
// results that no bus of the simulated desktop gives.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreMIDI/CoreMIDI.h>

#include <string>
#include <utility>
#include <vector>

struct MIDICalls {
    static MIDICalls& Current();

    OSStatus clientStatus = 0;  // of MIDIClientCreate, which makes a client all the same
    bool nullNames = false;     // names are read with success and without a string

    std::vector<std::string> calls;  // of clients and ports, in order, with their arguments
    std::vector<std::string> namesRead;
    std::vector<MIDIObjectRef> parents;  // whose entities or endpoints were asked for
    MIDIReadProc readProc = nullptr;
    std::vector<std::pair<CFIndex, CFStringEncoding>> conversions;  // of names to C strings
    std::vector<const void*> contexts;  // of client, input port and connection
    std::vector<MIDINotifyProc> notifyProcs;
    std::vector<MIDIClientRef> portClients;  // that the two ports were made for
    MIDIClientRef client = 0;                // made last, as is the port
    MIDIPortRef inputPort = 0;
};
