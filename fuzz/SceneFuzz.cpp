// Scenes and the commands of scripts: the first line is a scene, every other one a command or, when
// it has the key "request", a request of a process: the operation's number, "application",
// "element", "names", "value" as in a scene, "flag", and for events "type", "x", "y", "keyCode"
// and "flags".
//
// What must hold: a mistake is refused with one line and nothing else happens; a dump loads as it
// is and is the same when it is dumped again.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "desktop/Desktop.h"
#include "fuzz/Check.h"
#include "fuzz/JsonMutator.h"
#include "fuzz/StartUp.h"
#include "fuzz/Surroundings.h"
#include "platform/DesktopLink/Messages.h"
#include "scenes/notation/SceneError.h"
#include "scenes/notation/ValueReading.h"

namespace {

constexpr std::size_t kMostCommands = 24;

desktop::DesktopOptions Options() {
    return {(fuzz::PrivateFolder() / "bundles").string()};
}

// Changes nothing when it returns an error, whichever it is.
void Run(desktop::Desktop& desktop, const std::string& command) {
    const std::string before = desktop.Dump();
    const std::string answer = desktop.Run(command);
    const auto json = nlohmann::json::parse(answer, nullptr, false);
    fuzz::Check(json.is_object(), "a command is answered with an object");
    if (json.contains("error")) {
        const std::string& problem = json["error"].get_ref<const std::string&>();
        fuzz::Check(!problem.empty() && problem.find('\n') == std::string::npos,
                    "a problem is one line");
        fuzz::Check(desktop.Dump() == before, "a refused command changes nothing");
    } else {
        fuzz::Check(json.value("ok", false), "a command answers ok or an error");
    }
}

double Number(const nlohmann::json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_number() ? found->get<double>() : 0;
}

std::string Text(const nlohmann::json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

// Throws SceneError for an element that does not exist and for an invalid value.
desktop_link::Request ReadRequest(desktop::Desktop& desktop, const nlohmann::json& line) {
    using desktop_link::Operation;
    desktop_link::Request request;
    const double operation = Number(line, "request");
    request.operation = operation >= 1 && operation <= static_cast<int>(Operation::script)
                            ? static_cast<Operation>(static_cast<int>(operation))
                            : Operation::copyAttribute;
    request.element = desktop.Find(Text(line, "application"), Text(line, "element"));
    if (const auto names = line.find("names"); names != line.end() && names->is_array()) {
        for (const auto& name : *names) {
            request.names.push_back(name.is_string() ? name.get<std::string>() : "AXValue");
        }
    }
    if (const auto value = line.find("value"); value != line.end()) {
        const auto resolve = [&desktop](const std::string& address, const std::string& application,
                                        const std::string&) {
            return desktop.Find(application, address);
        };
        request.value = scene_notation::ReadAnswer(
                            *value, request.names.empty() ? "" : request.names.front(), "", resolve)
                            .value;
    }
    request.flag = line.value("flag", nlohmann::json()) == true;
    request.text = Text(line, "text");
    request.number = static_cast<std::int64_t>(std::clamp(Number(line, "number"), -1e9, 1e9));
    const auto small = [&line](const char* key) {
        return static_cast<std::uint32_t>(std::clamp(Number(line, key), 0.0, 4e9));
    };
    request.event.type = small("type");
    request.event.keyCode = small("keyCode");
    request.event.flags = small("flags");
    request.event.position = {Number(line, "x"), Number(line, "y")};
    request.event.flagsWereSet = request.flag;
    return request;
}

void Ask(desktop::Desktop& desktop, const nlohmann::json& line) {
    const auto message = Encode(ReadRequest(desktop, line));
    const auto request = desktop_link::DecodeRequest(message.data(), message.size());
    const auto reply = request ? desktop.Handle(1, *request) : std::nullopt;
    if (reply) {
        const auto answer = Encode(*reply);
        fuzz::Check(desktop_link::DecodeReply(answer.data(), answer.size()).has_value(),
                    "what the desktop answers can travel");
    }
}

// Every element that a process can reach answers.
void ReadAttributes(desktop::Desktop& desktop) {
    using namespace desktop_link;
    Request request;
    request.operation = Operation::hello;
    const auto session = desktop.Handle(1, request)->session;
    if (!session->frontApplication) {
        return;
    }
    std::vector<ElementReference> open{{session->frontApplication->pid, 0}};
    for (std::size_t next = 0; next < open.size() && next < 64; ++next) {
        request.operation = Operation::copyAttributes;
        request.element = open[next];
        request.names = {"AXRole", "AXWindows",      "AXChildren", "AXFrame", "AXParent",
                         "AXRows", "AXSelectedRows", "AXIndex",    "AXValue"};
        const auto reply = desktop.Handle(1, request);
        for (const Value& value : reply ? reply->values : Array()) {
            const auto* list = std::get_if<Array>(&value.content);
            for (const Value& item : list != nullptr ? *list : Array()) {
                if (const auto* element = std::get_if<ElementReference>(&item.content)) {
                    open.push_back(*element);
                }
            }
        }
    }
}

void CheckDump(desktop::Desktop& desktop) {
    const std::string dump = desktop.Dump();
    try {
        desktop::Desktop again(dump, Options());
        fuzz::Check(again.Dump() == dump, "a dump is dumped as it is");
    } catch (const scene_notation::SceneError&) {
        fuzz::Fail("a dump loads");
    }
}

void CheckLogLine(const std::string& line) {
    fuzz::Check(nlohmann::json::parse(line, nullptr, false).is_object() &&
                    line.find('\n') == std::string::npos,
                "an entry of the log is an object in one line");
}

void CheckNotification(const desktop_link::Notification& notification) {
    const auto message = Encode(notification);
    fuzz::Check(desktop_link::DecodeNotification(message.data(), message.size()) == notification,
                "what listeners are told can travel");
}

void Play(const std::vector<std::string>& lines) {
    desktop::Desktop desktop(lines.front(), Options());
    desktop.Log().SetSink(CheckLogLine);
    const int subscription = desktop.Subscribe(CheckNotification);
    CheckDump(desktop);
    ReadAttributes(desktop);
    for (std::size_t index = 1; index < lines.size() && index < kMostCommands; ++index) {
        const auto line = nlohmann::json::parse(lines[index], nullptr, false);
        if (!line.is_object() || !line.contains("request")) {
            Run(desktop, lines[index]);
            continue;
        }
        try {
            Ask(desktop, line);
        } catch (const scene_notation::SceneError&) {
            // There is no such element.
        }
    }
    desktop.Advance(desktop.NextDue().value_or(0));
    desktop.Advance(1);
    desktop.Unsubscribe(subscription);
    ReadAttributes(desktop);
    CheckDump(desktop);
}

}  // namespace

void fuzz::PrepareTarget() {
    std::filesystem::create_directories(PrivateFolder() / "bundles");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        Play(fuzz::Lines(data, size));
    } catch (const scene_notation::SceneError& error) {
        const std::string problem = error.what();
        fuzz::Check(!problem.empty() && problem.find('\n') == std::string::npos,
                    "a problem is one line");
    }
    return 0;
}
