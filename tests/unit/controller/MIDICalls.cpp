#include "tests/unit/controller/MIDICalls.h"

#include <dlfcn.h>

namespace {

template <typename Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string TextOf(CFStringRef string) {
    char text[256] = "";
    Next<decltype(CFStringGetCString)>("CFStringGetCString")(string, text, sizeof text,
                                                             kCFStringEncodingUTF8);
    return text;
}

}  // namespace

MIDICalls& MIDICalls::Current() {
    static MIDICalls current;
    return current;
}

extern "C" {

// Names of MIDI objects, and whatever else is converted meanwhile.
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding) {
    MIDICalls::Current().conversions.emplace_back(size, encoding);
    return Next<decltype(CFStringGetCString)>("CFStringGetCString")(string, buffer, size, encoding);
}

OSStatus MIDIClientCreate(CFStringRef name, MIDINotifyProc notifyProc, void* context,
                          MIDIClientRef* outClient) {
    MIDICalls& current = MIDICalls::Current();
    current.notifyProcs.push_back(notifyProc);
    current.contexts.push_back(context);
    current.calls.push_back("client " + TextOf(name));
    const OSStatus status =
        Next<decltype(MIDIClientCreate)>("MIDIClientCreate")(name, notifyProc, context, outClient);
    current.client = *outClient;
    return status != 0 ? status : current.clientStatus;
}

OSStatus MIDIClientDispose(MIDIClientRef client) {
    MIDICalls& current = MIDICalls::Current();
    current.calls.push_back(client == current.client ? "dispose" : "dispose of another");
    return Next<decltype(MIDIClientDispose)>("MIDIClientDispose")(client);
}

OSStatus MIDIInputPortCreate(MIDIClientRef client, CFStringRef portName, MIDIReadProc readProc,
                             void* context, MIDIPortRef* outPort) {
    MIDICalls& current = MIDICalls::Current();
    current.portClients.push_back(client);
    current.contexts.push_back(context);
    current.readProc = readProc;
    current.calls.push_back("input " + TextOf(portName));
    const OSStatus status = Next<decltype(MIDIInputPortCreate)>("MIDIInputPortCreate")(
        client, portName, readProc, context, outPort);
    current.inputPort = *outPort;
    return status;
}

OSStatus MIDIOutputPortCreate(MIDIClientRef client, CFStringRef portName, MIDIPortRef* outPort) {
    MIDICalls::Current().portClients.push_back(client);
    MIDICalls::Current().calls.push_back("output " + TextOf(portName));
    return Next<decltype(MIDIOutputPortCreate)>("MIDIOutputPortCreate")(client, portName, outPort);
}

OSStatus MIDIPortConnectSource(MIDIPortRef port, MIDIEndpointRef source, void* context) {
    MIDICalls& current = MIDICalls::Current();
    current.contexts.push_back(context);
    current.calls.push_back((port == current.inputPort ? "connect to " : "connect another to ") +
                            std::to_string(source));
    return Next<decltype(MIDIPortConnectSource)>("MIDIPortConnectSource")(port, source, context);
}

ItemCount MIDIDeviceGetNumberOfEntities(MIDIDeviceRef device) {
    MIDICalls::Current().parents.push_back(device);
    return Next<decltype(MIDIDeviceGetNumberOfEntities)>("MIDIDeviceGetNumberOfEntities")(device);
}

MIDIEndpointRef MIDIEntityGetSource(MIDIEntityRef entity, ItemCount index) {
    MIDICalls::Current().parents.push_back(entity);
    return Next<decltype(MIDIEntityGetSource)>("MIDIEntityGetSource")(entity, index);
}

MIDIEndpointRef MIDIEntityGetDestination(MIDIEntityRef entity, ItemCount index) {
    MIDICalls::Current().parents.push_back(entity);
    return Next<decltype(MIDIEntityGetDestination)>("MIDIEntityGetDestination")(entity, index);
}

OSStatus MIDIObjectGetStringProperty(MIDIObjectRef object, CFStringRef property,
                                     CFStringRef* text) {
    MIDICalls& current = MIDICalls::Current();
    current.namesRead.push_back(TextOf(property) + " of " + std::to_string(object));
    if (current.nullNames) {
        *text = nullptr;
        return 0;
    }
    return Next<decltype(MIDIObjectGetStringProperty)>("MIDIObjectGetStringProperty")(
        object, property, text);
}

}  // extern "C"
