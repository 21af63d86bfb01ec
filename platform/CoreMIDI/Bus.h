// The devices of the MIDI bus, as the desktop describes them. A reference is the object's unique
// id.
#pragma once

#include <CoreMIDI/MIDIServices.h>

#include <optional>
#include <string>
#include <vector>

namespace core_midi {

struct Object {
    MIDIObjectRef reference = 0;
    std::string name;        // UTF-8
    OSStatus nameError = 0;  // of reading the name
};

struct Entity {
    Object object;
    std::vector<Object> sources;
    std::vector<Object> destinations;
};

struct Device {
    Object object;
    std::vector<Entity> entities;
};

// One exchange. Empty when there is no desktop. Entries without a usable id are left out.
std::vector<Device> CurrentDevices();

// Of the first such object of the bus; one exchange.
std::optional<Device> FindDevice(MIDIDeviceRef device);
std::optional<Entity> FindEntity(MIDIEntityRef entity);
std::optional<Object> FindObject(MIDIObjectRef object);

}  // namespace core_midi
