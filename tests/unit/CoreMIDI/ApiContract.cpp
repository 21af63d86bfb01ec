// What callers rely on at compile time: the types, layouts, constants and signatures of the real
// framework.
#include <CoreMIDI/CoreMIDI.h>

#include <cstddef>
#include <type_traits>

#define HAS_SIGNATURE(function, ...) static_assert(std::is_same_v<decltype(function), __VA_ARGS__>)

HAS_SIGNATURE(MIDIClientCreate, OSStatus(CFStringRef, MIDINotifyProc, void*, MIDIClientRef*));
HAS_SIGNATURE(MIDIClientDispose, OSStatus(MIDIClientRef));
HAS_SIGNATURE(MIDIInputPortCreate,
              OSStatus(MIDIClientRef, CFStringRef, MIDIReadProc, void*, MIDIPortRef*));
HAS_SIGNATURE(MIDIOutputPortCreate, OSStatus(MIDIClientRef, CFStringRef, MIDIPortRef*));
HAS_SIGNATURE(MIDIPortConnectSource, OSStatus(MIDIPortRef, MIDIEndpointRef, void*));
HAS_SIGNATURE(MIDIGetNumberOfDevices, ItemCount());
HAS_SIGNATURE(MIDIGetDevice, MIDIDeviceRef(ItemCount));
HAS_SIGNATURE(MIDIDeviceGetNumberOfEntities, ItemCount(MIDIDeviceRef));
HAS_SIGNATURE(MIDIDeviceGetEntity, MIDIEntityRef(MIDIDeviceRef, ItemCount));
HAS_SIGNATURE(MIDIEntityGetSource, MIDIEndpointRef(MIDIEntityRef, ItemCount));
HAS_SIGNATURE(MIDIEntityGetDestination, MIDIEndpointRef(MIDIEntityRef, ItemCount));
HAS_SIGNATURE(MIDIObjectGetStringProperty, OSStatus(MIDIObjectRef, CFStringRef, CFStringRef*));

#undef HAS_SIGNATURE

static_assert(std::is_same_v<MIDIObjectRef, UInt32>);
static_assert(std::is_same_v<MIDIClientRef, MIDIObjectRef> &&
              std::is_same_v<MIDIPortRef, MIDIObjectRef> &&
              std::is_same_v<MIDIDeviceRef, MIDIObjectRef> &&
              std::is_same_v<MIDIEntityRef, MIDIObjectRef> &&
              std::is_same_v<MIDIEndpointRef, MIDIObjectRef>);
static_assert(std::is_same_v<MIDITimeStamp, UInt64>);
static_assert(std::is_same_v<decltype(kMIDIPropertyName), const CFStringRef>);
static_assert(std::is_same_v<MIDINotifyProc, void (*)(const MIDINotification*, void*)>);
static_assert(std::is_same_v<MIDIReadProc, void (*)(const MIDIPacketList*, void*, void*)>);
static_assert(std::is_same_v<std::underlying_type_t<MIDINotificationMessageID>, SInt32>);

static_assert(sizeof(MIDIPacket) == 268 && offsetof(MIDIPacket, timeStamp) == 0 &&
              offsetof(MIDIPacket, length) == 8 && offsetof(MIDIPacket, data) == 10);
static_assert(sizeof(MIDIPacketList) == 272 && offsetof(MIDIPacketList, numPackets) == 0 &&
              offsetof(MIDIPacketList, packet) == 4);
static_assert(sizeof(MIDINotification) == 8);

static_assert(kMIDIInvalidClient == -10830 && kMIDIInvalidPort == -10831 &&
              kMIDIWrongEndpointType == -10832 && kMIDINoConnection == -10833 &&
              kMIDIUnknownEndpoint == -10834 && kMIDIUnknownProperty == -10835 &&
              kMIDIWrongPropertyType == -10836 && kMIDINoCurrentSetup == -10837 &&
              kMIDIMessageSendErr == -10838 && kMIDIServerStartErr == -10839 &&
              kMIDISetupFormatErr == -10840 && kMIDIWrongThread == -10841 &&
              kMIDIObjectNotFound == -10842 && kMIDIIDNotUnique == -10843 &&
              kMIDINotPermitted == -10844 && kMIDIUnknownError == -10845);
static_assert(kMIDIMsgSetupChanged == 1 && kMIDIMsgObjectAdded == 2 && kMIDIMsgObjectRemoved == 3 &&
              kMIDIMsgPropertyChanged == 4 && kMIDIMsgThruConnectionsChanged == 5 &&
              kMIDIMsgSerialPortOwnerChanged == 6 && kMIDIMsgIOError == 7);
