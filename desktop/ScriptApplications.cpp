// Commands about applications and the session's life.

#include "desktop/SceneReader.h"
#include "desktop/Script.h"
#include "scenes/notation/Fields.h"
#include "scenes/notation/Json.h"

namespace desktop {

using namespace scene_notation;

std::string Script::Activate(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application", "gap"});
    const Json& name = Required(command, "application", "command");
    Application* application = name.is_null() ? nullptr : &NamedApplication(command);
    const Json* gap = Field(command, "gap");
    desktop_.Activate(application,
                      gap == nullptr ? desktop_.model_.activationGap : ExpectDuration(*gap, "gap"));
    return kDone;
}

std::string Script::Launch(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application", "front"});
    const Json* front = Field(command, "front");
    const bool toFront = front == nullptr || ExpectBoolean(*front, "front");
    const Json& source = ExpectObject(Required(command, "application", "command"), "application");
    Application& launched = desktop_.Launch(source);
    if (toFront) {
        desktop_.Activate(&launched, desktop_.model_.activationGap);
    }
    return OneLine(nlohmann::ordered_json{
        {"ok", true}, {"application", launched.Key()}, {"pid", launched.pid}});
}

std::string Script::Quit(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application"});
    desktop_.Quit(NamedApplication(command));
    return kDone;
}

std::string Script::Kill(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application"});
    Application& application = NamedApplication(command);
    if (application.dead) {
        throw SceneError("application", "it is already dead");
    }
    desktop_.Kill(application);
    return kDone;
}

std::string Script::Hang(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application", "for"});
    Application& application = NamedApplication(command);
    const Json* duration = Field(command, "for");
    const double seconds = duration == nullptr ? 0 : ExpectDuration(*duration, "for");
    application.hung = true;
    if (duration != nullptr) {
        desktop_.schedule_.After(seconds, [&desktop = desktop_, pid = application.pid] {
            if (Application* hung = desktop.model_.ApplicationWithPid(pid)) {
                hung->hung = false;
            }
        });
    }
    return kDone;
}

std::string Script::Release(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application"});
    NamedApplication(command).hung = false;
    return kDone;
}

std::string Script::Trust(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "trusted"});
    desktop_.model_.trusted = ExpectBoolean(Required(command, "trusted", "command"), "trusted");
    return kDone;
}

std::string Script::Stop(const Json& command) {
    ExpectOnly(command, "command", {"command", "at"});
    desktop_.quitWanted_ = true;
    return kDone;
}

}  // namespace desktop
