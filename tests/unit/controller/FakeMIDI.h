// A MIDI system that a test describes: its functions replace the framework's in the test
// program, so that every one of them can fail.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreMIDI/CoreMIDI.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fake_midi {

using Name = std::optional<std::string>;  // UTF-8; none: the object's name cannot be read

struct Entity {
    Name name;
    bool hasSource = true;
    bool hasDestination = true;
};

struct Device {
    Name name;
    std::vector<Entity> entities;
};

struct Bus {
    std::vector<Device> devices;
    OSStatus clientStatus = 0;  // of MIDIClientCreate, which makes a client all the same
    bool makesNoClient = false;
    bool makesNoInputPort = false;
    bool makesNoOutputPort = false;
    OSStatus connectStatus = 0;
    bool nullNames = false;  // names are read with success and without a string

    std::vector<std::string> calls;  // of clients and ports, in order, with their arguments
    std::vector<std::string> namesRead;
    std::vector<MIDIObjectRef> parents;  // whose entities or endpoints were asked for
    MIDIReadProc readProc = nullptr;
    std::vector<std::pair<CFIndex, CFStringEncoding>> conversions;  // of names to C strings
    std::vector<const void*> contexts;  // of client, input port and connection
    std::vector<MIDINotifyProc> notifyProcs;
    std::vector<MIDIClientRef> portClients;  // that the two ports were made for
};

Bus& TheBus();

constexpr MIDIClientRef kClient = 1;
constexpr MIDIPortRef kInputPort = 2;
constexpr MIDIPortRef kOutputPort = 3;
MIDIDeviceRef DeviceAt(unsigned device);
MIDIEntityRef EntityAt(unsigned device, unsigned entity);
MIDIEndpointRef SourceOf(MIDIEntityRef entity);
MIDIEndpointRef DestinationOf(MIDIEntityRef entity);

}  // namespace fake_midi
