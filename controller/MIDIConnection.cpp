// Signs in to MIDI and connects the controller, once: a controller plugged in later is found only
// when the process starts again.

#include <CoreFoundation/CoreFoundation.h>
#include <CoreMIDI/CoreMIDI.h>

#include "VEKCommon/Names.h"
#include "driver/CVEK_UserSpaceDriver.h"

namespace {

constexpr char kControllerDeviceName[] = kControllerDevice;
constexpr char kPrivateEntityName[] = kControllerEntity;
constexpr char kEchoEntityName[] = "Echo";
constexpr unsigned kLongestName = 128;  // bytes, terminator included
constexpr CFIndex kNameCapacity = 256;  // bytes

// False when the name cannot be read, cannot be converted to MacRoman or does not fit; `name` is
// unspecified then.
bool ReadName(MIDIObjectRef object, char (&name)[kNameCapacity]) {
    CFStringRef text = nullptr;
    if (MIDIObjectGetStringProperty(object, kMIDIPropertyName, &text) != 0 || text == nullptr) {
        return false;
    }
    const bool converted =
        CFStringGetCString(text, name, kNameCapacity, kCFStringEncodingMacRoman) != 0;
    CFRelease(text);
    return converted;
}

bool HasName(MIDIObjectRef object, const char* wanted) {
    char name[kNameCapacity];
    return ReadName(object, name) && CVEK_UserSpaceDriver::NameCmp(wanted, name, kLongestName);
}

MIDIEntityRef FirstEntityWithName(MIDIDeviceRef device, const char* wanted) {
    const ItemCount count = MIDIDeviceGetNumberOfEntities(device);
    for (ItemCount i = 0; i < count; ++i) {
        const MIDIEntityRef entity = MIDIDeviceGetEntity(device, i);
        if (HasName(entity, wanted)) {
            return entity;
        }
    }
    return 0;
}

}  // namespace

void CVEK_UserSpaceDriver::MIDISignIn() {
    midiClient = 0;
    if (MIDIClientCreate(CFSTR("KRT9"), nullptr, nullptr, &midiClient) != 0) {
        if (midiClient != 0) {
            MIDIClientDispose(midiClient);
            midiClient = 0;
        }
        return;
    }
    // A port that cannot be created stays 0, which DoConnect() notices. Nothing is ever sent
    // through the output port.
    MIDIInputPortCreate(midiClient, CFSTR("Input from hardware"), HardwareReadProcEntry, nullptr,
                        &inputPort);
    MIDIOutputPortCreate(midiClient, CFSTR("Output to hardware"), &outputPort);
    connected = DoConnect();
}

// Disposes of nothing and disconnects nothing: the process ends right afterwards.
void CVEK_UserSpaceDriver::MIDISignOut() {
    midiClient = 0;
    spareMIDIReferences[0] = 0;
    spareMIDIReferences[1] = 0;
    connected = false;
}

bool CVEK_UserSpaceDriver::DoConnect() {
    if (inputPort == 0 || outputPort == 0 || !LocateController()) {
        return false;
    }
    const OSStatus status = MIDIPortConnectSource(inputPort, sourceEndpoint, nullptr);
    if (status != 0) {
        char sourceName[kNameCapacity];
        ReadName(sourceEndpoint, sourceName);  // read, but not reported
    }
    return status == 0;
}

bool CVEK_UserSpaceDriver::LocateController() {
    const MIDIDeviceRef device = LocateControllerDevice();
    if (device == 0) {
        return false;
    }
    const MIDIEntityRef entity = LocateControllerPrivateEntity(device);
    if (entity == 0) {
        return false;
    }
    const MIDIEndpointRef source = MIDIEntityGetSource(entity, 0);
    if (source == 0) {
        return false;
    }
    const MIDIEndpointRef destination = MIDIEntityGetDestination(entity, 0);
    if (destination == 0) {
        return false;
    }
    sourceEndpoint = source;
    destinationEndpoint = destination;
    return true;
}

MIDIDeviceRef CVEK_UserSpaceDriver::LocateControllerDevice() {
    const ItemCount count = MIDIGetNumberOfDevices();
    for (ItemCount i = 0; i < count; ++i) {
        const MIDIDeviceRef device = MIDIGetDevice(i);
        if (HasName(device, kControllerDeviceName)) {
            return device;
        }
    }
    return 0;
}

MIDIEntityRef CVEK_UserSpaceDriver::LocateControllerPrivateEntity(MIDIDeviceRef device) {
    return FirstEntityWithName(device, kPrivateEntityName);
}

// Nothing in the program calls this: it is kept as part of the driver's interface.
MIDIEntityRef CVEK_UserSpaceDriver::LocateControllerEchoEntity(MIDIDeviceRef device) {
    return FirstEntityWithName(device, kEchoEntityName);
}

// A name that is not terminated within `max` bytes matches nothing, not even itself.
bool CVEK_UserSpaceDriver::NameCmp(const char* wanted, const char* found, unsigned max) {
    for (unsigned i = 0; i < max; ++i) {
        if (wanted[i] != found[i]) {
            return false;
        }
        if (wanted[i] == 0) {
            return true;
        }
    }
    return false;
}
