// Whether the controller is on the MIDI bus as the driver expects it, and was when it started.
#include <CoreMIDI/CoreMIDI.h>
#include <fmt/format.h>

#include "VEKCommon/Names.h"
#include "VEKCommon/OwnedReference.h"
#include "tools/Session.h"
#include "tools/Text.h"
#include "tools/doctor/ControllerHistory.h"
#include "tools/doctor/Examination.h"

namespace krt9ctl::doctor {

namespace {

constexpr std::string_view kController = "controller";

bool HasName(MIDIObjectRef object, std::string_view name) {
    CFStringRef text = nullptr;
    if (MIDIObjectGetStringProperty(object, kMIDIPropertyName, &text) != 0) {
        return false;
    }
    const OwnedReference<CFStringRef> owner(text);
    return Utf8Of(text) == name;
}

MIDIDeviceRef FindDevice() {
    const ItemCount count = MIDIGetNumberOfDevices();
    for (ItemCount i = 0; i < count; ++i) {
        if (const MIDIDeviceRef device = MIDIGetDevice(i); HasName(device, kControllerDevice)) {
            return device;
        }
    }
    return 0;
}

MIDIEntityRef FindEntity(MIDIDeviceRef device) {
    const ItemCount count = MIDIDeviceGetNumberOfEntities(device);
    for (ItemCount i = 0; i < count; ++i) {
        const MIDIEntityRef entity = MIDIDeviceGetEntity(device, i);
        if (HasName(entity, kControllerEntity)) {
            return entity;
        }
    }
    return 0;
}

Finding Missing(const Facts& facts, std::string evidence) {
    return Failing(kController, ExitCode::controller,
                   std::move(evidence) + "; plug it in, then restart the driver",
                   DriverRestartCommand(facts.driverPort.owner));
}

}  // namespace

Finding CheckController(const Facts& facts, Context& context) {
    const MIDIDeviceRef device = FindDevice();
    if (device == 0) {
        return Missing(facts, fmt::format("none of the {} MIDI devices is a " kControllerDevice,
                                          MIDIGetNumberOfDevices()));
    }
    const MIDIEntityRef entity = FindEntity(device);
    if (entity == 0) {
        return Missing(facts,
                       kControllerDevice " is there, but without its entity " kControllerEntity);
    }
    const MIDIEndpointRef source = MIDIEntityGetSource(entity, 0);
    if (source == 0 || MIDIEntityGetDestination(entity, 0) == 0) {
        return Missing(facts, "the entity " kControllerEntity " of " kControllerDevice
                              " lacks a source or a destination");
    }
    const std::string there = kControllerDevice " is there with its entity " kControllerEntity;
    if (!facts.driverPort.isThere) {
        return Unknown(kController, there + ", but no driver that could use it");
    }
    const ControllerHistory history = HistoryOfController(source, context.timeout);
    switch (history.connection) {
        case ControllerHistory::Connection::made:
            return Fine(kController, fmt::format("{}, and the driver is connected to it ({})",
                                                 there, history.evidence));
        case ControllerHistory::Connection::missed:
            return Failing(kController, ExitCode::controller,
                           fmt::format("{}, but {}", there, history.evidence),
                           DriverRestartCommand(facts.driverPort.owner));
        default:
            return Unknown(kController, fmt::format("{}; {}", there, history.evidence));
    }
}

}  // namespace krt9ctl::doctor
