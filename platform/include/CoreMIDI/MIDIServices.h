// MIDI clients, ports, and the devices of the bus.
//
// References are numbers; 0 is none. Enumerating asks the MIDI server; clients and ports are local.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

using MIDIObjectRef = UInt32;
using MIDIClientRef = MIDIObjectRef;
using MIDIPortRef = MIDIObjectRef;
using MIDIDeviceRef = MIDIObjectRef;
using MIDIEntityRef = MIDIObjectRef;
using MIDIEndpointRef = MIDIObjectRef;
using MIDITimeStamp = UInt64;  // host ticks; 0 means now

enum MIDINotificationMessageID : SInt32 {
    kMIDIMsgSetupChanged = 1,
    kMIDIMsgObjectAdded = 2,
    kMIDIMsgObjectRemoved = 3,
    kMIDIMsgPropertyChanged = 4,
    kMIDIMsgThruConnectionsChanged = 5,
    kMIDIMsgSerialPortOwnerChanged = 6,
    kMIDIMsgIOError = 7,
};

struct MIDINotification {
    MIDINotificationMessageID messageID;
    UInt32 messageSize;
};

// Variable-length: the next packet starts after `length` bytes of data.
#pragma pack(push, 4)
struct MIDIPacket {
    MIDITimeStamp timeStamp;
    UInt16 length;
    Byte data[256];
};

struct MIDIPacketList {
    UInt32 numPackets;
    MIDIPacket packet[1];
};
#pragma pack(pop)

using MIDINotifyProc = void (*)(const MIDINotification* message, void* refCon);
using MIDIReadProc = void (*)(const MIDIPacketList* pktlist, void* readProcRefCon,
                              void* srcConnRefCon);

enum : OSStatus {
    kMIDIInvalidClient = -10830,
    kMIDIInvalidPort = -10831,
    kMIDIWrongEndpointType = -10832,
    kMIDINoConnection = -10833,
    kMIDIUnknownEndpoint = -10834,
    kMIDIUnknownProperty = -10835,
    kMIDIWrongPropertyType = -10836,
    kMIDINoCurrentSetup = -10837,
    kMIDIMessageSendErr = -10838,
    kMIDIServerStartErr = -10839,
    kMIDISetupFormatErr = -10840,
    kMIDIWrongThread = -10841,
    kMIDIObjectNotFound = -10842,
    kMIDIIDNotUnique = -10843,
    kMIDINotPermitted = -10844,
    kMIDIUnknownError = -10845,
};

extern "C" {

extern const CFStringRef kMIDIPropertyName;

// The notification procedure may be null.
OSStatus MIDIClientCreate(CFStringRef name, MIDINotifyProc notifyProc, void* notifyRefCon,
                          MIDIClientRef* outClient);
OSStatus MIDIClientDispose(MIDIClientRef client);  // its ports go with it

OSStatus MIDIInputPortCreate(MIDIClientRef client, CFStringRef portName, MIDIReadProc readProc,
                             void* refCon, MIDIPortRef* outPort);
OSStatus MIDIOutputPortCreate(MIDIClientRef client, CFStringRef portName, MIDIPortRef* outPort);
OSStatus MIDIPortConnectSource(MIDIPortRef port, MIDIEndpointRef source, void* connRefCon);

// Counts are 0, and references 0, when there is no such object.
ItemCount MIDIGetNumberOfDevices(void);
MIDIDeviceRef MIDIGetDevice(ItemCount deviceIndex0);
ItemCount MIDIDeviceGetNumberOfEntities(MIDIDeviceRef device);
MIDIEntityRef MIDIDeviceGetEntity(MIDIDeviceRef device, ItemCount entityIndex0);
MIDIEndpointRef MIDIEntityGetSource(MIDIEntityRef entity, ItemCount sourceIndex0);
MIDIEndpointRef MIDIEntityGetDestination(MIDIEntityRef entity, ItemCount destIndex0);

// The caller releases *str. kMIDIUnknownProperty or kMIDIObjectNotFound leave it as it was.
OSStatus MIDIObjectGetStringProperty(MIDIObjectRef obj, CFStringRef propertyID, CFStringRef* str);

}  // extern "C"
