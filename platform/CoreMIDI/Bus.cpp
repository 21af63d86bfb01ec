#include "platform/CoreMIDI/Bus.h"

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>

#include "platform/DesktopLink/Session.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Variants/Variants.h"

namespace core_midi {

namespace {

using nlohmann::json;

std::optional<Object> ReadObject(const json& entry) {
    const auto id = entry.find("id");
    if (id == entry.end() || !id->is_number_integer()) {
        return std::nullopt;
    }
    const auto number = id->get<std::int64_t>();
    if (number < 1 || number > std::numeric_limits<std::int32_t>::max()) {
        return std::nullopt;
    }
    Object object;
    object.reference = static_cast<MIDIObjectRef>(number);
    object.nameError = kMIDIUnknownProperty;
    if (const auto name = entry.find("name"); name != entry.end()) {
        if (name->is_string()) {
            object.name = name->get<std::string>();
            object.nameError = 0;
        } else if (name->is_object() && name->contains("error") &&
                   name->at("error").is_number_integer()) {
            object.nameError = name->at("error").get<OSStatus>();
        }
    }
    return object;
}

// The entries of an array member for which `read` returns something.
template <typename Read>
auto ReadList(const json& owner, const char* member, Read read) {
    std::vector<typename decltype(read(owner))::value_type> entries;
    const auto list = owner.find(member);
    if (list != owner.end() && list->is_array()) {
        for (const json& item : *list) {
            if (auto entry = item.is_object() ? read(item) : std::nullopt) {
                entries.push_back(*std::move(entry));
            }
        }
    }
    return entries;
}

std::optional<Entity> ReadEntity(const json& entry) {
    const std::optional<Object> object = ReadObject(entry);
    if (!object) {
        return std::nullopt;
    }
    return Entity{*object, ReadList(entry, "sources", ReadObject),
                  ReadList(entry, "destinations", ReadObject)};
}

std::optional<Device> ReadDevice(const json& entry) {
    const std::optional<Object> object = ReadObject(entry);
    if (!object) {
        return std::nullopt;
    }
    return Device{*object, ReadList(entry, "entities", ReadEntity)};
}

// As the system remembers it: with everything it had when it was last online.
Device OfflineDevice() {
    constexpr MIDIObjectRef kFirst = 0x7FFFFF00;
    const auto object = [](MIDIObjectRef number, const char* name) {
        return Object{kFirst + number, name, 0};
    };
    return {object(0, "KRT-9 USB (offline)"),
            {{object(1, "Private"), {object(2, "Private")}, {object(3, "Private")}}}};
}

const Object* FindIn(const std::vector<Object>& objects, MIDIObjectRef reference) {
    for (const Object& object : objects) {
        if (object.reference == reference) {
            return &object;
        }
    }
    return nullptr;
}

const Object* FindIn(const Entity& entity, MIDIObjectRef reference) {
    if (entity.object.reference == reference) {
        return &entity.object;
    }
    const Object* source = FindIn(entity.sources, reference);
    return source != nullptr ? source : FindIn(entity.destinations, reference);
}

}  // namespace

std::vector<Device> CurrentDevices() {
    desktop_link::Request request;
    request.operation = desktop_link::Operation::midiDevices;
    const auto reply =
        desktop_link::CurrentTransport().Exchange(request, desktop_link::kSystemTimeout);
    if (!reply || reply->error != 0) {
        return {};
    }
    const json bus = json::parse(reply->text, nullptr, false);
    auto devices = bus.is_object() ? ReadList(bus, "devices", ReadDevice) : std::vector<Device>{};
    if (platform_testing::IsOn(platform_testing::Variant::offlineDevices)) {
        devices.insert(devices.begin(), OfflineDevice());
    }
    return devices;
}

std::optional<Device> FindDevice(MIDIDeviceRef device) {
    for (Device& candidate : CurrentDevices()) {
        if (candidate.object.reference == device) {
            return std::move(candidate);
        }
    }
    return std::nullopt;
}

std::optional<Entity> FindEntity(MIDIEntityRef entity) {
    for (Device& device : CurrentDevices()) {
        for (Entity& candidate : device.entities) {
            if (candidate.object.reference == entity) {
                return std::move(candidate);
            }
        }
    }
    return std::nullopt;
}

std::optional<Object> FindObject(MIDIObjectRef object) {
    for (const Device& device : CurrentDevices()) {
        if (device.object.reference == object) {
            return device.object;
        }
        for (const Entity& entity : device.entities) {
            if (const Object* found = FindIn(entity, object)) {
                return *found;
            }
        }
    }
    return std::nullopt;
}

}  // namespace core_midi
