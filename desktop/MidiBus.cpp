#include "desktop/MidiBus.h"

#include <algorithm>
#include <limits>
#include <set>

#include "scenes/notation/Fields.h"

namespace desktop {

using namespace scene_notation;
using nlohmann::json;
using nlohmann::ordered_json;

namespace {

constexpr std::int32_t kHighestId = std::numeric_limits<std::int32_t>::max();

class DeviceReader {
  public:
    DeviceReader(std::int32_t& lastId, std::set<std::int32_t>& taken)
        : lastId_(lastId), taken_(taken) {}

    MidiDevice ReadDevice(const json& source, const std::string& place) {
        ExpectOnly(source, place, {"id", "name", "entities"});
        MidiDevice device;
        device.id = ReadId(source, place);
        device.name = ReadName(source, place);
        if (const json* entities = Field(source, "entities")) {
            const std::string inside = Place(place, "entities");
            for (std::size_t i = 0; i < ExpectArray(*entities, inside).size(); ++i) {
                device.entities.push_back(ReadEntity((*entities)[i], Place(inside, i)));
            }
        }
        return device;
    }

  private:
    MidiEntity ReadEntity(const json& source, const std::string& place) {
        ExpectOnly(source, place, {"id", "name", "sources", "destinations"});
        MidiEntity entity;
        entity.id = ReadId(source, place);
        entity.name = ReadName(source, place);
        entity.sources = ReadEndpoints(source, "sources", place);
        entity.destinations = ReadEndpoints(source, "destinations", place);
        return entity;
    }

    std::vector<MidiEndpoint> ReadEndpoints(const json& entity, const char* key,
                                            const std::string& place) {
        std::vector<MidiEndpoint> endpoints;
        const json* sources = Field(entity, key);
        const std::string inside = Place(place, key);
        for (std::size_t i = 0; sources && i < ExpectArray(*sources, inside).size(); ++i) {
            endpoints.push_back(ReadEndpoint((*sources)[i], Place(inside, i)));
        }
        return endpoints;
    }

    // The name alone, or an object.
    MidiEndpoint ReadEndpoint(const json& source, const std::string& place) {
        MidiEndpoint endpoint;
        if (source.is_string()) {
            endpoint.id = NextId();
            endpoint.name.text = source.get<std::string>();
            return endpoint;
        }
        ExpectOnly(source, place, {"id", "name", "connectError"});
        endpoint.id = ReadId(source, place);
        endpoint.name = ReadName(source, place);
        if (const json* error = Field(source, "connectError")) {
            endpoint.connectError = ExpectErrorCode(*error, Place(place, "connectError"));
        }
        return endpoint;
    }

    MidiName ReadName(const json& object, const std::string& place) {
        const json& source = Required(object, "name", place);
        const std::string inside = Place(place, "name");
        if (source.is_object()) {
            ExpectOnly(source, inside, {"error"});
            return {"", ExpectErrorCode(Required(source, "error", inside), inside)};
        }
        return {ExpectText(source, inside), 0};
    }

    std::int32_t ReadId(const json& object, const std::string& place) {
        const json* source = Field(object, "id");
        if (source == nullptr) {
            return NextId();
        }
        const auto id =
            static_cast<std::int32_t>(ExpectInteger(*source, Place(place, "id"), 1, kHighestId));
        if (!taken_.insert(id).second) {
            throw SceneError(Place(place, "id"), "the id is taken");
        }
        return id;
    }

    std::int32_t NextId() {
        while (!taken_.insert(++lastId_).second) {
        }
        return lastId_;
    }

    std::int32_t& lastId_;
    std::set<std::int32_t>& taken_;
};

ordered_json Describe(const MidiName& name) {
    return name.error == 0 ? ordered_json(name.text) : ordered_json{{"error", name.error}};
}

ordered_json Describe(const std::vector<MidiEndpoint>& endpoints) {
    auto described = ordered_json::array();
    for (const MidiEndpoint& endpoint : endpoints) {
        ordered_json each = {{"id", endpoint.id}, {"name", Describe(endpoint.name)}};
        if (endpoint.connectError != 0) {
            each["connectError"] = endpoint.connectError;
        }
        described.push_back(std::move(each));
    }
    return described;
}

}  // namespace

void MidiBus::Plug(const json& device, const std::string& place) {
    std::int32_t lastId = lastId_;
    std::set<std::int32_t> taken = taken_;
    devices_.push_back(DeviceReader(lastId, taken).ReadDevice(device, place));
    lastId_ = lastId;
    taken_ = std::move(taken);
}

bool MidiBus::Unplug(std::string_view name) {
    const auto found = std::find_if(devices_.begin(), devices_.end(),
                                    [&](const auto& device) { return device.name.text == name; });
    if (found == devices_.end()) {
        return false;
    }
    devices_.erase(found);
    return true;
}

std::int32_t MidiBus::Connect(std::int64_t sourceId) const {
    for (const MidiDevice& device : devices_) {
        for (const MidiEntity& entity : device.entities) {
            for (const MidiEndpoint& source : entity.sources) {
                if (source.id == sourceId) {
                    return source.connectError;
                }
            }
        }
    }
    return kUnknownEndpoint;
}

ordered_json MidiBus::Describe() const {
    auto devices = ordered_json::array();
    for (const MidiDevice& device : devices_) {
        auto entities = ordered_json::array();
        for (const MidiEntity& entity : device.entities) {
            entities.push_back({{"id", entity.id},
                                {"name", desktop::Describe(entity.name)},
                                {"sources", desktop::Describe(entity.sources)},
                                {"destinations", desktop::Describe(entity.destinations)}});
        }
        devices.push_back({{"id", device.id},
                           {"name", desktop::Describe(device.name)},
                           {"entities", std::move(entities)}});
    }
    return {{"devices", std::move(devices)}};
}

}  // namespace desktop
