// Commands that only query.

#include <limits>

#include "desktop/Address.h"
#include "desktop/AttributeReading.h"
#include "desktop/Behaviour.h"
#include "desktop/Script.h"
#include "scenes/notation/Fields.h"
#include "scenes/notation/Json.h"
#include "scenes/notation/ValueWriting.h"

namespace desktop {

using namespace scene_notation;
using nlohmann::ordered_json;

std::string Script::ReadLog(const Json& command) {
    ExpectOnly(command, "command", {"command", "since", "clear"});
    const Json* since = Field(command, "since");
    const Json* clear = Field(command, "clear");
    const bool clears = clear != nullptr && ExpectBoolean(*clear, "clear");
    const auto number =
        static_cast<std::uint64_t>(since == nullptr ? 0 : ExpectInteger(*since, "since", 0));
    std::string text =
        R"({"ok":true,"last":)" + std::to_string(desktop_.log_.LastNumber()) + R"(,"entries":[)";
    bool first = true;
    for (const std::string& line : desktop_.log_.LinesSince(number)) {
        text += first ? "" : ",";
        text += line;
        first = false;
    }
    if (clears) {
        desktop_.log_.Clear();
    }
    return text + "]}";
}

std::string Script::ReadState(const Json& command) {
    ExpectOnly(command, "command", {"command"});
    const Model& model = desktop_.model_;
    auto applications = ordered_json::array();
    for (const auto& application : model.applications) {
        ordered_json each = {{"application", application->Key()},
                             {"pid", application->pid},
                             {"name", application->name},
                             {"windows", application->root.children.size()}};
        if (application->bundlePath) {
            each["bundle"] = *application->bundlePath;
        }
        if (application->hung) {
            each["hung"] = true;
        }
        if (application->dead) {
            each["dead"] = true;
        }
        applications.push_back(std::move(each));
    }
    return OneLine(
        ordered_json{{"ok", true},
                     {"front", model.front == nullptr ? ordered_json(nullptr)
                                                      : ordered_json(model.front->Key())},
                     {"trusted", model.trusted},
                     {"pointer", WritePosition(model.pointer)},
                     {"modifiers", desktop_.tap_.HeldModifiers()},
                     {"time", desktop_.schedule_.Now()},
                     {"elements", model.arena.Count()},
                     {"lastLogEntry", desktop_.log_.LastNumber()},
                     {"nextStep", desktop_.nextStep_},
                     {"applications", std::move(applications)}});
}

std::string Script::ReadElement(const Json& command) {
    ExpectOnly(command, "command", {"command", "application", "element"});
    const Element& element = NamedElement(command);
    Model& model = desktop_.model_;
    const Application& application = *model.ApplicationWithPid(element.pid);
    const auto describe = [&](const auto& reference) {
        return DescribeElement(model, &application, reference);
    };
    auto attributes = ordered_json::object();
    for (const std::string& name : AttributeNames(model, application, element)) {
        if (name == "AXChildren" || name == "AXWindows" || name == "AXRows" ||
            name == "AXVisibleRows") {
            continue;  // their count says enough
        }
        attributes[name] =
            WriteAnswer(ReadAttribute(model, application, element, name), name, describe);
    }
    ordered_json answer = {{"ok", true},
                           {"element", AddressOf(element)},
                           {"id", element.id},
                           {"children", element.children.size()},
                           {"actions", ActionNames(element)},
                           {"attributes", std::move(attributes)}};
    if (element.details != nullptr) {
        answer["presses"] = element.details->presses;
        answer["unconfirmed"] = element.details->unconfirmedFrom.has_value();
    }
    return OneLine(answer);
}

std::string Script::Dump(const Json& command) {
    ExpectOnly(command, "command", {"command"});
    return R"({"ok":true,"scene":)" + desktop_.Dump() + "}";
}

}  // namespace desktop
