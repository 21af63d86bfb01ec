#include <CoreMIDI/MIDIServices.h>

#include "platform/CoreMIDI/Bus.h"

const CFStringRef kMIDIPropertyName = CFSTR("name");

namespace {

using core_midi::Device;
using core_midi::Entity;
using core_midi::Object;

MIDIObjectRef ReferenceOf(const Object& object) {
    return object.reference;
}
MIDIObjectRef ReferenceOf(const Entity& entity) {
    return entity.object.reference;
}
MIDIObjectRef ReferenceOf(const Device& device) {
    return device.object.reference;
}

template <typename Item>
MIDIObjectRef ReferenceAt(const std::vector<Item>& items, ItemCount index) {
    return index < items.size() ? ReferenceOf(items[index]) : 0;
}

}  // namespace

ItemCount MIDIGetNumberOfDevices() {
    return core_midi::CurrentDevices().size();
}

MIDIDeviceRef MIDIGetDevice(ItemCount deviceIndex0) {
    return ReferenceAt(core_midi::CurrentDevices(), deviceIndex0);
}

ItemCount MIDIDeviceGetNumberOfEntities(MIDIDeviceRef device) {
    const auto found = core_midi::FindDevice(device);
    return found ? found->entities.size() : 0;
}

MIDIEntityRef MIDIDeviceGetEntity(MIDIDeviceRef device, ItemCount entityIndex0) {
    const auto found = core_midi::FindDevice(device);
    return found ? ReferenceAt(found->entities, entityIndex0) : 0;
}

MIDIEndpointRef MIDIEntityGetSource(MIDIEntityRef entity, ItemCount sourceIndex0) {
    const auto found = core_midi::FindEntity(entity);
    return found ? ReferenceAt(found->sources, sourceIndex0) : 0;
}

MIDIEndpointRef MIDIEntityGetDestination(MIDIEntityRef entity, ItemCount destIndex0) {
    const auto found = core_midi::FindEntity(entity);
    return found ? ReferenceAt(found->destinations, destIndex0) : 0;
}

OSStatus MIDIObjectGetStringProperty(MIDIObjectRef obj, CFStringRef propertyID, CFStringRef* str) {
    constexpr OSStatus kParameterError = -50;
    if (propertyID == nullptr || str == nullptr) {
        return kParameterError;
    }
    const auto object = core_midi::FindObject(obj);
    if (!object) {
        return kMIDIObjectNotFound;
    }
    if (!CFEqual(propertyID, kMIDIPropertyName)) {
        return kMIDIUnknownProperty;
    }
    if (object->nameError != 0) {
        return object->nameError;
    }
    const CFStringRef name = CFStringCreateWithBytes(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(object->name.data()),
        static_cast<CFIndex>(object->name.size()), kCFStringEncodingUTF8, false);
    if (name == nullptr) {
        return kMIDIUnknownError;
    }
    *str = name;
    return 0;
}
