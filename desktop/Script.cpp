#include "desktop/Script.h"

#include <algorithm>
#include <utility>

#include "desktop/Address.h"
#include "scenes/notation/Fields.h"
#include "scenes/notation/Json.h"

namespace desktop {

using namespace scene_notation;

namespace {

std::string ErrorText(const std::string& problem) {
    return OneLine(nlohmann::ordered_json{{"error", problem}});
}

}  // namespace

std::string Script::Run(std::string_view command) {
    try {
        return Execute(ParseJson(command, "command"));
    } catch (const SceneError& error) {
        return ErrorText(error.what());
    }
}

void Script::RunPlanned(const nlohmann::json& command) {
    try {
        Execute(command);
    } catch (const SceneError& error) {
        desktop_.log_.Add({{"problem", error.what()}});
    }
}

std::string Script::Execute(const Json& command) {
    ExpectObject(command, "command");
    const std::string& name = ExpectText(Required(command, "command", "command"), "command");
    const Command run = Find(name);
    if (run == nullptr) {
        throw SceneError("command", "there is no command " + OneLine(Json(name)));
    }
    return (this->*run)(command);
}

Script::Command Script::Find(const std::string& name) {
    static constexpr std::pair<const char*, Command> kCommands[] = {
        {"activate", &Script::Activate},
        {"launch", &Script::Launch},
        {"quit", &Script::Quit},
        {"kill", &Script::Kill},
        {"hang", &Script::Hang},
        {"unhang", &Script::Release},
        {"trust", &Script::Trust},
        {"stop", &Script::Stop},
        {"set", &Script::Set},
        {"insert", &Script::Insert},
        {"remove", &Script::Remove},
        {"press", &Script::Press},
        {"misbehave", &Script::Misbehave},
        {"selectClip", &Script::SelectClip},
        {"playhead", &Script::MovePlayhead},
        {"plug", &Script::Plug},
        {"unplug", &Script::Unplug},
        {"pointer", &Script::MovePointer},
        {"log", &Script::ReadLog},
        {"state", &Script::ReadState},
        {"element", &Script::ReadElement},
        {"dump", &Script::Dump},
        {"step", &Script::Step},
        {"play", &Script::Play},
        {"advance", &Script::Advance},
    };
    const auto* found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                     [&](const auto& each) { return each.first == name; });
    return found == std::end(kCommands) ? nullptr : found->second;
}

Application* Script::ApplicationOrFront(const Json& command) {
    return Field(command, "application") == nullptr ? desktop_.model_.front
                                                    : &NamedApplication(command);
}

Application& Script::NamedApplication(const Json& command) {
    const std::string& key = ExpectText(Required(command, "application", "command"), "application");
    Application* application = desktop_.model_.ApplicationNamed(key);
    if (application == nullptr) {
        throw SceneError("application", "no application " + OneLine(Json(key)));
    }
    return *application;
}

Element& Script::NamedElement(const Json& command, const char* key) {
    Application* application = ApplicationOrFront(command);
    if (application == nullptr) {
        throw SceneError("application", "no application is in front; name one");
    }
    return ResolveAddress(*application, ExpectText(Required(command, key, "command"), key), key);
}

}  // namespace desktop
