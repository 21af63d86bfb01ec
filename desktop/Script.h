// Commands that change or query the desktop while it runs. See docs/scenes.md for the list.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "desktop/Desktop.h"

namespace desktop {

class Script {
  public:
    explicit Script(Desktop& desktop) : desktop_(desktop) {}

    // Returns {"ok": true, ...}, or {"error": "one line"} after which nothing has changed.
    std::string Run(std::string_view command);

    // A command of a scene or a misbehaviour: nobody waits for the reply, and an error goes to the
    // log.
    void RunPlanned(const nlohmann::json& command);

  private:
    using Json = nlohmann::json;
    using Command = std::string (Script::*)(const Json&);

    // The reply to a command that tells nothing else.
    static constexpr char kDone[] = R"({"ok":true})";

    std::string Execute(const Json& command);
    static Command Find(const std::string& name);

    std::string Activate(const Json& command);
    std::string Launch(const Json& command);
    std::string Quit(const Json& command);
    std::string Kill(const Json& command);
    std::string Hang(const Json& command);
    std::string Release(const Json& command);
    std::string Trust(const Json& command);
    std::string Stop(const Json& command);

    std::string Set(const Json& command);
    std::string Insert(const Json& command);
    std::string Remove(const Json& command);
    std::string Press(const Json& command);
    std::string Misbehave(const Json& command);
    std::string SelectClip(const Json& command);
    std::string MovePlayhead(const Json& command);

    std::string Plug(const Json& command);
    std::string Unplug(const Json& command);
    std::string MovePointer(const Json& command);

    std::string ReadLog(const Json& command);
    std::string ReadState(const Json& command);
    std::string ReadElement(const Json& command);
    std::string Dump(const Json& command);

    std::string Step(const Json& command);
    std::string Play(const Json& command);
    std::string Advance(const Json& command);

    Application& NamedApplication(const Json& command);
    Element& NamedElement(const Json& command, const char* key = "element");
    Application* ApplicationOrFront(const Json& command);
    void PlayFrom(std::size_t index);

    Desktop& desktop_;
};

}  // namespace desktop
