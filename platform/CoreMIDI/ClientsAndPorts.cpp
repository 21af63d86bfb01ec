// Clients and ports are local to this process. The desktop is told only that a source was
// connected; it sends no MIDI data, so read procedures and notification procedures are never
// called.
#include <CoreMIDI/MIDIServices.h>

#include <map>
#include <set>

#include "platform/DesktopLink/Session.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Variants/MidiFaults.h"

using platform_testing::MidiCreation;
using platform_testing::MidiCreationFails;

namespace {

constexpr OSStatus kParameterError = -50;

struct Port {
    MIDIClientRef client = 0;
    bool isInput = false;
};

struct Registry {
    std::set<MIDIClientRef> clients;
    std::map<MIDIPortRef, Port> ports;
    MIDIObjectRef last = 0x80000000;  // distinct from the references of the bus

    MIDIObjectRef NewReference() { return ++last; }
};

Registry& Known() {
    static Registry registry;
    return registry;
}

OSStatus CreatePort(MIDIClientRef client, CFStringRef name, MidiCreation kind,
                    MIDIPortRef* outPort) {
    if (name == nullptr || outPort == nullptr) {
        return kParameterError;
    }
    if (!Known().clients.contains(client)) {
        return kMIDIInvalidClient;
    }
    if (MidiCreationFails(kind)) {
        return kMIDIServerStartErr;
    }
    *outPort = Known().NewReference();
    Known().ports[*outPort] = {client, kind == MidiCreation::inputPort};
    return 0;
}

bool IsInputPort(MIDIPortRef port) {
    const auto found = Known().ports.find(port);
    return found != Known().ports.end() && found->second.isInput;
}

}  // namespace

OSStatus MIDIClientCreate(CFStringRef name, MIDINotifyProc, void*, MIDIClientRef* outClient) {
    if (name == nullptr || outClient == nullptr) {
        return kParameterError;
    }
    if (MidiCreationFails(MidiCreation::client)) {
        return kMIDIServerStartErr;
    }
    *outClient = Known().NewReference();
    Known().clients.insert(*outClient);
    return 0;
}

OSStatus MIDIClientDispose(MIDIClientRef client) {
    if (Known().clients.erase(client) == 0) {
        return kMIDIInvalidClient;
    }
    std::erase_if(Known().ports,
                  [client](const auto& entry) { return entry.second.client == client; });
    return 0;
}

OSStatus MIDIInputPortCreate(MIDIClientRef client, CFStringRef portName, MIDIReadProc readProc,
                             void*, MIDIPortRef* outPort) {
    if (readProc == nullptr) {
        return kParameterError;
    }
    return CreatePort(client, portName, MidiCreation::inputPort, outPort);
}

OSStatus MIDIOutputPortCreate(MIDIClientRef client, CFStringRef portName, MIDIPortRef* outPort) {
    return CreatePort(client, portName, MidiCreation::outputPort, outPort);
}

OSStatus MIDIPortConnectSource(MIDIPortRef port, MIDIEndpointRef source, void*) {
    if (!IsInputPort(port)) {
        return kMIDIInvalidPort;
    }
    desktop_link::Request request;
    request.operation = desktop_link::Operation::midiConnectSource;
    request.number = source;
    desktop_link::Transport& transport = desktop_link::CurrentTransport();
    const auto reply = transport.Exchange(request, desktop_link::kSystemTimeout);
    if (!reply) {
        return transport.Unreachable() ? kMIDIUnknownEndpoint : kMIDIMessageSendErr;
    }
    return reply->error;
}
