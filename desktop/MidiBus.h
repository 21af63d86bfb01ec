// The MIDI devices of the session.
//
// As JSON (the reply to Operation::midiDevices), in device order:
//   {"devices": [{"id": 1, "name": "KRT-9 USB", "entities": [{"id": 2, "name": "Private",
//     "sources": [{"id": 3, "name": "Private"}], "destinations": [{"id": 4, "name":
//     "Private"}]}]}]}
// `id` is the unique id, never used again for another object. A name that cannot be read is
// {"error": OSStatus} in place of the text.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace desktop {

struct MidiName {
    std::string text;
    std::int32_t error = 0;  // OSStatus of reading it
    friend bool operator==(const MidiName&, const MidiName&) = default;
};

struct MidiEndpoint {
    std::int32_t id = 0;
    MidiName name;
    std::int32_t connectError = 0;  // OSStatus of connecting a port to it; sources only
    friend bool operator==(const MidiEndpoint&, const MidiEndpoint&) = default;
};

struct MidiEntity {
    std::int32_t id = 0;
    MidiName name;
    std::vector<MidiEndpoint> sources, destinations;
    friend bool operator==(const MidiEntity&, const MidiEntity&) = default;
};

struct MidiDevice {
    std::int32_t id = 0;
    MidiName name;
    std::vector<MidiEntity> entities;
    friend bool operator==(const MidiDevice&, const MidiDevice&) = default;
};

class MidiBus {
  public:
    static constexpr std::int32_t kUnknownEndpoint = -10834;

    // Reads a device as a scene describes it and appends it; ids it does not give are the next free
    // ones. Throws SceneError naming `place`, the bus unchanged.
    void Plug(const nlohmann::json& device, const std::string& place);

    // Removes the first device of that name; false when there is none.
    bool Unplug(std::string_view name);

    const std::vector<MidiDevice>& Devices() const { return devices_; }

    // OSStatus of connecting a port to the source.
    std::int32_t Connect(std::int64_t sourceId) const;

    nlohmann::ordered_json Describe() const;

  private:
    std::vector<MidiDevice> devices_;
    std::int32_t lastId_ = 0;
    std::set<std::int32_t> taken_;  // also of devices that were unplugged
};

}  // namespace desktop
