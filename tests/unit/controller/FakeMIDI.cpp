#include "tests/unit/controller/FakeMIDI.h"

#include <CoreFoundation/CoreFoundation.h>
#include <dlfcn.h>

namespace fake_midi {

Bus& TheBus() {
    static Bus bus;
    return bus;
}

// References: devices are 1000, 2000, ...; their entities 1010, 1020, ...; an entity's endpoints
// follow it.
MIDIDeviceRef DeviceAt(unsigned device) {
    return 1000 * (device + 1);
}

MIDIEntityRef EntityAt(unsigned device, unsigned entity) {
    return DeviceAt(device) + 10 * (entity + 1);
}

MIDIEndpointRef SourceOf(MIDIEntityRef entity) {
    return entity + 1;
}

MIDIEndpointRef DestinationOf(MIDIEntityRef entity) {
    return entity + 2;
}

namespace {

const Device* FindDevice(MIDIObjectRef reference) {
    const unsigned number = reference / 1000;
    return number == 0 || number > TheBus().devices.size() ? nullptr
                                                           : &TheBus().devices[number - 1];
}

const Entity* FindEntity(MIDIObjectRef reference) {
    const Device* const device = FindDevice(reference);
    const unsigned number = reference % 1000 / 10;
    return device == nullptr || number == 0 || number > device->entities.size()
               ? nullptr
               : &device->entities[number - 1];
}

std::string TextOf(CFStringRef string) {
    char text[256] = "";
    CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8);
    return text;
}

OSStatus Make(const std::string& call, bool fails, MIDIPortRef made, MIDIPortRef* out) {
    TheBus().calls.push_back(call);
    if (fails) {
        return kMIDIServerStartErr;
    }
    *out = made;
    return 0;
}

}  // namespace

}  // namespace fake_midi

using namespace fake_midi;

extern "C" {

// Names of MIDI objects, and whatever else is converted meanwhile.
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding) {
    TheBus().conversions.emplace_back(size, encoding);
    static const auto next =
        reinterpret_cast<decltype(&CFStringGetCString)>(dlsym(RTLD_NEXT, "CFStringGetCString"));
    return next(string, buffer, size, encoding);
}

OSStatus MIDIClientCreate(CFStringRef name, MIDINotifyProc notifyProc, void* context,
                          MIDIClientRef* outClient) {
    TheBus().notifyProcs.push_back(notifyProc);
    TheBus().contexts.push_back(context);
    TheBus().calls.push_back("client " + TextOf(name));
    if (!TheBus().makesNoClient) {
        *outClient = kClient;
    }
    return TheBus().clientStatus;
}

OSStatus MIDIClientDispose(MIDIClientRef client) {
    TheBus().calls.push_back("dispose " + std::to_string(client));
    return 0;
}

OSStatus MIDIInputPortCreate(MIDIClientRef client, CFStringRef portName, MIDIReadProc readProc,
                             void* context, MIDIPortRef* outPort) {
    TheBus().portClients.push_back(client);
    TheBus().contexts.push_back(context);
    TheBus().readProc = readProc;
    return Make("input " + TextOf(portName), TheBus().makesNoInputPort, kInputPort, outPort);
}

OSStatus MIDIOutputPortCreate(MIDIClientRef client, CFStringRef portName, MIDIPortRef* outPort) {
    TheBus().portClients.push_back(client);
    return Make("output " + TextOf(portName), TheBus().makesNoOutputPort, kOutputPort, outPort);
}

OSStatus MIDIPortConnectSource(MIDIPortRef port, MIDIEndpointRef source, void* context) {
    TheBus().contexts.push_back(context);
    TheBus().calls.push_back("connect " + std::to_string(port) + " to " + std::to_string(source));
    return TheBus().connectStatus;
}

ItemCount MIDIGetNumberOfDevices(void) {
    return TheBus().devices.size();
}

MIDIDeviceRef MIDIGetDevice(ItemCount index) {
    return DeviceAt(static_cast<unsigned>(index));
}

ItemCount MIDIDeviceGetNumberOfEntities(MIDIDeviceRef device) {
    TheBus().parents.push_back(device);
    const Device* const found = FindDevice(device);
    return found == nullptr ? 0 : found->entities.size();
}

MIDIEntityRef MIDIDeviceGetEntity(MIDIDeviceRef device, ItemCount index) {
    return device + 10 * (static_cast<unsigned>(index) + 1);
}

MIDIEndpointRef MIDIEntityGetSource(MIDIEntityRef entity, ItemCount index) {
    TheBus().parents.push_back(entity);
    const Entity* const found = FindEntity(entity);
    return index == 0 && found != nullptr && found->hasSource ? SourceOf(entity) : 0;
}

MIDIEndpointRef MIDIEntityGetDestination(MIDIEntityRef entity, ItemCount index) {
    TheBus().parents.push_back(entity);
    const Entity* const found = FindEntity(entity);
    return index == 0 && found != nullptr && found->hasDestination ? DestinationOf(entity) : 0;
}

OSStatus MIDIObjectGetStringProperty(MIDIObjectRef object, CFStringRef property,
                                     CFStringRef* text) {
    TheBus().namesRead.push_back(TextOf(property) + " of " + std::to_string(object));
    if (TheBus().nullNames) {
        *text = nullptr;
        return 0;
    }
    const Device* const device = FindDevice(object);
    const Entity* const entity = FindEntity(object);
    const Name name = entity != nullptr ? entity->name : device != nullptr ? device->name : Name();
    if (!name) {
        return kMIDIUnknownProperty;
    }
    *text = CFStringCreateWithCString(kCFAllocatorDefault, name->c_str(), kCFStringEncodingUTF8);
    return 0;
}

}  // extern "C"
