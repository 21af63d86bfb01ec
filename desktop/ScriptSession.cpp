// Commands about MIDI, the pointer, and playing the scene's script.

#include "desktop/Script.h"
#include "scenes/notation/Fields.h"
#include "scenes/notation/Json.h"
#include "scenes/notation/ValueReading.h"

namespace desktop {

using namespace scene_notation;

std::string Script::Plug(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "device"});
    const Json& device = ExpectObject(Required(command, "device", "command"), "device");
    ExpectShallow(device, "device");
    desktop_.model_.midi.Plug(device, "device");
    const MidiDevice& plugged = desktop_.model_.midi.Devices().back();
    desktop_.log_.Add({{"midi", "plug"}, {"device", plugged.name.text}, {"id", plugged.id}});
    return OneLine(nlohmann::ordered_json{{"ok", true}, {"id", plugged.id}});
}

std::string Script::Unplug(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "device"});
    const std::string& name = ExpectText(Required(command, "device", "command"), "device");
    if (!desktop_.model_.midi.Unplug(name)) {
        throw SceneError("device", "no device " + OneLine(Json(name)));
    }
    desktop_.log_.Add({{"midi", "unplug"}, {"device", name}});
    return kDone;
}

std::string Script::MovePointer(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "position"});
    const Answer answer =
        ReadAnswer(Required(command, "position", "command"), "AXPosition", "position", {});
    const auto* point = std::get_if<desktop_link::Point>(&answer.value.content);
    if (point == nullptr) {
        throw SceneError("position", "expected an array of 2 numbers");
    }
    desktop_.model_.pointer = *point;
    return kDone;
}

std::string Script::Step(const Json& command) {
    ExpectOnly(command, "command", {"command", "at"});
    const auto& script = desktop_.model_.script;
    if (desktop_.nextStep_ >= script.size()) {
        throw SceneError("step", "the script is at its end");
    }
    const Json next = script[desktop_.nextStep_++];
    const Json* name = Field(next, "command");
    if (name != nullptr && *name == "step") {
        throw SceneError("step", "a script cannot step itself");
    }
    return Execute(next);
}

std::string Script::Play(const Json& command) {
    ExpectOnly(command, "command", {"command", "at"});
    desktop_.PlayScript();
    return kDone;
}

std::string Script::Advance(const Json& command) {
    ExpectOnly(command, "command", {"command", "seconds"});
    if (desktop_.schedule_.Advancing()) {
        throw SceneError("advance", "time is passing already");
    }
    desktop_.Advance(ExpectDuration(Required(command, "seconds", "command"), "seconds"));
    return kDone;
}

}  // namespace desktop
